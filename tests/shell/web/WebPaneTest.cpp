// The web pane in the main window on a private X display: pages served by a
// local HTTP server load after Ctrl+L, the address and Enter; offline
// browsing refuses the network but still opens local files; back and forward
// walk the history; the page is in what the stage recording captures.
#include "shell/web/WebPane.h"

#include "shell/CommandDispatcher.h"
#include "shell/Mirabend_frm.h"
#include "shell/Stage.h"
#include "shell/web/OfflineInterceptor.h"
#include "shell/web/WebAddress.h"
#include "shell/wiring/WebAboutWiring.h"
#include "support/ChildProcess.h"
#include "support/ScriptedPrompts.h"
#include "util/ExplorerBar.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <QToolBar>
#include <QWebEngineHistory>
#include <QWebEngineView>
#include <QWindow>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>

namespace mirabend::test {
namespace {

TEST(WebAddress, TypedTextBecomesTheAddressABrowserWouldOpen) {
    const struct {
        const char* typed;
        const char* expected; // empty: nothing to open
    } cases[] = {
        {"example.org", "https://example.org"},
        {"  example.org/a b  ", "https://example.org/a%20b"},
        {"127.0.0.1:8000/x.html", "https://127.0.0.1:8000/x.html"},
        {"localhost:8000", "https://localhost:8000"},
        {"http://127.0.0.1:8000/", "http://127.0.0.1:8000/"},
        {"HTTPS://Example.org", "https://example.org"},
        {"file:///tmp/a.html", "file:///tmp/a.html"},
        {"/tmp/a.html", "file:///tmp/a.html"},
        {"about:blank", "about:blank"},
        {"data:text/html,hi", "data:text/html,hi"},
        {"", ""},
        {"   ", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed);
        const QUrl url = addressToUrl(QLatin1String(c.typed));
        EXPECT_EQ(url.isValid() ? url.toString(QUrl::FullyEncoded) : QString(), QLatin1String(c.expected));
    }
    for (const char* scheme : {"http", "HTTPS", "ws", "wss", "ftp"})
        EXPECT_TRUE(isNetworkScheme(QLatin1String(scheme))) << scheme;
    for (const char* scheme : {"file", "data", "about", "qrc", "blob", ""})
        EXPECT_FALSE(isNetworkScheme(QLatin1String(scheme))) << scheme;
}

// python3's HTTP server on 127.0.0.1, on a free port, serving a folder with
// two pages; stopped by its process id.
class PageServer {
public:
    PageServer() {
        page("one.html", "Page One", "#c0208f");
        page("two.html", "Page Two", "#20a040");
        m_process.start({"python3", "-u", "-m", "http.server", "--bind", "127.0.0.1", "--directory",
                         m_folder.path(), "0"},
                        {}, m_folder.file("server.log"));
        const QRegularExpression portPattern(QStringLiteral("port (\\d+)"));
        for (int i = 0; i < 200 && m_port == 0; ++i) {
            QFile log(QString::fromStdString(m_folder.file("server.log")));
            if (log.open(QIODevice::ReadOnly)) {
                const QRegularExpressionMatch match = portPattern.match(QString::fromUtf8(log.readAll()));
                if (match.hasMatch())
                    m_port = match.captured(1).toInt();
            }
            if (m_port == 0)
                QTest::qWait(50);
        }
    }
    int port() const { return m_port; }
    QString address(const char* name) const {
        return QStringLiteral("http://127.0.0.1:%1/%2").arg(m_port).arg(QLatin1String(name));
    }
    // Requests the server has answered for this page.
    int requests(const char* name) const {
        std::ifstream in(m_folder.file("server.log"));
        std::string line;
        int count = 0;
        while (std::getline(in, line))
            count += line.find(std::string("GET /") + name) != std::string::npos ? 1 : 0;
        return count;
    }
    std::string file(const char* name) const { return m_folder.file(name); }

private:
    void page(const char* name, const char* title, const char* colour) {
        std::ofstream(m_folder.file(name))
            << "<html><head><title>" << title << "</title></head><body style='margin:0;background:" << colour
            << "'><h1>" << title << "</h1></body></html>";
    }
    TempFolder m_folder{"mirabend-web"};
    ChildProcess m_process;
    int m_port = 0;
};

class WebPaneTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_GT(server.port(), 0) << "the HTTP server did not start";
        ShellServices services;
        services.prompts = &prompts;
        services.attachPanes.push_back(attachWebPane);
        services.endProgram = [] {
        };
        window = std::make_unique<Mirabend_frm>(services);
        window->start();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        // Shortcuts need the active window; there is no window manager here.
        window->activateWindow();
        if (!QTest::qWaitForWindowActive(window.get()))
            QApplication::setActiveWindow(window.get());
        pane = window->findChild<WebPane*>();
        ASSERT_NE(pane, nullptr);
        EXPECT_EQ(pane->WebBrowser1(), nullptr) << "no browser before the pane is used";
        window->commands().Toolbar1_ButtonClick(QStringLiteral("web"));
        view = pane->WebBrowser1();
        ASSERT_NE(view, nullptr) << "showing the pane makes the browser";
    }

    // Ctrl+L, the address, Enter: as a user opens a page.
    void typeAddress(const QString& address) {
        // From inside the page, where a browser's own keys are handled first.
        view->setFocus();
        QWidget* focused = QApplication::focusWidget() ? QApplication::focusWidget() : window.get();
        QTest::keyClick(focused, Qt::Key_L, Qt::ControlModifier);
        ASSERT_TRUE(QTest::qWaitFor([this] { return pane->http_txt()->hasFocus(); }, 5000))
            << "Ctrl+L focuses the address";
        QTest::keyClicks(pane->http_txt(), address);
        QTest::keyClick(pane->http_txt(), Qt::Key_Return);
    }
    bool waitForTitle(const char* title, int ms = 30000) {
        return QTest::qWaitFor([&] { return view->title() == QLatin1String(title); }, ms);
    }
    bool backEnabled() {
        return pane->Toolbar2()->findChild<QAction*>(QStringLiteral("Toolbar2_back"))->isEnabled();
    }
    bool forwardEnabled() {
        return pane->Toolbar2()->findChild<QAction*>(QStringLiteral("Toolbar2_forward"))->isEnabled();
    }
    // One frame of the stage window as the screen recorder grabs it (x11grab
    // of the window id).
    QImage recordedFrame() {
        const QString png = QString::fromStdString(server.file("frame.png"));
        QProcess::execute(QStringLiteral("ffmpeg"),
                          {QStringLiteral("-y"), QStringLiteral("-loglevel"), QStringLiteral("error"),
                           QStringLiteral("-f"), QStringLiteral("x11grab"), QStringLiteral("-window_id"),
                           QString::number(window->context().stage->winId()), QStringLiteral("-i"),
                           qEnvironmentVariable("DISPLAY"), QStringLiteral("-frames:v"), QStringLiteral("1"),
                           png});
        return QImage(png);
    }

    PageServer server;
    ScriptedPrompts prompts;
    std::unique_ptr<Mirabend_frm> window;
    WebPane* pane = nullptr;
    QWebEngineView* view = nullptr;
};

TEST_F(WebPaneTest, PagesOpenShowInTheRecordingWalkTheHistoryAndStayLocalOffline) {
    EXPECT_FALSE(backEnabled());
    EXPECT_FALSE(forwardEnabled());
    typeAddress(server.address("one.html"));
    ASSERT_TRUE(waitForTitle("Page One")) << view->url().toString().toStdString();
    EXPECT_TRUE(window->context().ebDemo->group(QStringLiteral("web"))->isExpanded());
    EXPECT_FALSE(backEnabled()) << "one page has no history";

    // The stage recording sees the page's colour, not a grey GL surface.
    bool seen = false;
    for (int tries = 0; tries < 20 && !seen; ++tries) {
        const QImage frame = recordedFrame();
        ASSERT_FALSE(frame.isNull()) << "ffmpeg could not grab the stage window";
        const QColor pixel = frame.pixelColor(290, 250);
        seen = std::abs(pixel.red() - 0xc0) < 12 && std::abs(pixel.green() - 0x20) < 12 &&
               std::abs(pixel.blue() - 0x8f) < 12;
        if (!seen)
            QTest::qWait(250);
    }
    EXPECT_TRUE(seen) << "the page is in the recorded frame";
    EXPECT_EQ(window->windowHandle()->surfaceType(), QSurface::RasterSurface)
        << "the page is painted in software; the main window stays a plain raster window";

    typeAddress(server.address("two.html"));
    ASSERT_TRUE(waitForTitle("Page Two"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return backEnabled(); }, 5000));
    EXPECT_FALSE(forwardEnabled());
    EXPECT_EQ(pane->http_txt()->text(), server.address("two.html"));

    pane->Toolbar2()->findChild<QAction*>(QStringLiteral("Toolbar2_back"))->trigger();
    ASSERT_TRUE(waitForTitle("Page One"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return forwardEnabled(); }, 5000));
    EXPECT_FALSE(backEnabled());
    EXPECT_EQ(pane->http_txt()->text(), server.address("one.html")) << "the address follows the page";

    pane->Toolbar2_ButtonClick(QStringLiteral("forward"));
    ASSERT_TRUE(waitForTitle("Page Two"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !forwardEnabled() && backEnabled(); }, 5000));

    // Offline browsing refuses the network but still opens local files.
    // (An address not loaded before, so no cache answers for the server.)
    const char* fresh = "one.html?fresh";
    pane->offline_opt()->setChecked(true);
    typeAddress(server.address(fresh));
    ASSERT_TRUE(QTest::qWaitFor([this] { return pane->interceptor().refusedCount() > 0; }, 30000));
    EXPECT_FALSE(waitForTitle("Page One", 2000));
    EXPECT_EQ(server.requests(fresh), 0) << "nothing reached the server";
    typeAddress(QString::fromStdString(server.file("one.html")));
    ASSERT_TRUE(waitForTitle("Page One")) << "a local file opens while offline";

    // "go" reads the option each time: unchecked, the same address loads.
    pane->offline_opt()->setChecked(false);
    typeAddress(server.address(fresh));
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.requests(fresh) == 1; }, 30000));
    EXPECT_FALSE(pane->interceptor().isOffline());
}

} // namespace
} // namespace mirabend::test
