// The overlay page: what each field hands to the recorder, and which colour
// fields each text style switches on.
#include "recording/ui/OverlayOptions.h"

#include "RecordingFakes.h"
#include "recording/ui/CaptureOptions_frm.h"
#include "support/FakeClock.h"
#include "support/ScriptedPrompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <gtest/gtest.h>
#include <memory>

namespace mirabend::test {
namespace {

class OverlayPage : public ::testing::Test {
protected:
    void SetUp() override {
        form = std::make_unique<CaptureOptions_frm>(host, recorder, prompts, clock);
        o = &form->overlay();
        o->chkuseoverlay->click();
        recorder.clear();
    }

    FakeRecorder recorder;
    FakeHost host;
    ScriptedPrompts prompts;
    FakeClock clock;
    std::unique_ptr<CaptureOptions_frm> form;
    OverlayOptions* o = nullptr;
};

TEST_F(OverlayPage, MasterSwitchTurnsEveryFieldAndTheDrawingOnAndOff) {
    for (const QWidget* w : o->overlayFields())
        EXPECT_TRUE(w->isEnabled()) << w->objectName().toStdString();
    o->chkshowtext->click();
    EXPECT_EQ(recorder.calls.last(), "ShowText(true)");
    o->chkuseoverlay->click();
    EXPECT_FALSE(o->Slider1->isEnabled());
    EXPECT_FALSE(o->chkshowdatetime->isEnabled());
    EXPECT_TRUE(recorder.called("ShowText(false)"));
    recorder.clear();
    o->chkuseoverlay->click();
    EXPECT_TRUE(recorder.called("ShowText(true)"));
    EXPECT_TRUE(recorder.called("ShowDateTime(false)"));
}

TEST_F(OverlayPage, TextStylesSwitchOnlyTheColourFieldsTheyUse) {
    struct Expect {
        int style;
        bool solid, border, back, hatch, texture;
    };
    const Expect table[] = {
        {1, false, true, false, false, false},
        {0, true, false, false, false, false},
        {2, false, true, true, false, false},
        {3, false, false, false, true, false},
    };
    for (const Expect& e : table) {
        o->cbotextstyle->setCurrentIndex(e.style);
        EXPECT_EQ(recorder.calls.last(), QStringLiteral("TextStyle(%1, 0)").arg(e.style));
        EXPECT_EQ(o->cmdsolidfontcolor->isEnabled(), e.solid) << e.style;
        EXPECT_EQ(o->cmdoutlineborder->isEnabled(), e.border) << e.style;
        EXPECT_EQ(o->cmdoutlineback->isEnabled(), e.back) << e.style;
        EXPECT_EQ(o->cbohashbrushstyle->isEnabled(), e.hatch) << e.style;
        EXPECT_EQ(o->cmdhashbackcolor->isEnabled(), e.hatch) << e.style;
        EXPECT_EQ(o->txttextureimage->isEnabled(), e.texture) << e.style;
    }
    // The texture style leaves the outline buttons as they were.
    o->cbotextstyle->setCurrentIndex(2);
    o->cbotextstyle->setCurrentIndex(4);
    EXPECT_TRUE(o->cmdtextureselimage->isEnabled());
    EXPECT_FALSE(o->cmdsolidfontcolor->isEnabled());
    EXPECT_FALSE(o->cmdhashforecolor->isEnabled());
    EXPECT_TRUE(o->cmdoutlineborder->isEnabled());
    EXPECT_TRUE(o->cmdoutlineback->isEnabled());
    // A style outside the five changes no enabled state.
    o->cbotextstyle->addItem("Future style");
    o->cbotextstyle->setCurrentIndex(5);
    EXPECT_EQ(recorder.calls.last(), "TextStyle(5, 0)");
    EXPECT_TRUE(o->cmdtextureselimage->isEnabled());
    EXPECT_FALSE(o->cmdsolidfontcolor->isEnabled());
}

TEST_F(OverlayPage, DateFieldsHandTheirValues) {
    o->txtdateleft->setText("30");
    o->txtdatetop->setText("40");
    o->cboDateFormat->setCurrentIndex(2);
    EXPECT_EQ(recorder.calls.last(), "DateTimeLayout(2, 30, 40)");
    o->txtdatetop->setText("45");
    o->Command11->click();
    EXPECT_EQ(recorder.calls.last(), "DateTimeLayout(2, 30, 45)");
    // A size change hands the font name again, before the size.
    o->cbodatefontsize->setCurrentIndex(3);
    EXPECT_EQ(recorder.calls.mid(recorder.calls.size() - 2),
              QStringList({"DateFontName(Arial)", "DateFontSize(14)"}));
    o->cbodatefontstyle->setCurrentIndex(2);
    EXPECT_EQ(recorder.calls.last(), "DateFontStyle(2)");
    prompts.answerColor(QColor(255, 0, 0));
    o->Command9->click();
    EXPECT_EQ(recorder.calls.last(), "DateColor(#ff0000)");
    o->chkshowdatetime->click();
    EXPECT_EQ(recorder.calls.last(), "ShowDateTime(true)");
}

TEST_F(OverlayPage, DrawTextHandsTrimmedLinesJoinedByLineFeedAndReturn) {
    o->txtText->setText("  Welcome ");
    o->txtText2->setText(" Part two");
    o->txttextleft->setText("5");
    o->txttexttop->setText("6");
    o->Command10->click();
    EXPECT_EQ(recorder.calls.last(), QStringLiteral("Text(Welcome\n\rPart two, 5, 6, 0)"));

    recorder.clear();
    o->txttexttop->setText("6px");
    o->Command10->click();
    EXPECT_EQ(recorder.count("Text("), 0);
    ASSERT_EQ(prompts.messages.size(), 1);
    EXPECT_TRUE(prompts.messages[0].text.contains("6px"));
}

// Each colour button shows the colour the recorder draws with, before and
// after one is picked.
TEST_F(OverlayPage, ColourButtonsShowWhatTheRecorderGot) {
    FakeRecorder fresh;
    CaptureOptions_frm another(host, fresh, prompts, clock);
    OverlayOptions& page = another.overlay();
    const auto chip = [](QPushButton* b) {
        return b->icon().pixmap(14, 14).toImage().pixelColor(7, 7).name();
    };
    const auto handed = [&fresh](const QString& prefix) {
        return fresh.calls.filter(prefix).value(0);
    };
    EXPECT_EQ(handed("DateColor"), QStringLiteral("DateColor(%1)").arg(chip(page.Command9)));
    EXPECT_EQ(handed("TextColors"),
              QStringLiteral("TextColors(%1, %2, %3)")
                  .arg(chip(page.cmdsolidfontcolor), chip(page.cmdoutlineborder), chip(page.cmdoutlineback)));
    EXPECT_EQ(handed("HatchBrush"), QStringLiteral("HatchBrush(%1, %2, 0, 0)")
                                        .arg(chip(page.cmdhashforecolor), chip(page.cmdhashbackcolor)));
    EXPECT_EQ(chip(page.cmdimagetrancolor), "#000000");
    prompts.answerColor(QColor(255, 0, 0));
    page.cmdimagetrancolor_Click();
    EXPECT_EQ(chip(page.cmdimagetrancolor), "#ff0000");
    EXPECT_TRUE(fresh.calls.last().contains("#ff0000"));
}

TEST_F(OverlayPage, FontAndBrushChoicesReachTheRecorder) {
    o->cbofontname->setCurrentIndex(2);
    EXPECT_EQ(recorder.calls.mid(recorder.calls.size() - 2),
              QStringList({"TextFontName(Comic Sans MS, 0)", "TextFontSize(28, 0)"}));
    o->cbofontsize->setCurrentIndex(0);
    EXPECT_EQ(recorder.calls.last(), "TextFontSize(8, 0)");
    o->cbofontstyle->setCurrentIndex(1);
    EXPECT_EQ(recorder.calls.last(), "TextFontName(Comic Sans MS, 1)");
    o->cbohashbrushstyle->setCurrentIndex(1);
    EXPECT_EQ(recorder.calls.last(), "HatchBrush(#000000, #ffffff, 1, 0)");
    prompts.answerColor(QColor(0, 0, 255));
    o->cmdhashforecolor->click();
    EXPECT_EQ(recorder.calls.last(), "HatchBrush(#0000ff, #ffffff, 1, 0)");
    prompts.answerColor(QColor(1, 2, 3));
    o->cmdoutlineborder->click();
    EXPECT_EQ(recorder.calls.last(), "TextColors(#000000, #010203, #ffffff)");
    // A cancelled colour dialog changes nothing.
    recorder.clear();
    o->cmdsolidfontcolor->click();
    EXPECT_TRUE(recorder.calls.isEmpty());
}

TEST_F(OverlayPage, ImagesAreChosenWithTheImageFilterAndHandedAtOnce) {
    prompts.answerFile("/pics/logo.bmp");
    o->txtimageleft->setText("7");
    o->txtimagetop->setText("8");
    o->Slider1->setValue(40);
    o->Command4->click();
    ASSERT_EQ(prompts.openRequests.size(), 1);
    EXPECT_EQ(prompts.openRequests[0].filter,
              "Bitmap File (*.bmp)|*.bmp|JPEG File (*.jpg)|*.jpg|Gif File (*.gif)|*.gif");
    EXPECT_EQ(o->txtimage->text(), "/pics/logo.bmp");
    EXPECT_EQ(recorder.calls.last(), "Image(/pics/logo.bmp, #000000, 7, 8, 40, 0)");
    prompts.answerColor(QColor(0, 255, 0));
    o->cmdimagetrancolor->click();
    EXPECT_EQ(recorder.calls.last(), "Image(/pics/logo.bmp, #00ff00, 7, 8, 40, 0)");

    prompts.answerFile("/pics/paper.jpg");
    o->cmdtextureselimage->click();
    EXPECT_EQ(o->txttextureimage->text(), "/pics/paper.jpg");
    EXPECT_EQ(recorder.calls.last(), "TextureImage(/pics/paper.jpg, 0)");
    recorder.clear();
    o->cmdtextureselimage->click(); // cancelled
    EXPECT_TRUE(recorder.calls.isEmpty());
}

} // namespace
} // namespace mirabend::test
