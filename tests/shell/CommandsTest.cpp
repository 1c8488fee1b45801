#include "ShellFixture.h"
#include "shell/ImageList.h"
#include "shell/PaneRotation.h"
#include "shell/PresentationModes.h"
#include "util/ExplorerBar.h"

#include <QTextEdit>
#include <QUrl>

namespace mirabend::test {
namespace {

class CommandsTest : public ShellTest {};

struct SwitchRow {
    const char* key;
    const char* mode;    // "uni", "mix", "side"
    const char* visible; // panes visible afterwards: s=slides c=camera t=text d=draw w=web
    const char* bar;
};

TEST_F(CommandsTest, PaneSwitchTableForEveryModeAndPane) {
    // clang-format off
    const SwitchRow rows[] = {
        {"web", "uni", "w", "web"},           {"web", "mix", "cw", "web"},           {"web", "side", "cw", "web"},
        {"draw", "uni", "d", "draw"},         {"draw", "mix", "cd", "draw"},         {"draw", "side", "cd", "draw"},
        {"text", "uni", "t", "text"},         {"text", "mix", "ct", "text"},         {"text", "side", "ct", "text"},
        {"slides", "uni", "s", "powerpoint"}, {"slides", "mix", "sc", "powerpoint"}, {"slides", "side", "sc", "powerpoint"},
    };
    // clang-format on
    for (const SwitchRow& row : rows) {
        SCOPED_TRACE(std::string(row.key) + " in " + row.mode);
        click(row.mode);
        // Make every pane visible first so the switch has to hide the others.
        for (QWidget* w :
             {stage().frmSS(), stage().VideoCap1(), static_cast<QWidget*>(stage().textBoard_txt()),
              stage().parentPic(), stage().WebBrowser1(), stage().infobar_pic()})
            w->show();
        click(row.key);
        const QString v = QString::fromLatin1(row.visible);
        EXPECT_EQ(pane::Visible(stage().frmSS()), v.contains('s'));
        EXPECT_EQ(pane::Visible(stage().VideoCap1()), v.contains('c'));
        EXPECT_EQ(pane::Visible(stage().textBoard_txt()), v.contains('t'));
        EXPECT_EQ(pane::Visible(stage().parentPic()), v.contains('d'));
        EXPECT_EQ(pane::Visible(stage().WebBrowser1()), v.contains('w'));
        // The info bar is Side mode's and stays as it was there.
        EXPECT_EQ(pane::Visible(stage().infobar_pic()), QLatin1String(row.mode) == QLatin1String("side"));
        for (const char* barKey : {"draw", "powerpoint", "text", "camera", "titles", "web"})
            EXPECT_EQ(ctx().ebDemo->group(QLatin1String(barKey))->isExpanded(),
                      QLatin1String(barKey) == QLatin1String(row.bar))
                << barKey;
    }
    // Side mode leaves a hidden info bar hidden too.
    click("side");
    stage().infobar_pic()->hide();
    click("web");
    EXPECT_FALSE(pane::Visible(stage().infobar_pic()));
}

TEST_F(CommandsTest, RecordNeedsAnOpenPresentation) {
    click("record");
    ASSERT_EQ(prompts.messages.size(), 1);
    EXPECT_EQ(prompts.messages[0].text, "Please open your PowerPoint presentation before recording.");
    EXPECT_EQ(prompts.messages[0].icon, PromptIcon::Critical);
    EXPECT_FALSE(trace.has(QStringLiteral("StartRecPre")));

    ctx().fields.ppt_txt->setText(QStringLiteral("ppt"));
    click("record");
    EXPECT_EQ(prompts.messages.size(), 1);
    EXPECT_TRUE(trace.has(QStringLiteral("StartRecPre")));
}

TEST_F(CommandsTest, PauseAndStopActOnlyWhileRecording) {
    KeyedToolbar& bar = *ctx().toolbar1;
    ASSERT_EQ(bar.key(12), QStringLiteral("record"));
    ASSERT_EQ(bar.key(13), QStringLiteral("pause"));
    click("pause");
    click("stop");
    EXPECT_TRUE(trace.calls.isEmpty()) << trace.calls.join(", ").toStdString();

    ctx().fields.Text4->setText(QStringLiteral("run"));
    bar.setButtonEnabled(12, false);
    click("pause");
    EXPECT_EQ(bar.caption(13), QStringLiteral("Resume"));
    EXPECT_EQ(bar.image(13), 15);
    click("pause");
    EXPECT_EQ(bar.caption(13), QStringLiteral("Pause"));
    EXPECT_EQ(bar.image(13), 6);
    // The task pane's item follows the same state and keeps its caption.
    item("pause");
    item("pause");
    EXPECT_EQ(trace.calls, (QStringList{"PauseRec", "ResumeRec mode=Mode: Single", "PauseRec",
                                        "ResumeRec mode=Mode: Single"}));
    EXPECT_EQ(ctx().ebDemo->item(QStringLiteral("record"), QStringLiteral("pause"))->caption(),
              QStringLiteral(" Pause"));

    click("pause");
    click("stop");
    EXPECT_EQ(trace.calls.last(), QStringLiteral("StopRec"));
    EXPECT_EQ(bar.caption(13), QStringLiteral("Pause"));
    EXPECT_EQ(bar.image(13), ImageList::kPause);
    EXPECT_TRUE(bar.isButtonEnabled(12));
    EXPECT_EQ(ctx().fields.Text4->text(), QStringLiteral("sleep"));
    const int before = trace.calls.size();
    click("pause");
    click("stop");
    EXPECT_EQ(trace.calls.size(), before);
}

TEST_F(CommandsTest, KeysAreExactAndUnknownKeysDoNothing) {
    ctx().fields.ppt_txt->setText(QStringLiteral("ppt"));
    for (const char* key : {"Record", "RECORD", "record ", "", "rotate4", "zoom", "Exit"}) {
        click(key);
        item(key);
    }
    EXPECT_TRUE(trace.calls.isEmpty()) << trace.calls.join(", ").toStdString();
    EXPECT_TRUE(prompts.messages.isEmpty());
    item("start1");
    EXPECT_TRUE(trace.calls.isEmpty());
    EXPECT_FALSE(window->commands().perform(QStringLiteral("nothing")));
    EXPECT_TRUE(window->commands().perform(QStringLiteral("first")));
    EXPECT_EQ(trace.calls, QStringList{QStringLiteral("navigate first")});
}

TEST_F(CommandsTest, TaskPaneItemsReachTheirSubsystems) {
    item("startrec");
    EXPECT_EQ(ctx().fields.Text2->text(), QStringLiteral("R"));
    item("mic");
    item("options");
    click("options");
    for (const char* key : {"first", "next", "previous", "last", "exit"})
        item(key);
    item("stop");
    EXPECT_EQ(trace.calls, (QStringList{"StartRec", "showRecorder", "showOptions", "showOptions",
                                        "navigate first", "navigate next", "navigate previous",
                                        "navigate last", "navigate exit", "StopRec"}));
}

TEST_F(CommandsTest, ExitAsksAndOnlyYesEnds) {
    bool displayRunning = true;
    int stops = 0;
    ctx().audioDisplayRunning = [&] {
        return displayRunning;
    };
    ctx().stopAudioDisplay = [&] {
        ++stops;
        displayRunning = false;
    };
    prompts.answerMessage(PromptAnswer::No);
    prompts.answerMessage(PromptAnswer::Cancel);
    prompts.answerMessage(PromptAnswer::Yes);
    click("exit");
    EXPECT_EQ(stops, 1) << "the level display stops before the question";
    ASSERT_EQ(prompts.messages.size(), 1);
    const MessageRequest& question = prompts.messages[0];
    EXPECT_EQ(question.text, QStringLiteral("Do you want to exit?"));
    EXPECT_EQ(question.title, QStringLiteral("Mirabend 1.0"));
    EXPECT_EQ(question.buttons, PromptButtons::YesNoCancel);
    EXPECT_EQ(question.icon, PromptIcon::Exclamation);
    EXPECT_FALSE(trace.has(QStringLiteral("endProgram")));
    click("exit");
    EXPECT_FALSE(trace.has(QStringLiteral("endProgram")));
    click("exit");
    EXPECT_TRUE(trace.has(QStringLiteral("endProgram")));
    EXPECT_TRUE(trace.has(QStringLiteral("slides.shutdown")));
}

TEST_F(CommandsTest, HelpAndOnlineUseTheSystemsOpenAction) {
    QList<QUrl> opened;
    window->commands().openUrl = [&](const QUrl& url) {
        opened << url;
        return true;
    };
    item("online");
    ASSERT_EQ(opened.size(), 1);
    EXPECT_EQ(opened[0].scheme(), QStringLiteral("https"));
    qputenv("MIRABEND_DATA_DIR", qgetenv("MIRABEND_BINARY_DIR") + "/bin");
    item("help");
    ASSERT_EQ(opened.size(), 2);
    EXPECT_TRUE(opened[1].toLocalFile().endsWith(QStringLiteral("Mirabend_QGuide.pdf")));
}

class RotationTest : public ShellTest {};

TEST_F(RotationTest, CameraAndSlidesExchangePlacesAndTheLargePlaceSticks) {
    ctx().fields.slide_txt->setText(QStringLiteral("7"));
    window->modes().MixedMode();
    window->rotation().RotateResetValues();
    const Rect4 camera = rectOf(stage().VideoCap1());
    const Rect4 large{144, 200, 443, 583};
    trace.calls.clear();
    item("rotate1");
    EXPECT_EQ(ctx().fields.slideNow_txt->text(), QStringLiteral("7"));
    EXPECT_EQ(trace.calls, QStringList{QStringLiteral("PresentSize")}) << "no bracket when not recording";
    for (const char* key : {"rotate2", "rotate3", "rotate1", "rotate0"}) {
        item(key);
        EXPECT_EQ(rectOf(stage().frmSS()), key == std::string("rotate1") ? camera : large) << key;
        EXPECT_EQ(rectOf(stage().VideoCap1()), key == std::string("rotate1") ? large : camera) << key;
    }
    // The large place sticks until a reset.
    window->rotation().RotateResetValues();
    EXPECT_EQ(window->rotation().slideRect(), large);
}

TEST_F(RotationTest, RecordingBracketsAndTheLopsidedPlainOne) {
    const QString resume = QStringLiteral("ResumeRec mode=Mode: Single");
    const struct {
        const char* key;
        const char* status;
        QStringList calls;
    } rows[] = {
        {"rotate1", "Recording ...", {"PauseRec", "PresentSize", resume}},
        {"rotate2", "Recording ...", {"PauseRec", "PresentSize", resume}},
        {"rotate3", "Recording ...", {"PauseRec", "PresentSize", resume}},
        {"rotate0", "Recording ...", {"PresentSize", resume}}, // resume without a pause before it
        {"rotate0", "Paused ...", {"PresentSize"}},
        {"rotate1", "Paused ...", {"PresentSize"}},
    };
    for (const auto& row : rows) {
        ctx().status->setPanelText(1, QLatin1String(row.status));
        trace.calls.clear();
        item(row.key);
        EXPECT_EQ(trace.calls, row.calls) << row.key << " " << row.status;
    }
}

} // namespace
} // namespace mirabend::test
