// The options window and session driving the real FFmpeg recorder on a
// private Xvfb screen: the stage of a test window is recorded to a short
// file, which libavformat then reads back.
#include "RecordingFakes.h"
#include "recording/ui/CaptureOptions_frm.h"
#include "recording/ui/EngineRecorder.h"
#include "recording/ui/FormatOptions.h"
#include "support/ChildProcess.h"
#include "support/ScriptedPrompts.h"
#include "util/Clock.h"
#include "util/ProgramFolder.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLabel>
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

struct MediaInfo {
    bool opened = false;
    std::string codec;
    int width = 0;
    int height = 0;
    int videoPackets = 0;
};

MediaInfo probe(const QString& path) {
    MediaInfo info;
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, path.toLocal8Bit().constData(), nullptr, nullptr) < 0)
        return info;
    std::unique_ptr<AVFormatContext, void (*)(AVFormatContext*)> ctx(
        raw, [](AVFormatContext* c) { avformat_close_input(&c); });
    if (avformat_find_stream_info(ctx.get(), nullptr) < 0)
        return info;
    const int video = av_find_best_stream(ctx.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (video < 0)
        return info;
    const AVCodecParameters* par = ctx->streams[video]->codecpar;
    info.opened = true;
    info.codec = avcodec_get_name(par->codec_id);
    info.width = par->width;
    info.height = par->height;
    AVPacket* packet = av_packet_alloc();
    while (av_read_frame(ctx.get(), packet) >= 0) {
        if (packet->stream_index == video)
            ++info.videoPackets;
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    return info;
}

void spinFor(int ms) {
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

class EngineRecording : public ::testing::Test {
protected:
    void SetUp() override {
        stage = std::make_unique<QLabel>(QStringLiteral("Stage"));
        stage->setAutoFillBackground(true);
        stage->setStyleSheet(QStringLiteral("background: #3060c0; color: white; font-size: 40px;"));
        stage->setFixedSize(320, 240);
        stage->show();
        spinUntil([this] { return stage->isVisible(); }, 2000);
        spinFor(200);
        host.stageW = 320;
        host.stageH = 240;
        host.handle = static_cast<std::uint32_t>(stage->winId());
        form = std::make_unique<CaptureOptions_frm>(host, recorder, prompts, clock);
    }

    // Warm-up, start, a short recording with a pause in it, stop.
    void recordBriefly() {
        spinUntil([this] { return form->session().state() == State::Recording; }, 5000);
        ASSERT_EQ(form->session().state(), State::Recording);
        EXPECT_EQ(host.panels[1], "Recording ...");
        spinFor(700);
        form->PauseRec();
        spinFor(300);
        form->ResumeRec();
        spinFor(700);
        EXPECT_EQ(host.panels[1], "Recording ...");
        form->StopRec();
        recorder.engine().WaitForFinish(); // the file is closed in the background
    }

    TempFolder folder{"mirabend-rec-ui"};
    std::unique_ptr<QLabel> stage;
    EngineRecorder recorder;
    EngineHost host;
    ScriptedPrompts prompts;
    SystemClock clock;
    std::unique_ptr<CaptureOptions_frm> form;
};

TEST_F(EngineRecording, StageRecordedToMatroskaWithoutTheDialog) {
    const QString file = QString::fromStdString(folder.file("stage.mkv"));
    ASSERT_FALSE(form->StartRecPreTo(file));
    recordBriefly();
    EXPECT_EQ(unexpectedMessages(prompts.messages), "");
    EXPECT_EQ(host.panels[1], "Stoped ...");
    // A machine without sound is told once, in the status bar and a message.
    if (!host.panels[3].isEmpty()) {
        EXPECT_EQ(host.panels[3], "No sound device: recording silence");
        EXPECT_EQ(prompts.messages.size(), 1u);
    }
    const MediaInfo info = probe(file);
    ASSERT_TRUE(info.opened) << file.toStdString();
    EXPECT_EQ(info.codec, "h264");
    EXPECT_EQ(info.width, 320);
    EXPECT_EQ(info.height, 240);
    EXPECT_GT(info.videoPackets, 5);
    // The warm-up wrote its scratch file as well.
    EXPECT_TRUE(QFileInfo(ProgramFolder::writableFile(QStringLiteral("\\pretemp.avi"))).size() > 0);
}

TEST_F(EngineRecording, AviThroughTheSaveDialogRecordsTheDesignedSize) {
    const QString file = QString::fromStdString(folder.file("stage.avi"));
    prompts.answerFile(file, 5);
    form->StartRecPre();
    recordBriefly();
    EXPECT_EQ(unexpectedMessages(prompts.messages), "");
    const MediaInfo info = probe(file);
    ASSERT_TRUE(info.opened) << file.toStdString();
    EXPECT_EQ(info.codec, "msvideo1");
    EXPECT_EQ(info.width, 560);
    EXPECT_EQ(info.height, 420);
    EXPECT_GT(info.videoPackets, 5);
}

TEST_F(EngineRecording, AFileThatCannotBeWrittenGivesOneMessageAndNoRecordingClaim) {
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

TEST_F(EngineRecording, AFullDiskStopsTheRecordingWithOneMessageAndAValidFile) {
    const std::string mountPoint = folder.file("small");
    ::mkdir(mountPoint.c_str(), 0700);
    if (::mount("tmpfs", mountPoint.c_str(), "tmpfs", 0, "size=96k") != 0)
        GTEST_SKIP() << "cannot mount a small tmpfs here (needs root): " << std::strerror(errno);
    const QString file = QString::fromStdString(mountPoint + "/full.avi");
    form->format().aviSize_comb->setCurrentIndex(4); // 1280 x 960 fills it at once
    ASSERT_FALSE(form->StartRecTo(file));
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
    recorder.engine().WaitForFinish();
    const MediaInfo info = probe(file);
    EXPECT_TRUE(info.opened);
    EXPECT_GT(info.videoPackets, 0);
    ::umount(mountPoint.c_str());
}

} // namespace
} // namespace mirabend::test

namespace mirabend::test {
namespace {

TEST(EngineFailures, FatalOnesStopTheRecordingAndSoundProblemsAreNotices) {
    EXPECT_EQ(EngineRecorder::translate({RecorderError::AudioDeviceUnavailable, "no source"}).code,
              RecordingError::SoundMissing);
    EXPECT_TRUE(EngineRecorder::isSoundNotice(RecordingError::SoundMissing));
    EXPECT_TRUE(EngineRecorder::isSoundNotice(RecordingError::AudioSourceLost));
    EXPECT_FALSE(EngineRecorder::isSoundNotice(RecordingError::DiskFull));
    EXPECT_EQ(EngineRecorder::translate({RecorderError::OutputOpenFailed, "x"}).code,
              RecordingError::StartRefused);
    EXPECT_EQ(EngineRecorder::translate({RecorderError::WindowNotFound, "x"}).code,
              RecordingError::StartRefused);
    EXPECT_EQ(EngineRecorder::translate({RecorderError::WriteFailed, "write: No space left on device"}).code,
              RecordingError::DiskFull);
    EXPECT_EQ(EngineRecorder::translate({RecorderError::WriteFailed, "write: Input/output error"}).code,
              RecordingError::WriteFailed);
    EXPECT_EQ(EngineRecorder::translate({RecorderError::AudioSourceLost, "mic"}).code,
              RecordingError::AudioSourceLost);
    const RecordingFailure closed =
        EngineRecorder::translate({RecorderError::WindowClosed, "window 7 went away"});
    EXPECT_EQ(closed.code, RecordingError::WriteFailed);
    EXPECT_EQ(closed.detail, "window 7 went away");
}

} // namespace
} // namespace mirabend::test
