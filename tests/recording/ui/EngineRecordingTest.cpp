// The options window and session driving the real FFmpeg recorder on a
// private Xvfb screen: the stage of a test window is recorded to short files
// that libavformat reads back, so what the window sets shows in the video.
#include "RecordingFakes.h"
#include "recording/ui/CaptureOptions_frm.h"
#include "recording/ui/DeviceOptions.h"
#include "recording/ui/EngineRecorder.h"
#include "recording/ui/FormatOptions.h"
#include "recording/ui/OverlayOptions.h"
#include "support/ChildProcess.h"
#include "support/MediaProbe.h"
#include "support/PulseServer.h"
#include "support/ScriptedPrompts.h"
#include "util/Clock.h"
#include "util/ProgramFolder.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QWidget>
#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <sys/mount.h>
#include <sys/stat.h>

namespace mirabend::test {
namespace {

using State = RecordingSession::State;

void spinFor(int ms) {
    spinUntil([] { return false; }, ms);
}

QWidget* filled(QWidget* widget, const QColor& colour) {
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Window, colour);
    widget->setPalette(palette);
    widget->setAutoFillBackground(true);
    return widget;
}

class StageRecording : public ::testing::Test {
protected:
    void SetUp() override {
        // The recorder lists the sound sources when it is made: after a
        // sound server of a derived fixture is up.
        recorder = std::make_unique<EngineRecorder>();
        // A blue stage with a green top-left quarter.
        stage.reset(filled(new QWidget, QColor(0, 0, 200)));
        stage->setFixedSize(320, 240);
        filled(new QWidget(stage.get()), QColor(0, 200, 0))->setGeometry(0, 0, 160, 120);
        stage->show();
        spinUntil([this] { return stage->isVisible(); }, 2000);
        spinFor(300);
        host.stageW = 320;
        host.stageH = 240;
        host.handle = static_cast<std::uint32_t>(stage->winId());
        form = std::make_unique<CaptureOptions_frm>(host, *recorder, prompts, clock);
    }
    void TearDown() override {
        form.reset();
        recorder.reset();
    }

    void awaitRecording(int timeoutMs = 5000) {
        spinUntil([this] { return form->session().state() == State::Recording; }, timeoutMs);
        ASSERT_EQ(form->session().state(), State::Recording);
    }
    // A short MKV recording of the stage, without the dialog; the file name.
    std::string record(const char* name) {
        const std::string file = folder.file(name);
        EXPECT_FALSE(form->StartRecTo(QString::fromStdString(file)));
        awaitRecording();
        spinFor(1000);
        form->StopRec();
        recorder->engine().WaitForFinish();
        EXPECT_EQ(unexpectedMessages(prompts.messages), "");
        return file;
    }
    OverlaySettings drawn() { return recorder->engine().Overlay(); }

    TempFolder folder{"mirabend-rec-ui"};
    std::unique_ptr<EngineRecorder> recorder;
    std::unique_ptr<QWidget> stage;
    EngineHost host;
    ScriptedPrompts prompts;
    SystemClock clock;
    std::unique_ptr<CaptureOptions_frm> form;
};

// With the warm-up and without the dialog, or through the save dialog: a
// recording with a pause in it reads back at the format's codec and size.
TEST_F(StageRecording, WarmUpOrSaveDialogRecordsTheFormatsCodecAndSize) {
    const struct {
        const char* name;
        int filterIndex; // 0: no dialog
        const char* codec;
        int width, height;
    } cases[] = {{"stage.mkv", 0, "h264", 320, 240}, {"stage.avi", 5, "msvideo1", 560, 420}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        prompts.messages.clear();
        const std::string file = folder.file(c.name);
        if (c.filterIndex) {
            prompts.answerFile(QString::fromStdString(file), c.filterIndex);
            form->StartRecPre();
        } else {
            ASSERT_FALSE(form->StartRecPreTo(QString::fromStdString(file)));
        }
        awaitRecording();
        EXPECT_EQ(host.panels[1], "Recording ...");
        spinFor(700);
        form->PauseRec();
        spinFor(300);
        form->ResumeRec();
        spinFor(700);
        EXPECT_EQ(host.panels[1], "Recording ...");
        form->StopRec();
        recorder->engine().WaitForFinish(); // the file is closed in the background
        EXPECT_EQ(unexpectedMessages(prompts.messages), "");
        EXPECT_EQ(host.panels[1], "Stoped ...");
        const MediaInfo info = probe(file);
        ASSERT_TRUE(info.opened) << file;
        EXPECT_EQ(info.videoCodec, c.codec);
        EXPECT_EQ(info.width, c.width);
        EXPECT_EQ(info.height, c.height);
        EXPECT_GT(info.videoPackets, 5);
    }
    // A machine without sound is told once, in the status bar and a message.
    if (!host.panels[3].isEmpty()) {
        EXPECT_EQ(host.panels[3], "No sound device: recording silence");
    }
    // The warm-up wrote its scratch file as well.
    EXPECT_GT(QFileInfo(ProgramFolder::writableFile(QStringLiteral("\\pretemp.avi"))).size(), 0);
}

TEST_F(StageRecording, AFileThatCannotBeWrittenGivesOneMessageAndNoRecordingClaim) {
    ASSERT_FALSE(form->StartRecTo(QStringLiteral("/nonexistent-folder/x/stage.mp4")));
    spinUntil([this] { return form->session().state() != State::AwaitingStart; }, 5000);
    spinFor(200);
    ASSERT_EQ(prompts.messages.size(), 1);
    EXPECT_EQ(prompts.messages[0].title, "Mirabend 1.0");
    EXPECT_TRUE(prompts.messages[0].text.contains("could not be started"))
        << prompts.messages[0].text.toStdString();
    EXPECT_EQ(host.panels[1], "Stoped ...");
    EXPECT_EQ(form->session().state(), State::Stopped);
}

TEST_F(StageRecording, AFullDiskStopsTheRecordingWithOneMessageAndAValidFile) {
    const std::string mountPoint = folder.file("small");
    ::mkdir(mountPoint.c_str(), 0700);
    if (::mount("tmpfs", mountPoint.c_str(), "tmpfs", 0, "size=96k") != 0)
        GTEST_SKIP() << "cannot mount a small tmpfs here (needs root): " << std::strerror(errno);
    const std::string file = mountPoint + "/full.avi";
    form->format().aviSize_comb->setCurrentIndex(4); // 1280 x 960 fills it at once
    ASSERT_FALSE(form->StartRecTo(QString::fromStdString(file)));
    spinUntil([this] { return form->session().state() == State::Stopped; }, 20000);
    EXPECT_EQ(form->session().state(), State::Stopped);
    // The sound notice of a machine without sound aside, one critical message.
    const auto critical = [this] {
        QStringList texts;
        for (const MessageRequest& m : prompts.messages)
            if (m.icon == PromptIcon::Critical)
                texts << m.text;
        return texts;
    };
    ASSERT_EQ(critical().size(), 1);
    EXPECT_TRUE(critical()[0].contains("disk is full")) << critical()[0].toStdString();
    EXPECT_EQ(host.panels[1], "Stoped ...");
    EXPECT_EQ(host.text4, "sleep");
    spinFor(300); // no second message follows
    EXPECT_EQ(critical().size(), 1);
    recorder->engine().WaitForFinish();
    const MediaInfo info = probe(file);
    EXPECT_TRUE(info.opened);
    EXPECT_GT(info.videoPackets, 0);
    ::umount(mountPoint.c_str());
}

TEST_F(StageRecording, ColoursAndFontStylesReachTheRecorderAsShown) {
    OverlayOptions& o = form->overlay();
    o.chkuseoverlay->click();
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
    for (int style : {4, 3, 2, 1, 0}) {
        o.cbofontstyle->setCurrentIndex(style);
        EXPECT_EQ(drawn().textFontStyle, style);
    }
    o.cbodatefontstyle->setCurrentIndex(3);
    EXPECT_EQ(drawn().dateFontStyle, 3);
}

TEST_F(StageRecording, ACompressorSettingsPageSetsTheRecorder) {
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
    EXPECT_EQ(recorder->engine().VideoCompressorSetting("MPEG-4", "bitrate"), 900);
    EXPECT_TRUE(prompts.messages.isEmpty());
}

TEST_F(StageRecording, ARedTextStampIsRedInTheWrittenVideo) {
    OverlayOptions& o = form->overlay();
    o.chkuseoverlay->click();
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

TEST_F(StageRecording, ZoomCropsTheRecordedStageAndZoomOutReturnsToAllOfIt) {
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

// With sound from a PulseAudio sine source that delivers it in 2 s blocks,
// long after the 50 ms warm-up has been stopped.
class WarmUpRecording : public StageRecording {
protected:
    void SetUp() override {
        ASSERT_TRUE(pulse.ok()) << "PulseAudio could not be started";
        StageRecording::SetUp();
    }
    // Runs the warm-up and recording to `file` until `ms` after the request
    // and stops; returns the seconds between request and stop.
    double recordUntil(const std::string& file, int ms) {
        QElapsedTimer wall;
        wall.start();
        EXPECT_FALSE(form->StartRecPreTo(QString::fromStdString(file)));
        awaitRecording(8000);
        spinFor(int(std::max<qint64>(0, ms - wall.elapsed())));
        form->StopRec();
        return double(wall.elapsed()) / 1000;
    }

    PulseServer pulse;
};

TEST_F(WarmUpRecording, EachRecordingLastsFromRequestToStopWithItsSoundToTheEnd) {
    // The second starts while the first still waits for its sound.
    const std::string first = folder.file("first.mkv");
    const std::string second = folder.file("second.mp4");
    const double firstSeconds = recordUntil(first, 4000);
    const double secondSeconds = recordUntil(second, 2500);
    recorder->engine().WaitForFinish();
    EXPECT_FALSE(recorder->engine().IsFinishing());
    for (const MessageRequest& m : prompts.messages)
        ADD_FAILURE() << m.text.toStdString();

    for (const auto& [file, seconds] : {std::pair{first, firstSeconds}, std::pair{second, secondSeconds}}) {
        SCOPED_TRACE(file);
        const MediaInfo info = probe(file);
        ASSERT_TRUE(info.opened);
        EXPECT_EQ(info.audioCodec, "aac");
        // Two timer ticks and opening the devices lie between request and
        // first frame; waiting for the warm-up's late sound must not.
        EXPECT_GT(info.videoSeconds, seconds - 1.0) << "requested " << seconds << " s";
        EXPECT_LT(info.videoSeconds, seconds + 0.2);
        EXPECT_NEAR(info.audioSeconds, info.videoSeconds, 0.3) << "the sound up to the stop is written";
        EXPECT_GT(info.audioRms, 0.05) << "the sine source is audible";
    }
    // The warm-up's scratch file was finished in the background as well.
    const MediaInfo scratch =
        probe(ProgramFolder::writableFile(QStringLiteral("\\pretemp.avi")).toStdString());
    EXPECT_TRUE(scratch.opened);
    EXPECT_EQ(scratch.videoCodec, "msvideo1");
}

TEST(EngineFailures, FatalOnesStopTheRecordingAndSoundProblemsAreNotices) {
    const struct {
        RecorderError engine;
        const char* detail;
        RecordingError window;
    } cases[] = {
        {RecorderError::AudioDeviceUnavailable, "no source", RecordingError::SoundMissing},
        {RecorderError::OutputOpenFailed, "x", RecordingError::StartRefused},
        {RecorderError::WindowNotFound, "x", RecordingError::StartRefused},
        {RecorderError::WriteFailed, "write: No space left on device", RecordingError::DiskFull},
        {RecorderError::WriteFailed, "write: Input/output error", RecordingError::WriteFailed},
        {RecorderError::AudioSourceLost, "mic", RecordingError::AudioSourceLost},
        {RecorderError::WindowClosed, "window 7 went away", RecordingError::WriteFailed},
    };
    for (const auto& c : cases) {
        const RecordingFailure failure = EngineRecorder::translate({c.engine, c.detail});
        EXPECT_EQ(failure.code, c.window) << c.detail;
        EXPECT_EQ(failure.detail, c.detail);
        const bool notice =
            c.window == RecordingError::SoundMissing || c.window == RecordingError::AudioSourceLost;
        EXPECT_EQ(EngineRecorder::isSoundNotice(failure.code), notice) << c.detail;
    }
}

} // namespace
} // namespace mirabend::test
