// Time from asking for a presentation to its first slide on screen:
//  ours: Mirabend's slide show on a cold start (its office not yet running),
//        until the slide shows in the slide pane;
//  peer: LibreOffice started on the same deck (a cold start too), until the
//        slide shows in its own window. (A full-screen --show never draws
//        on a display without a window manager, so the editor it is.)
// Both run on one private Xvfb display, each with a fresh profile, in
// alternating rounds; the ratio of the medians is printed (ours / peer).
//
//   slideshow_bench [rounds]      (default 3)
#include "shell/slideshow/ImpressProgram.h"
#include "shell/slideshow/OfficeProcess.h"
#include "shell/slideshow/SlideShow.h"
#include "support/XvfbServer.h"
#include "util/Prompts.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QLineEdit>
#include <QMainWindow>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <memory>
#include <unistd.h>
#include <vector>

namespace {

const char* const kDeck = MIRABEND_RUNTIME_DIR "/Welcome.ppt";

// Each run opens its own copy: an office ended by signal leaves its lock
// file next to the deck.
QString deckCopy(const QTemporaryDir& folder) {
    const QString copy = folder.filePath(QStringLiteral("Welcome.ppt"));
    QFile::copy(QString::fromUtf8(kDeck), copy);
    return copy;
}
const QColor kSlideBackground(0x16, 0x24, 0x3f); // the welcome deck's background
const qint64 kGiveUpMs = qEnvironmentVariableIntValue("MIRABEND_BENCH_GIVE_UP_MS") > 0
                             ? qEnvironmentVariableIntValue("MIRABEND_BENCH_GIVE_UP_MS")
                             : 120000;

// Half of a 580 x 435 slide.
constexpr int kSlidePixels = 580 * 435 / 2;

// True when the deck's first slide is on screen anywhere: a large area in
// the deck's background colour (the same test for the pane and for the
// office's own window, wherever that opens).
bool slideVisible() {
    const QImage image =
        QGuiApplication::primaryScreen()->grabWindow(0).toImage().convertToFormat(QImage::Format_RGB32);
    const QRgb wanted = kSlideBackground.rgb();
    int matching = 0;
    for (int y = 0; y < image.height(); y += 2) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); x += 2) {
            const QRgb p = line[x];
            if (std::abs(qRed(p) - qRed(wanted)) < 12 && std::abs(qGreen(p) - qGreen(wanted)) < 12 &&
                std::abs(qBlue(p) - qBlue(wanted)) < 12)
                ++matching;
        }
    }
    return matching * 4 > kSlidePixels;
}

// Polls the screen (letting events run) until the slide shows.
qint64 waitForSlide(const QElapsedTimer& clock) {
    while (clock.elapsed() < kGiveUpMs) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        if (slideVisible())
            return clock.elapsed();
        QThread::msleep(5);
    }
    return -1;
}

class NoPrompts final : public mirabend::Prompts {
public:
    mirabend::PromptAnswer message(const mirabend::MessageRequest& r) override {
        std::fprintf(stderr, "message: %s\n", qPrintable(r.text));
        return mirabend::PromptAnswer::Ok;
    }
    mirabend::FileAnswer openFile(const mirabend::FileRequest&) override { return {}; }
    mirabend::FileAnswer saveFile(const mirabend::FileRequest&) override { return {}; }
    std::optional<QColor> chooseColor(const QColor&, const QString&) override { return std::nullopt; }
};

qint64 runOurs() {
    QMainWindow window;
    auto* frmSS = new QWidget(&window);
    window.setCentralWidget(new QWidget);
    frmSS->setParent(window.centralWidget());
    frmSS->setAttribute(Qt::WA_NativeWindow);
    frmSS->setGeometry(0, 0, 580, 435);
    window.resize(800, 600);
    QLineEdit Text1, Text3, ppt_txt, slide_txt, slideNow_txt;
    NoPrompts prompts;
    mirabend::ShellFields fields;
    fields.window = &window;
    fields.frmSS = frmSS;
    fields.Text1 = &Text1;
    fields.Text3 = &Text3;
    fields.ppt_txt = &ppt_txt;
    fields.slide_txt = &slide_txt;
    fields.slideNow_txt = &slideNow_txt;
    fields.prompts = &prompts;
    window.show();
    QElapsedTimer settle;
    settle.start();
    while (settle.elapsed() < 500)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);

    QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/mirabend-bench-XXXXXX"));
    const QString deck = deckCopy(folder);
    mirabend::SlideShow show(fields, std::make_unique<mirabend::ImpressProgram>());
    QElapsedTimer clock;
    clock.start();
    show.openFile(deck);
    const qint64 ms = waitForSlide(clock);
    show.shutdown();
    return ms;
}

qint64 runPeer() {
    QTemporaryDir profile(QDir::tempPath() + QStringLiteral("/mirabend-bench-XXXXXX"));
    const QString deck = deckCopy(profile);
    QProcess office;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("SAL_USE_VCLPLUGIN"), QStringLiteral("gen"));
    office.setProcessEnvironment(env);
    office.setProgram(QStringLiteral(MIRABEND_LO_PROGRAM_DIR "/soffice.bin"));
    office.setArguments(
        {QStringLiteral("-env:UserInstallation=") + QUrl::fromLocalFile(profile.path()).toString(),
         QStringLiteral("--norestore"), QStringLiteral("--nologo"), QStringLiteral("--nolockcheck"), deck});
    office.setStandardOutputFile(QProcess::nullDevice());
    office.setStandardErrorFile(QProcess::nullDevice());
    QElapsedTimer clock;
    clock.start();
    office.start();
    qint64 ms = -1;
    int restarts = 0;
    while (clock.elapsed() < kGiveUpMs) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        if (slideVisible()) {
            ms = clock.elapsed();
            break;
        }
        if (office.state() == QProcess::NotRunning) {
            // An office on a fresh profile may ask to be started again.
            if (office.exitCode() != 81 || ++restarts > 2)
                break;
            office.start();
        }
        QThread::msleep(5);
    }
    if (ms < 0 && qEnvironmentVariableIsSet("MIRABEND_BENCH_SHOT"))
        QGuiApplication::primaryScreen()->grabWindow(0).save(qEnvironmentVariable("MIRABEND_BENCH_SHOT"));
    if (office.state() == QProcess::Running) {
        kill(static_cast<pid_t>(office.processId()), SIGTERM);
        if (!office.waitForFinished(5000)) {
            kill(static_cast<pid_t>(office.processId()), SIGKILL);
            office.waitForFinished(3000);
        }
    }
    return ms;
}

double median(std::vector<qint64> v) {
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    return n % 2 ? double(v[n / 2]) : (v[n / 2 - 1] + v[n / 2]) / 2.0;
}

} // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 3;
    mirabend::test::XvfbServer xvfb;
    if (!xvfb.ok()) {
        std::fprintf(stderr, "Xvfb could not be started\n");
        return 1;
    }
    setenv("DISPLAY", xvfb.display().c_str(), 1);
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    unsetenv("WAYLAND_DISPLAY");
    QApplication app(argc, argv);

    std::vector<qint64> ours, peer;
    for (int round = 0; round < rounds; ++round) {
        const qint64 a = runOurs();
        const qint64 b = runPeer();
        std::printf("round %d: mirabend %lld ms, libreoffice %lld ms\n", round + 1, static_cast<long long>(a),
                    static_cast<long long>(b));
        std::fflush(stdout);
        if (a < 0 || b < 0) {
            std::fprintf(stderr, "a slide never appeared\n");
            return 1;
        }
        ours.push_back(a);
        peer.push_back(b);
    }
    const double m = median(ours), p = median(peer);
    std::printf("open to first slide, median of %d: mirabend %.0f ms, libreoffice %.0f ms, ratio %.2f (goal "
                "<= 1.5)\n",
                rounds, m, p, m / p);
    return 0;
}
