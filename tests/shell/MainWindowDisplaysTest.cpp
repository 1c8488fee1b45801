// What the main window shows about the talk: the slide counter and the
// chapters it marks, the audio inputs, the busy cursor while a presentation
// opens and the stage size steps.
#include "ShellFixture.h"
#include "shell/CameraSettingsPanel.h"
#include "shell/ModeGeometry.h"
#include "shell/PresentationModes.h"
#include "shell/SlideCounter.h"
#include "shell/WaitCursor.h"
#include "util/CursorFile.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QRegularExpression>
#include <QTest>
#include <QToolTip>

namespace mirabend::test {
namespace {

class DisplaysTest : public ShellTest {
protected:
    void setSlide(const char* now, const char* count) {
        ctx().fields.slideNow_txt->setText(QString::fromLatin1(now));
        ctx().fields.slide_txt->setText(QString::fromLatin1(count));
    }
    QStringList chapters() const {
        return trace.calls.filter(QRegularExpression(QStringLiteral("^chapter ")));
    }
    QString counterPanel() { return ctx().status->panelText(SlideCounter::kPanel); }
};

TEST_F(DisplaysTest, SlideCounterFollowsTheShowAndMarksAChapterPerSlideAndPane) {
    QLabel* barLabel =
        ctx().ebDemo->group(QStringLiteral("powerpoint"))->findChild<QLabel*>("slideCounter_lb");
    ASSERT_NE(barLabel, nullptr) << "the Slides bar shows the counter";
    EXPECT_EQ(counterPanel(), "No slide show");

    struct Step {
        const char* now;
        const char* count;
        const char* title;
        const char* shown;
        const char* chapter; // null: none
    };
    const Step steps[] = {
        {"1", "12", "Welcome", "Slide 1 of 12", "chapter Slide 1: Welcome"},
        {"2", "12", "", "Slide 2 of 12", "chapter Slide 2"},
        {"2", "12", "", "Slide 2 of 12", nullptr}, // read back unchanged: no new chapter
        {"12", "12", "Thanks", "Slide 12 of 12", "chapter Slide 12: Thanks"},
        {"0", "0", "", "No slide show", nullptr}, // "End Show"
        {"1", "3", "Other deck", "Slide 1 of 3", "chapter Slide 1: Other deck"},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.shown);
        trace.calls.clear();
        slides->title = QString::fromUtf8(step.title);
        setSlide(step.now, step.count);
        QApplication::processEvents();
        EXPECT_EQ(counterPanel(), step.shown);
        EXPECT_EQ(barLabel->text(), step.shown);
        EXPECT_EQ(chapters(), step.chapter ? QStringList{step.chapter} : QStringList{});
    }

    // A rotation rewrites the field and the show puts it back in one go:
    // neither the counter nor the recording sees the detour.
    trace.calls.clear();
    setSlide("3", "3");
    setSlide("1", "3");
    QApplication::processEvents();
    EXPECT_EQ(counterPanel(), "Slide 1 of 3");
    EXPECT_TRUE(chapters().isEmpty());

    // Pane switches are chapters too; back on the slides, the slide's.
    slides->title = QStringLiteral("Other deck");
    for (const char* key : {"draw", "web", "text", "cam", "slides"})
        click(key);
    EXPECT_EQ(chapters(), (QStringList{"chapter Whiteboard", "chapter Web page", "chapter Notes board",
                                       "chapter Camera", "chapter Slide 1: Other deck"}));
}

TEST_F(DisplaysTest, AudioInputsShowInTheMicTooltipAndTheStatusBar) {
    struct Case {
        QStringList devices;
        const char* panel;
        const char* tipPart;
        bool reported;
    };
    const Case cases[] = {
        {{"Built-in microphone"}, "Audio: Built-in microphone", "Built-in microphone", false},
        {{"USB headset", "Line in"}, "Audio: USB headset (+1)", "Line in", false},
        {{}, "No audio input", "No audio input device", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.panel);
        prompts.messages.clear();
        ShellOptions options;
        options.audioDevices = c.devices;
        options.cameraDevices.clear();
        build(options);
        QApplication::processEvents();
        EXPECT_EQ(ctx().status->panelText(Mirabend_frm::kAudioPanel), c.panel);
        EXPECT_TRUE(ctx()
                        .ebDemo->item(QStringLiteral("record"), QStringLiteral("mic"))
                        ->toolTip()
                        .contains(QString::fromLatin1(c.tipPart)));
        ASSERT_EQ(prompts.messages.size(), c.reported ? 1 : 0);
        if (c.reported) {
            EXPECT_EQ(prompts.messages[0].text, "You have no audio input devices!");
            EXPECT_EQ(prompts.messages[0].title, "Mirabend 1.0");
            EXPECT_EQ(prompts.messages[0].icon, PromptIcon::Exclamation);
            // Loading went on: the camera lists are there, empty.
            EXPECT_EQ(ctx().cameraPanel->cboDevice()->currentIndex(), -1);
            EXPECT_EQ(ctx().cameraPanel->cbovideostand()->count(), 20);
        }
    }
}

TEST_F(DisplaysTest, OpenKeepsTheBusyCursorUntilTheShowIsUpAndShowsTheSlides) {
    const QString cursorFile = qEnvironmentVariable("MIRABEND_SOURCE_DIR") + "/data/cursors/C_WAIT05.CUR";
    QFile file(cursorFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << cursorFile.toStdString();
    ASSERT_TRUE(readCursorFile(file.readAll()));
    EXPECT_FALSE(readCursorFile(QByteArray("not a cursor at all, but long enough")));
    qputenv("MIRABEND_DATA_DIR",
            QFile::encodeName(qEnvironmentVariable("MIRABEND_SOURCE_DIR") + "/data/cursors"));

    window->modes().MixedMode();
    pane::setVisible(stage().frmSS(), false);
    pane::setVisible(stage().parentPic(), true);
    QWidget* frmSS = stage().frmSS();
    slides->opening = true; // the office is still starting
    click("open");
    EXPECT_TRUE(trace.has("openSlides"));
    EXPECT_FALSE(frmSS->isHidden());
    EXPECT_TRUE(stage().parentPic()->isHidden()) << "the slides row of Mixed mode";
    EXPECT_FALSE(stage().VideoCap1()->isHidden());
    ASSERT_TRUE(frmSS->testAttribute(Qt::WA_SetCursor));
    EXPECT_EQ(frmSS->cursor().shape(), Qt::BitmapCursor);
    EXPECT_EQ(frmSS->cursor().hotSpot(), QPoint(16, 16));
    QTest::qWait(3 * WaitCursor::kPollMs);
    EXPECT_TRUE(frmSS->testAttribute(Qt::WA_SetCursor)) << "still opening";
    slides->opening = false; // the show is up (or failed)
    EXPECT_TRUE(QTest::qWaitFor([&] { return !frmSS->testAttribute(Qt::WA_SetCursor); }, 10000));
}

TEST_F(DisplaysTest, StageShrinksAndGrowsInStepsAndTheCameraKeepsItsCorner) {
    window->modes().MixedMode();
    struct Step {
        const char* key;
        QSize stage;
        int cameraLeft;
    };
    const Step steps[] = {
        {"dec", {720, 540}, 720 - 155}, {"dec", {640, 480}, 640 - 155}, {"dec", {640, 480}, 640 - 155},
        {"inc", {720, 540}, 720 - 155}, {"inc", {800, 600}, 645},       {"inc", {800, 600}, 645},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.key);
        item(step.key);
        EXPECT_EQ(stage().size(), step.stage);
        EXPECT_EQ(pane::Left(stage().VideoCap1()), step.cameraLeft);
        EXPECT_EQ(rectOf(stage().frmSS()), (Rect4{0, 0, 435, 580})) << "content keeps its stage pixels";
    }
    // A bottom corner stays at the bottom; a running recording keeps its size.
    CameraCorner(ctx()).Label13_Click();
    item("dec");
    EXPECT_EQ(pane::Top(stage().VideoCap1()), 540 - 109 - 10);
    EXPECT_EQ(QToolTip::text(), "Stage 720 x 540");
    ctx().fields.Text4->setText(QStringLiteral("run"));
    item("dec");
    EXPECT_EQ(stage().size(), QSize(720, 540));
    EXPECT_EQ(QToolTip::text(), "The stage keeps its size while recording.");
}

} // namespace
} // namespace mirabend::test
