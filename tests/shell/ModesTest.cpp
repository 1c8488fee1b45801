#include "ShellFixture.h"
#include "shell/CameraSettingsPanel.h"
#include "shell/PresentationModes.h"

#include <QLabel>
#include <QTest>
#include <QTextEdit>
#include <ostream>

namespace mirabend {
void PrintTo(const Rect4& r, std::ostream* os) {
    *os << "{top " << r.top << ", left " << r.left << ", height " << r.height << ", width " << r.width << "}";
}
} // namespace mirabend

namespace mirabend::test {
namespace {

class ModesTest : public ShellTest {};

TEST_F(ModesTest, EachModeLaysOutThePanes) {
    const Rect4 full{0, 0, 435, 580}, inset{20, 645, 109, 145};
    const struct {
        void (PresentationModes::*set)();
        const char* text;
        Rect4 content; // every content pane alike
        Rect4 camera;
        bool cameraShown, infobarShown;
    } rows[] = {
        // 625 wide, 625 / 1.3333 high beside the camera.
        {&PresentationModes::SideMode, "Mode: Side", {20, 10, 469, 625}, inset, true, true},
        {&PresentationModes::MixedMode, "Mode: Mixed", full, inset, true, false},
        // The camera pane gets the slide pane's place too, but the inset is hidden.
        {&PresentationModes::SingleMode, "Mode: Single", full, full, false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        ctx().modeToolbar->setButtonVisible(6, false);
        (window->modes().*row.set)();
        EXPECT_EQ(mode(), QLatin1String(row.text));
        for (QWidget* w : {stage().frmSS(), stage().parentPic(),
                           static_cast<QWidget*>(stage().textBoard_txt()), stage().WebBrowser1()})
            EXPECT_EQ(rectOf(w), row.content) << w->objectName().toStdString();
        EXPECT_EQ(rectOf(stage().VideoCap1()), row.camera);
        EXPECT_TRUE(pane::Visible(stage().frmSS()));
        EXPECT_EQ(pane::Visible(stage().VideoCap1()), row.cameraShown);
        EXPECT_EQ(pane::Visible(stage().infobar_pic()), row.infobarShown);
        EXPECT_EQ(ctx().modeToolbar->isButtonVisible(6), row.set == &PresentationModes::SingleMode);
    }
}

TEST_F(ModesTest, EachModeIsBracketedAndRestartsOnlyWhatItMust) {
    using Set = void (PresentationModes::*)();
    const QString side = QStringLiteral("ResumeRec mode=Mode: Side"),
                  mixed = QStringLiteral("ResumeRec mode=Mode: Mixed");
    // The show is re-embedded when Side mode is left or entered; the camera
    // restarts when Single mode is (from the geometry). Single mode writes its
    // text only after the resume.
    const std::pair<Set, QStringList> steps[] = {
        {&PresentationModes::SideMode, {"PauseRec", "PreviewCam1", "OpenSlidesResize", side}},
        {&PresentationModes::SingleMode, {"PauseRec", "PreviewCam1", "OpenSlidesResize", side}},
        {&PresentationModes::MixedMode, {"PauseRec", "PreviewCam1", mixed}},
        {&PresentationModes::SingleMode, {"PauseRec", "PreviewCam1", mixed}},
        {&PresentationModes::MixedMode, {"PauseRec", "PreviewCam1", mixed}},
        {&PresentationModes::SideMode, {"PauseRec", "OpenSlidesResize", side}},
        {&PresentationModes::MixedMode, {"PauseRec", "OpenSlidesResize", mixed}},
    };
    for (std::size_t i = 0; i < std::size(steps); ++i) {
        trace.calls.clear();
        (window->modes().*steps[i].first)();
        EXPECT_EQ(trace.calls, steps[i].second) << "step " << i;
    }
    // The resume's status text is cleared unless a recording runs.
    EXPECT_EQ(ctx().status->panelText(1), QString());
    ctx().fields.Text4->setText(QStringLiteral("run"));
    window->modes().SingleMode();
    EXPECT_EQ(ctx().status->panelText(1), QStringLiteral("Recording ..."));
}

TEST_F(ModesTest, SlidePaneIsTheDefaultContentWhenNothingShows) {
    for (QWidget* w : {stage().frmSS(), stage().parentPic(), static_cast<QWidget*>(stage().textBoard_txt()),
                       stage().WebBrowser1()})
        w->hide();
    window->modes().MixedMode();
    EXPECT_TRUE(pane::Visible(stage().frmSS()));
    // With another pane showing, the slide pane stays hidden.
    click("draw");
    window->modes().SideMode();
    EXPECT_FALSE(pane::Visible(stage().frmSS()));
    EXPECT_TRUE(pane::Visible(stage().parentPic()));
}

TEST_F(ModesTest, CameraCornersActOnlyInMixedMode) {
    window->show();
    CameraSettingsPanel* panel = ctx().cameraPanel;
    ctx().ebDemo->group(QStringLiteral("camera"))->setExpanded(true);
    window->modes().SideMode();
    const Rect4 before = rectOf(stage().VideoCap1());
    QTest::mouseClick(panel->cornerLabel(3), Qt::LeftButton); // Label16: bottom left
    EXPECT_EQ(rectOf(stage().VideoCap1()), before);

    window->modes().MixedMode();
    QTest::mouseClick(panel->cornerLabel(3), Qt::LeftButton);
    CameraCorner corner(ctx());
    EXPECT_EQ(rectOf(stage().VideoCap1()), (Rect4{481, 10, 109, 145}));
    EXPECT_EQ(panel->cornerLabel(3)->palette().color(QPalette::Window), QColor(99, 99, 200));
    for (int other : {0, 1, 2})
        EXPECT_EQ(panel->cornerLabel(other)->palette().color(QPalette::Window), QColor(255, 255, 255));
    corner.Label13_Click();
    EXPECT_EQ(rectOf(stage().VideoCap1()), (Rect4{481, 645, 109, 145}));
    corner.Label15_Click();
    EXPECT_EQ(rectOf(stage().VideoCap1()), (Rect4{20, 10, 109, 145}));
    EXPECT_EQ(panel->cornerLabel(2)->palette().color(QPalette::Window), QColor(99, 99, 200));
    // Mixed mode puts the camera back top right and leaves the marks alone.
    window->modes().MixedMode();
    EXPECT_EQ(rectOf(stage().VideoCap1()), (Rect4{20, 645, 109, 145}));
    EXPECT_EQ(panel->cornerLabel(2)->palette().color(QPalette::Window), QColor(99, 99, 200));
}

TEST_F(ModesTest, FullSizeCameraSurvivesSingleMode) {
    for (const char* start : {"uni", "side", "mix"}) {
        click(start);
        click("cam");
        EXPECT_EQ(mode(), QStringLiteral("Mode: Single")) << start;
        EXPECT_EQ(rectOf(stage().VideoCap1()), (Rect4{0, 0, 435, 580})) << start;
        EXPECT_TRUE(pane::Visible(stage().VideoCap1())) << start;
        EXPECT_TRUE(pane::Visible(stage().infobar_pic())) << start;
        EXPECT_TRUE(pane::Visible(stage().frmSS())) << "the slide pane lies beneath";
        EXPECT_TRUE(ctx().ebDemo->group(QStringLiteral("camera"))->isExpanded());
        EXPECT_FALSE(ctx().ebDemo->group(QStringLiteral("powerpoint"))->isExpanded());
    }
    // Single mode again keeps the enlarged camera.
    window->modes().SingleMode();
    EXPECT_TRUE(pane::Visible(stage().VideoCap1()));
}

} // namespace
} // namespace mirabend::test
