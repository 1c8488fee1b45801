// What the options window sets reaches the real recorder and the written
// video: overlay colours and font styles, a red text stamp read back from
// the file, and the zoom rectangle taken relative to the recorded stage.
#include "RecordingFakes.h"
#include "recording/ui/CaptureOptions_frm.h"
#include "recording/ui/DeviceOptions.h"
#include "recording/ui/EngineRecorder.h"
#include "recording/ui/OverlayOptions.h"
#include "support/ChildProcess.h"
#include "support/MediaProbe.h"
#include "support/ScriptedPrompts.h"
#include "util/Clock.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace mirabend::test {
namespace {

using State = RecordingSession::State;

QWidget* filled(QWidget* widget, const QColor& colour) {
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Window, colour);
    widget->setPalette(palette);
    widget->setAutoFillBackground(true);
    return widget;
}

const QColor kStageBlue(0, 0, 200);
const QColor kCornerGreen(0, 200, 0);

class RecordedChoices : public ::testing::Test {
protected:
    void SetUp() override {
        // A blue stage with a green top-left quarter.
        stage.reset(filled(new QWidget, kStageBlue));
        stage->setFixedSize(320, 240);
        filled(new QWidget(stage.get()), kCornerGreen)->setGeometry(0, 0, 160, 120);
        stage->show();
        spinUntil([this] { return stage->isVisible(); }, 2000);
        spinUntil([] { return false; }, 300);
        host.stageW = 320;
        host.stageH = 240;
        host.handle = static_cast<std::uint32_t>(stage->winId());
        form = std::make_unique<CaptureOptions_frm>(host, recorder, prompts, clock);
        form->overlay().chkuseoverlay->click();
    }

    // A short MKV recording of the stage, without the dialog; the file name.
    std::string record(const char* name) {
        const std::string file = folder.file(name);
        EXPECT_FALSE(form->StartRecTo(QString::fromStdString(file)));
        spinUntil([this] { return form->session().state() == State::Recording; }, 5000);
        EXPECT_EQ(form->session().state(), State::Recording);
        spinUntil([] { return false; }, 1000);
        form->StopRec();
        recorder.engine().WaitForFinish();
        EXPECT_EQ(unexpectedMessages(prompts.messages), "");
        return file;
    }

    OverlaySettings drawn() { return recorder.engine().Overlay(); }

    TempFolder folder{"mirabend-rec-choices"};
    std::unique_ptr<QWidget> stage;
    EngineRecorder recorder;
    EngineHost host;
    ScriptedPrompts prompts;
    SystemClock clock;
    std::unique_ptr<CaptureOptions_frm> form;
};

TEST_F(RecordedChoices, ColoursAndFontStylesReachTheRecorderAsShown) {
    OverlayOptions& o = form->overlay();
    // What the buttons show before any pick is what is drawn.
    EXPECT_EQ(drawn().dateColor, QColor(Qt::black));
    EXPECT_EQ(drawn().textColor, QColor(Qt::black));

    const QColor picked(200, 10, 30); // red, so a red/blue swap shows
    const struct {
        const char* name;
        void (OverlayOptions::*click)();
        QColor OverlaySettings::*field;
    } colours[] = {
        {"date", &OverlayOptions::Command9_Click, &OverlaySettings::dateColor},
        {"text", &OverlayOptions::cmdsolidfontcolor_Click, &OverlaySettings::textColor},
        {"outline", &OverlayOptions::cmdoutlineborder_Click, &OverlaySettings::outlineColor},
        {"fill", &OverlayOptions::cmdoutlineback_Click, &OverlaySettings::outlineFillColor},
        {"hatch", &OverlayOptions::cmdhashforecolor_Click, &OverlaySettings::hatchForeColor},
        {"hatch back", &OverlayOptions::cmdhashbackcolor_Click, &OverlaySettings::hatchBackColor},
        {"transparent", &OverlayOptions::cmdimagetrancolor_Click, &OverlaySettings::imageTransparentColor},
    };
    for (const auto& c : colours) {
        prompts.answerColor(picked);
        (o.*c.click)();
        EXPECT_EQ(drawn().*c.field, picked) << c.name;
    }
    prompts.messages.clear(); // the image stamp has no file yet

    for (int style : {4, 3, 2, 1, 0}) {
        o.cbofontstyle->setCurrentIndex(style);
        EXPECT_EQ(drawn().textFontStyle, style);
    }
    o.cbodatefontstyle->setCurrentIndex(3);
    EXPECT_EQ(drawn().dateFontStyle, 3);
}

TEST_F(RecordedChoices, CompressorsWithRealSettingsShowTheirPage) {
    DeviceOptions& d = form->devices();
    d.cboVideoCompressor->setCurrentIndex(d.cboVideoCompressor->findText("MPEG-4"));
    // The page is modal: answer it once it shows.
    QTimer::singleShot(0, [] {
        spinUntil([] { return QApplication::activeModalWidget() != nullptr; }, 5000);
        QWidget* page = QApplication::activeModalWidget();
        ASSERT_TRUE(page);
        auto* bitrate = page->findChild<QSpinBox*>("setting_bitrate");
        ASSERT_TRUE(bitrate);
        EXPECT_EQ(bitrate->specialValueText(), "Automatic");
        bitrate->setValue(900);
        static_cast<QDialog*>(page)->accept();
    });
    d.cmdVideoCompSetting->click();
    EXPECT_EQ(recorder.engine().VideoCompressorSetting("MPEG-4", "bitrate"), 900);
    EXPECT_TRUE(prompts.messages.isEmpty());

    d.cboVideoCompressor->setCurrentIndex(d.cboVideoCompressor->findText("Sorenson Spark"));
    d.cmdVideoCompSetting->click();
    ASSERT_EQ(prompts.messages.size(), 1);
    EXPECT_EQ(prompts.messages[0].text, "No property page");
}

TEST_F(RecordedChoices, ARedTextStampIsRedInTheWrittenVideo) {
    OverlayOptions& o = form->overlay();
    o.txtText->setText(QStringLiteral("\u2588\u2588"));
    o.txttextleft->setText("10");
    o.txttexttop->setText("60");
    o.cbofontsize->setCurrentIndex(o.cbofontsize->findText("60"));
    prompts.answerColor(QColor(255, 0, 0));
    o.cmdsolidfontcolor->click();
    o.chkshowtext->click();
    o.Command10->click();
    const std::string file = record("stamp.mkv");
    // Inside the blocks, on the blue part of the stage.
    const std::array<int, 3> rgb = averageRgb(file, 30, 140, 12, 12, 0.3);
    EXPECT_GT(rgb[0], 170) << rgb[0] << "," << rgb[1] << "," << rgb[2];
    EXPECT_LT(rgb[1], 90);
    EXPECT_LT(rgb[2], 90);
}

TEST_F(RecordedChoices, ZoomCropsTheRecordedStageAndZoomOutReturnsToAllOfIt) {
    DeviceOptions& d = form->devices();
    d.txtzoomleft->setText("0");
    d.txtzoomtop->setText("0");
    d.txtzoomright->setText("160");
    d.txtzoombottom->setText("120");
    d.cmdZoomIn->click();
    const std::string zoomed = record("zoomed.mkv");
    const std::array<int, 3> corner = averageRgb(zoomed, 220, 160, 40, 40, 0.3);
    EXPECT_GT(corner[1], 150) << "the green quarter fills the picture: " << corner[2];
    EXPECT_LT(corner[2], 60);

    d.cmdZoomOut->click();
    const std::string whole = record("whole.mkv");
    const std::array<int, 3> blue = averageRgb(whole, 220, 160, 40, 40, 0.3);
    EXPECT_GT(blue[2], 150) << "the blue stage is back: " << blue[1];
    EXPECT_LT(blue[1], 60);
    const std::array<int, 3> green = averageRgb(whole, 40, 30, 40, 40, 0.3);
    EXPECT_GT(green[1], 150);
}

} // namespace
} // namespace mirabend::test
