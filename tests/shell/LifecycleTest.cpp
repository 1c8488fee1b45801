#include "ShellFixture.h"
#include "shell/CameraSettingsPanel.h"
#include "shell/StartUp.h"
#include "util/ExplorerBar.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QTest>
#include <functional>
#include <stdexcept>

namespace mirabend::test {
namespace {

class LifecycleTest : public ShellTest {};

TEST_F(LifecycleTest, StartUpRunsInTheDesignedOrder) {
    ShellOptions options;
    options.audioDevices = QStringList{"mic"};
    options.cameraDevices = QStringList{"cam A"};
    options.cameraFormats = QStringList{"640x480 YUYV", "320x240"};
    options.beforeLoad = [this](Mirabend_frm& w) {
        w.resize(1000, 700);
        EXPECT_TRUE(trace.calls.isEmpty()) << "nothing is created before the initialisation";
    };
    build(options);
    EXPECT_EQ(trace.calls, (QStringList{"recording.created", "setDefaultArea 1000x700", "InitDevices",
                                        "PreviewCam1", "camera.deviceNames", "camera.formatNames"}));
    // The task pane exists before the saved rectangles are taken.
    EXPECT_NE(ctx().ebDemo->group(QStringLiteral("camera")), nullptr);
    CameraSettingsPanel* panel = ctx().cameraPanel;
    EXPECT_EQ(panel->cboDevice()->currentText(), QStringLiteral("cam A"));
    EXPECT_EQ(panel->cboVideoFormat()->currentIndex(), 0);
    // A second load does not run the steps again.
    window->Form_Load();
    EXPECT_EQ(trace.calls.count(QStringLiteral("InitDevices")), 1);
}

TEST_F(LifecycleTest, WindowHeightHasAFloorOf2800Twips) {
    window->show();
    const double tpp = window->twipsPerPixelY();
    ASSERT_GT(tpp, 0.0);
    window->resize(900, static_cast<int>(2000 / tpp));
    QApplication::processEvents();
    const double outer = window->frameGeometry().height() * tpp;
    EXPECT_GE(outer, 2800.0);
    EXPECT_LT(outer, 2800.0 + tpp) << "snapped to the floor, not above it";
    window->resize(900, 600);
    QApplication::processEvents();
    EXPECT_EQ(window->height(), 600) << "taller windows are left alone";
    EXPECT_EQ(window->width(), 900);
    // A minimised window is not pushed back up to the floor.
    window->setWindowState(Qt::WindowMinimized);
    window->resize(900, 40);
    window->Form_Resize();
    EXPECT_EQ(window->height(), 40);
    window->setWindowState(Qt::WindowNoState);
    window->Form_Resize();
    EXPECT_GE(window->frameGeometry().height() * tpp, 2800.0);
}

TEST_F(LifecycleTest, AFailedWidgetLibraryStartIsReportedAndNoWindowFollows) {
    struct Case {
        const char* name;
        std::function<bool()> initialise;
        bool ready;
    };
    const Case cases[] = {
        {"ready", [] { return true; }, true},
        {"refused", [] { return false; }, false},
        {"threw", []() -> bool { throw std::runtime_error("no display"); }, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        prompts.messages.clear();
        EXPECT_EQ(commonControlsReady(prompts, c.initialise), c.ready);
        ASSERT_EQ(prompts.messages.size(), c.ready ? 0 : 1);
        if (!c.ready) {
            EXPECT_EQ(prompts.messages[0].text, QStringLiteral("Initialization error!"));
            EXPECT_EQ(prompts.messages[0].title, QStringLiteral("Mirabend 1.0"));
            EXPECT_EQ(prompts.messages[0].icon, PromptIcon::Critical);
        }
    }
}

TEST_F(LifecycleTest, ClosingTheWindowStopsTheLevelDisplayAndEndsEverything) {
    bool running = true;
    ctx().audioDisplayRunning = [&] {
        return running;
    };
    ctx().stopAudioDisplay = [&] {
        running = false;
    };
    QWidget other;
    other.show();
    window->show();
    window->close();
    EXPECT_FALSE(running);
    EXPECT_TRUE(trace.has(QStringLiteral("endProgram")));
    EXPECT_TRUE(trace.has(QStringLiteral("slides.shutdown")));
    EXPECT_FALSE(other.isVisible()) << "every other window closes with the main window";
    EXPECT_TRUE(prompts.messages.isEmpty()) << "closing the frame does not ask";
}

TEST_F(LifecycleTest, ControlsCarryTheirDesignNames) {
    for (const char* name :
         {"Picture1",       "frmSS",         "parentPic", "textBoard_txt", "WebBrowser1",  "VideoCap1",
          "infobar_pic",    "StatusBar1",    "Toolbar1",  "ebDemo",        "Text1",        "Text2",
          "Text3",          "Text4",         "ppt_txt",   "slide_txt",     "slideNow_txt", "cboDevice",
          "cboVideoFormat", "cbovideostand", "Label12",   "Label13",       "Label15",      "Label16",
          "title_txt",      "presenter_txt"})
        EXPECT_NE(window->findChild<QWidget*>(QString::fromLatin1(name)), nullptr) << name;
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Mirabend 1.0"));
    EXPECT_EQ(ctx().fields.ppt_txt->text(), QStringLiteral("no"));
    EXPECT_EQ(ctx().fields.Text1->text(), QString());
    EXPECT_EQ(ctx().mode(), QStringLiteral("Mode: Single"));
    EXPECT_TRUE(ctx().stage->frmSS()->testAttribute(Qt::WA_NativeWindow))
        << "the show is embedded by window id";
}

TEST_F(LifecycleTest, ToolbarAndTaskPaneCarryTheDesignedKeys) {
    KeyedToolbar& bar = *ctx().toolbar1;
    QStringList keys;
    for (int i = 1; i <= bar.buttonCount(); ++i) {
        if (!bar.key(i).isEmpty())
            keys << bar.key(i);
    }
    keys.sort();
    EXPECT_EQ(keys, (QStringList{"cam", "draw", "exit", "mix", "open", "options", "pause", "record", "side",
                                 "slides", "stop", "text", "uni", "web"}));

    QStringList designed;
    for (ExplorerBarGroup* group : ctx().ebDemo->groups()) {
        if (group->key() != QLatin1String("record") && group->key() != QLatin1String("layout"))
            designed << group->caption() + QLatin1Char('/') + group->key();
    }
    EXPECT_EQ(designed, (QStringList{"Camera Settings/camera", "Titles/titles", "Slides/powerpoint",
                                     "Notes/text", "Draw/draw", "Web/web", "About/help"}));
    const std::pair<const char*, QStringList> items[] = {
        {"powerpoint", {"first", "next", "previous", "last", "exit"}},
        {"record", {"options", "startrec", "pause", "stop", "mic"}},
        {"layout", {"rotate0", "rotate1", "rotate2", "rotate3", "dec", "resolution"}}};
    for (const auto& [group, itemKeys] : items)
        for (const QString& key : itemKeys)
            EXPECT_NE(ctx().ebDemo->item(QLatin1String(group), key), nullptr)
                << group << "/" << key.toStdString();
}

TEST_F(LifecycleTest, ClickingAToolbarButtonDispatchesItsKey) {
    ctx().toolbar1->click(ctx().toolbar1->position(QStringLiteral("side")));
    EXPECT_EQ(ctx().mode(), QStringLiteral("Mode: Side"));
    ctx().ebDemo->item(QStringLiteral("record"), QStringLiteral("mic"))->click();
    EXPECT_TRUE(trace.has(QStringLiteral("showRecorder")));
    ctx().toolbar1->setButtonEnabled(12, false);
    ctx().fields.ppt_txt->setText(QStringLiteral("ppt"));
    ctx().toolbar1->click(12);
    EXPECT_FALSE(trace.has(QStringLiteral("StartRecPre"))) << "a disabled record button does nothing";
}

} // namespace
} // namespace mirabend::test
