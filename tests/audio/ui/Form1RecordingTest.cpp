// The recorder window recording from a real PulseAudio server that plays a
// known ramp: the file it leaves, a full disk, closing while recording and a
// server that dies mid-recording.
#include "SoundSandbox.h"
#include "audio/ui/Form1.h"
#include "support/ScriptedPrompts.h"
#include "support/WavFile.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QThread>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace mirabend {
namespace {

using test::readWav;

class Form1RecordingTest : public test::RampTest {
protected:
    void SetUp() override {
        RampTest::SetUp();
        if (IsSkipped() || HasFatalFailure())
            return;
        take = file("take.wav");
        Form1Setup setup;
        setup.prompts = &prompts;
        setup.audioFile = QString::fromStdString(take);
        form = std::make_unique<Form1>(setup);
        const int pulse = form->cboDev->findText("PulseAudio Sound Server");
        ASSERT_GE(pulse, 0);
        form->cboDev->setCurrentIndex(pulse);
        form->cboDev_Click();
        prompts.messages.clear();
        // Count what the window is handed while it records; connected after
        // the window's own handler, so it sees the same buffers.
        QObject::connect(&form->clsRecorder(), &QtWaveInRecorder::GotData, form.get(),
                         [this](std::vector<std::int16_t>&, int& bytes) {
                             if (QThread::currentThread() != qApp->thread())
                                 offThread = true;
                             if (form->clsRecorder().recorder().IsRecording())
                                 handed += bytes;
                         });
    }

    bool waitFor(const std::function<bool()>& done, int ms = 8000) { return QTest::qWaitFor(done, ms); }

    test::ScriptedPrompts prompts;
    std::unique_ptr<Form1> form;
    std::string take;
    std::int64_t handed = 0;
    bool offThread = false; // a buffer was handed over outside the UI thread
};

TEST_F(Form1RecordingTest, StoppedRecordingOfNBytesIsAFileOfNPlus46) {
    QTest::mouseClick(form->cmdDo, Qt::LeftButton);
    ASSERT_EQ(form->cmdDo->text(), "Stop Test")
        << (prompts.messages.isEmpty() ? "" : prompts.messages[0].text.toStdString());
    EXPECT_FALSE(form->frmInp->isEnabled());
    EXPECT_FALSE(form->frmOut->isEnabled());
    EXPECT_EQ(form->byteRate(), 176400);
    ASSERT_TRUE(waitFor([&] { return handed >= 176400; })); // a second of sound
    EXPECT_GE(form->elapsedMs(), 900);
    QTest::qWait(2 * Form1::kDisplayIntervalMs);
    EXPECT_NE(form->lblSize->text(), "0 bytes");
    EXPECT_TRUE(form->lblTime->text().startsWith("0:0")) << form->lblTime->text().toStdString();

    QTest::mouseClick(form->cmdDo, Qt::LeftButton);
    EXPECT_EQ(form->cmdDo->text(), "Start Test");
    EXPECT_TRUE(form->frmInp->isEnabled());
    EXPECT_EQ(form->elapsedMs(), 0);
    EXPECT_EQ(form->byteRate(), 0);
    EXPECT_TRUE(prompts.messages.isEmpty());
    EXPECT_FALSE(offThread);

    const test::WavFile wav = readWav(take);
    ASSERT_EQ(static_cast<std::int64_t>(wav.bytes.size()), handed + 46);
    EXPECT_TRUE(wav.consistent());
    EXPECT_EQ(wav.u32(4), handed + 38);
    EXPECT_EQ(wav.dataSize(), handed);
    EXPECT_TRUE(test::isRamp(wav.samples(), 2, 10000))
        << "the ramp comes through untouched: no effects are on";
}

TEST_F(Form1RecordingTest, FullDiskStopsOnceAndLeavesAValidFile) {
    // A file-size limit makes writes past 300000 bytes fail as on a full disk.
    struct rlimit old {};
    getrlimit(RLIMIT_FSIZE, &old);
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit tight = old;
    tight.rlim_cur = 300000;
    setrlimit(RLIMIT_FSIZE, &tight);

    QTest::mouseClick(form->cmdDo, Qt::LeftButton);
    const bool stopped = waitFor([&] { return !prompts.messages.isEmpty(); });
    QTest::qWait(300); // later buffers must not bring a second message
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, previous);

    ASSERT_TRUE(stopped);
    ASSERT_EQ(prompts.messages.size(), 1);
    EXPECT_EQ(prompts.messages[0].text, "Write error (no disk space left?)!");
    EXPECT_EQ(prompts.messages[0].icon, PromptIcon::Exclamation);
    EXPECT_EQ(form->cmdDo->text(), "Start Test");
    EXPECT_FALSE(form->clsRecorder().recorder().IsRecording());
    const test::WavFile wav = readWav(take);
    EXPECT_TRUE(wav.consistent());
    EXPECT_LE(wav.bytes.size(), 300000u);
    EXPECT_EQ(wav.dataSize() % 4, 0u) << "whole stereo frames only";
    EXPECT_GT(wav.dataSize(), 100000u);
}

TEST_F(Form1RecordingTest, ClosingWhileRecordingStopsFirst) {
    form->show();
    QTest::mouseClick(form->cmdDo, Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return handed > 40000; }));
    form->close();
    EXPECT_FALSE(form->clsRecorder().recorder().IsRecording());
    const test::WavFile wav = readWav(take);
    EXPECT_TRUE(wav.consistent());
    EXPECT_EQ(wav.dataSize(), handed);
}

TEST_F(Form1RecordingTest, VanishedServerStopsTheRecordingWithAMessage) {
    QTest::mouseClick(form->cmdDo, Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return handed > 40000; }));
    sandbox.killPulse();
    ASSERT_TRUE(waitFor([&] { return !prompts.messages.isEmpty(); }));
    EXPECT_TRUE(prompts.messages[0].text.contains("no longer available"))
        << prompts.messages[0].text.toStdString();
    EXPECT_EQ(form->cmdDo->text(), "Start Test");
    const test::WavFile wav = readWav(take);
    EXPECT_TRUE(wav.consistent());
    EXPECT_EQ(wav.dataSize(), handed);
}

} // namespace
} // namespace mirabend
