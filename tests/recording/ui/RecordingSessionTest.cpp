// The recording session: warm-up, start, pause, resume and stop, the three
// timers, the clock and what the main window shows at each step.
#include "recording/ui/RecordingSession.h"

#include "RecordingFakes.h"
#include "recording/ui/CaptureOptions_frm.h"
#include "recording/ui/DeviceOptions.h"
#include "support/FakeClock.h"
#include "support/ScriptedPrompts.h"

#include <QCheckBox>
#include <QTimer>
#include <gtest/gtest.h>
#include <memory>

namespace mirabend::test {
namespace {

using State = RecordingSession::State;

class Session : public ::testing::Test {
protected:
    void SetUp() override {
        form = std::make_unique<CaptureOptions_frm>(host, recorder, prompts, clock);
        session = &form->session();
        recorder.clear();
    }
    // Warm-up, dialog answered, capture started: the usual way in.
    void startRecording(const QString& file = "/tmp/talk.avi", int filterIndex = 5) {
        prompts.answerFile(file, filterIndex);
        form->StartRecPre();
        session->pre_Timer_Timer();
        clock.advanceMs(50);
        session->wait_Timer_Timer();
    }
    bool anyTimerActive() const {
        return session->pre_Timer->isActive() || session->wait_Timer->isActive() ||
               session->Timer2->isActive();
    }

    FakeRecorder recorder;
    FakeHost host;
    ScriptedPrompts prompts;
    FakeClock clock;
    std::unique_ptr<CaptureOptions_frm> form;
    RecordingSession* session = nullptr;
};

TEST_F(Session, WarmUpRecordsTheScratchFileThenAsksForTheRealOne) {
    form->StartRecPre();
    EXPECT_TRUE(host.noticeVisible);
    EXPECT_EQ(session->state(), State::WarmUp);
    EXPECT_TRUE(session->pre_Timer->isActive());
    EXPECT_TRUE(recorder.called("CaptureWindowHandle(4242)"));
    EXPECT_TRUE(recorder.called("HardwareAcceleration(false)"));
    EXPECT_TRUE(recorder.calls.filter("OutputFileName(").value(0).endsWith("/pretemp.avi)"));
    EXPECT_TRUE(recorder.called("OutputFormat(0)"));
    EXPECT_TRUE(recorder.called("VideoCompressorIndex(1)"));
    EXPECT_TRUE(recorder.called("AviAudioSampleRate(11025)"));
    EXPECT_TRUE(recorder.called("AviSize(560, 420)"));
    EXPECT_EQ(recorder.calls.last(), "StartCapture()");
    EXPECT_TRUE(prompts.saveRequests.isEmpty());

    recorder.clear();
    form->devices().HWAc_opt->setChecked(true);
    prompts.answerFile("/tmp/talk.mp4", 8);
    session->pre_Timer_Timer();
    EXPECT_EQ(recorder.calls.first(), "StopCapture()");
    EXPECT_FALSE(session->pre_Timer->isActive());
    EXPECT_FALSE(host.noticeVisible);
    EXPECT_EQ(prompts.saveRequests.size(), 1);
    EXPECT_TRUE(recorder.called("HardwareAcceleration(true)"));
    EXPECT_TRUE(recorder.called("AudioDeviceIndex(0)"));
    EXPECT_TRUE(recorder.called("AudioInputPinIndex(0)"));
    EXPECT_TRUE(recorder.called("CaptureMouseCursor(0)"));
    EXPECT_EQ(host.state, "R");
    EXPECT_EQ(host.text4, "run");
    EXPECT_EQ(session->state(), State::AwaitingStart);
    EXPECT_TRUE(session->wait_Timer->isActive());
    EXPECT_EQ(host.panels[5], "Please Wait...");
    EXPECT_FALSE(host.toolbar[12]);
    EXPECT_FALSE(host.recordItems["options"]);
    EXPECT_FALSE(host.recordItems["startrec"]);
    EXPECT_TRUE(host.recordItems["pause"]);
    EXPECT_TRUE(host.recordItems["stop"]);
    EXPECT_EQ(host.redraws, 1);
    EXPECT_TRUE(host.topMost);
    // Capture starts only on the next tick.
    EXPECT_EQ(recorder.count("StartCapture"), 0);
    EXPECT_FALSE(host.panels.contains(1));

    session->wait_Timer_Timer();
    EXPECT_EQ(recorder.calls.last(), "StartCapture()");
    EXPECT_EQ(host.panels[1], "Recording ...");
    EXPECT_TRUE(session->Timer2->isActive());
    EXPECT_FALSE(session->wait_Timer->isActive());
    EXPECT_EQ(session->state(), State::Recording);
}

TEST_F(Session, CancelledSaveDialogLeavesNothingRunning) {
    form->StartRecPre();
    session->pre_Timer_Timer();
    EXPECT_EQ(session->state(), State::Idle);
    EXPECT_FALSE(anyTimerActive());
    EXPECT_EQ(recorder.count("StartCapture"), 1); // the warm-up only
    EXPECT_EQ(recorder.count("StopCapture"), 1);
    EXPECT_FALSE(host.panels.contains(4));
    EXPECT_FALSE(host.panels.contains(5));
    EXPECT_TRUE(host.recordItems["startrec"]);
    EXPECT_FALSE(host.recordItems["stop"]);
    EXPECT_FALSE(host.topMost);
    // The main window already shows the warm-up as ended.
    EXPECT_EQ(host.state, "R");
    EXPECT_EQ(host.text4, "run");
}

TEST_F(Session, ClockShowsWallTimeUntilTheFirstPauseThenTimeWithoutPauses) {
    host.state = "R";
    startRecording();
    clock.advanceMs(950); // one second since the start request
    session->Timer2_Timer();
    EXPECT_EQ(host.panels[5], "00:00:01");
    EXPECT_EQ(host.elapsed, "00:00:01");

    clock.advanceMs(9000); // 10 s
    form->PauseRec();
    clock.advanceMs(5000);
    form->PauseRec(); // only the second pause time counts
    clock.advanceMs(20000);
    form->ResumeRec();                   // paused for 20 s
    clock.advanceMs(3000 + 3600 * 1000); // 1 h 38 s total
    session->Timer2_Timer();
    EXPECT_EQ(host.panels[5], "01:00:18");
    EXPECT_EQ(host.elapsed, "01:00:18");
}

TEST_F(Session, ResumeWithoutPauseSubtractsTheTimeSinceTheEmptyPauseTime) {
    startRecording();
    const QDateTime resumeAt = clock.now();
    form->ResumeRec();
    host.state = "P";
    session->Timer2_Timer();
    const qint64 total = 50;
    const qint64 paused = RecordingSession::emptyTime().msecsTo(resumeAt);
    EXPECT_EQ(host.panels[5], RecordingSession::formatElapsed(total - paused));
}

TEST_F(Session, PauseAndResumeBracketTheRecording) {
    startRecording();
    recorder.clear();
    form->PauseRec();
    EXPECT_EQ(recorder.calls, QStringList({"PauseCapture()"}));
    EXPECT_FALSE(host.topMost);
    EXPECT_EQ(host.state, "P");
    EXPECT_EQ(host.panels[1], "Paused ...");
    EXPECT_FALSE(session->Timer2->isActive());
    EXPECT_EQ(session->state(), State::Paused);

    form->ResumeRec();
    EXPECT_EQ(recorder.calls.last(), "ResumeCapture()");
    EXPECT_EQ(host.panels[1], "Recording ...");
    EXPECT_TRUE(session->Timer2->isActive());
    // A resumed recording stays out of the top-most band.
    EXPECT_FALSE(host.topMost);
    EXPECT_EQ(host.state, "P");
}

TEST_F(Session, StopActsInAnyStateAndNothingRunsAfterIt) {
    // Idle, waiting for the start, and paused (stopped without resuming).
    form->StopRec();
    EXPECT_EQ(recorder.calls, QStringList({"StopCapture()"}));
    EXPECT_EQ(host.panels[1], "Stoped ...");
    prompts.answerFile("/tmp/a.avi", 5);
    form->StartRec();
    form->StopRec();
    EXPECT_FALSE(session->wait_Timer->isActive());

    host.panels[4] = "AVI video 640x480";
    startRecording();
    form->PauseRec();
    recorder.clear();
    form->StopRec();
    EXPECT_EQ(recorder.calls, QStringList({"StopCapture()"}));
    EXPECT_EQ(host.panels[4], "");
    EXPECT_FALSE(anyTimerActive());
    EXPECT_EQ(session->state(), State::Stopped);

    recorder.clear();
    form->PauseRec();
    form->ResumeRec();
    EXPECT_EQ(recorder.calls, QStringList({"PauseCapture()", "ResumeCapture()"}));
    EXPECT_NE(host.panels[1], "Recording ...");
    EXPECT_FALSE(session->Timer2->isActive()) << "an idle clock would show the time of day";
}

TEST_F(Session, RefusedStartShowsOneMessageAndNeverClaimsRecording) {
    recorder.startSucceeds = false;
    recorder.currentFailure = RecordingFailure(RecordingError::StartRefused, "no display :99");
    startRecording();
    ASSERT_EQ(prompts.messages.size(), 1);
    EXPECT_EQ(prompts.messages[0].title, "Mirabend 1.0");
    EXPECT_TRUE(prompts.messages[0].text.contains("could not be started"));
    EXPECT_TRUE(prompts.messages[0].text.contains("no display :99"));
    EXPECT_EQ(host.panels[1], "Stoped ...");
    EXPECT_EQ(host.panels[4], "");
    EXPECT_FALSE(anyTimerActive());
    EXPECT_TRUE(host.toolbar[12]);
    EXPECT_EQ(host.text4, "sleep");
    EXPECT_TRUE(host.recordItems["startrec"]);
    EXPECT_FALSE(host.recordItems["pause"]);
    EXPECT_FALSE(host.topMost);
}

TEST_F(Session, AFailureWhileRecordingOrPausedStopsAndClosesTheFileOnce) {
    const struct {
        RecordingError code;
        const char* detail;
        bool duringPause; // told on resume
        const char* message;
    } cases[] = {
        {RecordingError::DiskFull, "No space left on device", false, "disk is full"},
        {RecordingError::WriteFailed, "encoder gave up", true, "encoder gave up"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.detail);
        prompts.messages.clear();
        startRecording();
        session->Timer2_Timer();
        EXPECT_TRUE(prompts.messages.isEmpty());
        if (c.duringPause)
            form->PauseRec();
        recorder.clear();
        recorder.currentFailure = RecordingFailure(c.code, c.detail);
        if (c.duringPause)
            form->ResumeRec();
        else
            session->Timer2_Timer();
        EXPECT_EQ(recorder.calls.filter("StopCapture"), QStringList({"StopCapture()"}));
        ASSERT_EQ(prompts.messages.size(), 1);
        EXPECT_TRUE(prompts.messages[0].text.contains(c.message)) << prompts.messages[0].text.toStdString();
        EXPECT_EQ(prompts.messages[0].icon, PromptIcon::Critical);
        EXPECT_EQ(host.panels[1], "Stoped ...");
        EXPECT_FALSE(session->Timer2->isActive());
        EXPECT_EQ(session->state(), State::Stopped);
    }
}

TEST_F(Session, AMissingOrVanishedSoundSourceIsToldOnceAndTheRecordingGoesOn) {
    const struct {
        RecordingError code;
        bool atStart;
        const char* panel;
        const char* message;
    } cases[] = {
        {RecordingError::SoundMissing, true, "No sound device: recording silence", "No sound device"},
        {RecordingError::AudioSourceLost, false, "Sound source lost: recording silence",
         "no longer available"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.panel);
        prompts.messages.clear();
        if (c.atStart)
            recorder.soundNotice = RecordingFailure(c.code, "pulse: no source");
        startRecording();
        if (!c.atStart) {
            session->Timer2_Timer();
            EXPECT_TRUE(host.panels[3].isEmpty());
            recorder.soundNotice = RecordingFailure(c.code, "pulse: no source");
        }
        session->Timer2_Timer();
        session->Timer2_Timer();
        ASSERT_EQ(prompts.messages.size(), 1);
        EXPECT_TRUE(prompts.messages[0].text.contains(c.message)) << prompts.messages[0].text.toStdString();
        EXPECT_TRUE(prompts.messages[0].text.contains("pulse: no source"));
        EXPECT_EQ(prompts.messages[0].icon, PromptIcon::Exclamation);
        EXPECT_EQ(host.panels[3], c.panel);
        EXPECT_EQ(host.panels[1], "Recording ...");
        EXPECT_EQ(session->state(), State::Recording);
        EXPECT_TRUE(session->Timer2->isActive());
        form->StopRec();
    }
}

TEST_F(Session, RecordingToAGivenFileSkipsTheDialog) {
    EXPECT_EQ(form->StartRecTo("/tmp/talk.mov").code, StartToError::UnknownFormat);
    EXPECT_TRUE(recorder.calls.isEmpty());
    EXPECT_FALSE(form->StartRecTo("/tmp/talk.flv"));
    EXPECT_TRUE(prompts.saveRequests.isEmpty());
    EXPECT_TRUE(recorder.called("OutputFileName(/tmp/talk.flv)"));
    EXPECT_TRUE(recorder.called("OutputFormat(3)"));
    EXPECT_EQ(host.panels[4], "FLV video 640x480");
    EXPECT_EQ(session->state(), State::AwaitingStart);
    // A second request while one is under way starts nothing.
    recorder.clear();
    EXPECT_EQ(form->StartRecPreTo("/tmp/other.avi").code, StartToError::Busy);
    EXPECT_EQ(form->StartRecTo("/tmp/other.avi").code, StartToError::Busy);
    EXPECT_TRUE(recorder.calls.isEmpty());
    form->StopRec();
    EXPECT_FALSE(form->StartRecTo("/tmp/other.avi"));
}

TEST(ElapsedFormat, HoursMinutesSecondsWrappingLikeATimeOfDay) {
    EXPECT_EQ(RecordingSession::formatElapsed(0), "00:00:00");
    EXPECT_EQ(RecordingSession::formatElapsed(59999), "00:00:59");
    EXPECT_EQ(RecordingSession::formatElapsed(3723000), "01:02:03");
    EXPECT_EQ(RecordingSession::formatElapsed(25LL * 3600 * 1000), "01:00:00");
    EXPECT_EQ(RecordingSession::formatElapsed(-61000), "00:01:01");
}

} // namespace
} // namespace mirabend::test
