// The warm-up and the real recording after it, through the options window
// and the engine adapter, with sound from a PulseAudio sine source: a server
// that delivers its sound in 2 s blocks, long after the 50 ms warm-up has
// been stopped.
#include "RecordingFakes.h"
#include "recording/ui/CaptureOptions_frm.h"
#include "recording/ui/EngineRecorder.h"
#include "support/ChildProcess.h"
#include "support/MediaProbe.h"
#include "support/PulseServer.h"
#include "support/ScriptedPrompts.h"
#include "util/Clock.h"
#include "util/ProgramFolder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <gtest/gtest.h>
#include <memory>

namespace mirabend::test {
namespace {

using State = RecordingSession::State;

class WarmUpRecording : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(pulse.ok()) << "PulseAudio could not be started";
        // The recorder lists the sound sources when it is made: after the
        // server is up.
        recorder = std::make_unique<EngineRecorder>();
        stage = std::make_unique<QLabel>(QStringLiteral("Stage"));
        stage->setAutoFillBackground(true);
        stage->setStyleSheet(QStringLiteral("background: #c06030;"));
        stage->setFixedSize(320, 240);
        stage->show();
        spinUntil([this] { return stage->isVisible(); }, 2000);
        host.stageW = 320;
        host.stageH = 240;
        host.handle = static_cast<std::uint32_t>(stage->winId());
        form = std::make_unique<CaptureOptions_frm>(host, *recorder, prompts, clock);
    }
    void TearDown() override {
        form.reset();
        recorder.reset();
    }

    // Runs the session's warm-up and recording to `file` until `ms` after
    // the request and stops; returns the seconds between request and stop.
    double recordUntil(const QString& file, int ms) {
        QElapsedTimer wall;
        wall.start();
        EXPECT_FALSE(form->StartRecPreTo(file));
        spinUntil([this] { return form->session().state() == State::Recording; }, 8000);
        EXPECT_EQ(form->session().state(), State::Recording);
        spinUntil([] { return false; }, int(std::max<qint64>(0, ms - wall.elapsed())));
        form->StopRec();
        return double(wall.elapsed()) / 1000;
    }

    PulseServer pulse;
    TempFolder folder{"mirabend-warmup"};
    std::unique_ptr<EngineRecorder> recorder;
    std::unique_ptr<QLabel> stage;
    EngineHost host;
    ScriptedPrompts prompts;
    SystemClock clock;
    std::unique_ptr<CaptureOptions_frm> form;
};

TEST_F(WarmUpRecording, TheRecordingLastsFromRequestToStopWithItsSoundToTheEnd) {
    const std::string file = folder.file("after-warm-up.mkv");
    const double requested = recordUntil(QString::fromStdString(file), 4000);
    // The sound up to the stop is still on its way from the server; the file
    // is completed once it is there.
    recorder->engine().WaitForFinish();
    EXPECT_FALSE(recorder->engine().IsFinishing());
    for (const MessageRequest& m : prompts.messages)
        ADD_FAILURE() << m.text.toStdString();

    const MediaInfo info = probe(file);
    ASSERT_TRUE(info.opened) << file;
    EXPECT_EQ(info.audioCodec, "aac");
    // Two timer ticks and opening the devices lie between request and first
    // frame; waiting for the warm-up's late sound must not.
    EXPECT_GT(info.videoSeconds, requested - 1.0) << "requested " << requested << " s";
    EXPECT_LT(info.videoSeconds, requested + 0.2);
    EXPECT_NEAR(info.audioSeconds, info.videoSeconds, 0.3) << "the sound up to the stop is written";
    EXPECT_GT(info.audioRms, 0.05) << "the sine source is audible";

    // The warm-up's scratch file was finished in the background as well.
    const MediaInfo scratch =
        probe(ProgramFolder::writableFile(QStringLiteral("\\pretemp.avi")).toStdString());
    EXPECT_TRUE(scratch.opened);
    EXPECT_EQ(scratch.videoCodec, "msvideo1");
}

TEST_F(WarmUpRecording, ARecordingRightAfterAStopGetsItsOwnFileAndTheFirstIsCompleted) {
    const std::string first = folder.file("first.mkv");
    const std::string second = folder.file("second.mp4");
    const double firstSeconds = recordUntil(QString::fromStdString(first), 2500);
    // The first file is likely still waiting for its sound.
    const double secondSeconds = recordUntil(QString::fromStdString(second), 2500);
    recorder->engine().WaitForFinish();
    for (const MessageRequest& m : prompts.messages)
        ADD_FAILURE() << m.text.toStdString();

    for (const auto& [file, seconds] : {std::pair{first, firstSeconds}, std::pair{second, secondSeconds}}) {
        SCOPED_TRACE(file);
        const MediaInfo info = probe(file);
        ASSERT_TRUE(info.opened);
        EXPECT_GT(info.videoSeconds, seconds - 1.0);
        EXPECT_LT(info.videoSeconds, seconds + 0.2);
        EXPECT_NEAR(info.audioSeconds, info.videoSeconds, 0.3);
    }
}

} // namespace
} // namespace mirabend::test
