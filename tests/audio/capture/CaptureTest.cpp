// Capture from a real PulseAudio server whose default source plays a known
// ramp: sample order, buffer sizes, channels, a consumer that falls
// behind and a server that dies.
#include "SoundSandbox.h"
#include "audio/capture/WaveInRecorder.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

namespace mirabend {
namespace {

using namespace std::chrono_literals;

struct Captured {
    std::vector<std::int16_t> samples; // all buffers, in delivery order
    std::vector<int> bytes;            // bytes recorded per buffer
};

class CaptureTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string error;
        if (!sandbox.startPulse(&error))
            GTEST_SKIP() << error;
        rec.setDataReady([this] {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_ready = true;
            m_wake.notify_one();
        });
        rec.setGotData([this](std::vector<std::int16_t>& samples, int& bytes) {
            got.bytes.push_back(bytes);
            got.samples.insert(got.samples.end(), samples.begin(), samples.begin() + bytes / 2);
        });
    }

    void startRamp(unsigned channels = 2) {
        ramp = std::make_unique<test::RampSource>(sandbox, 44100, channels);
        ASSERT_TRUE(ramp->ok()) << ramp->error();
    }

    void selectPulse() {
        rec.DeviceCount();
        const int index = findInputDevice(rec.devices(), "pulse");
        ASSERT_GE(index, 0) << "the pulse device is not listed";
        ASSERT_TRUE(rec.SelectDevice(index)) << rec.lastFailure().detail;
    }

    // Delivers on this thread, as an owner does, until `buffers` arrived.
    void deliver(std::size_t buffers) {
        const auto deadline = std::chrono::steady_clock::now() + 10s;
        while (got.bytes.size() < buffers && std::chrono::steady_clock::now() < deadline) {
            {
                std::unique_lock<std::mutex> lock(m_mutex);
                m_wake.wait_for(lock, 100ms, [this] { return m_ready; });
                m_ready = false;
            }
            rec.DeliverPending();
        }
        ASSERT_GE(got.bytes.size(), buffers) << "capture delivered too little";
    }

    test::SoundSandbox sandbox;
    std::unique_ptr<test::RampSource> ramp;
    WaveInRecorder rec;
    Captured got;

private:
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_ready = false;
};

TEST_F(CaptureTest, EverySampleArrivesOnceInOrderInBuffersOfTheChosenSize) {
    startRamp();
    selectPulse();
    rec.BufferSize(4096);
    rec.BufferCount(16); // slack for a busy test machine; losses are another test's subject
    ASSERT_TRUE(rec.StartRecord(44100, 2)) << rec.lastFailure().detail;
    EXPECT_TRUE(rec.IsRecording());
    deliver(60); // about 1.4 s of audio
    rec.StopRecord();

    EXPECT_EQ(std::count(got.bytes.begin(), got.bytes.end(), 4096), long(got.bytes.size()));
    EXPECT_TRUE(test::isRamp(got.samples, 2, 44100 / 2));
    EXPECT_EQ(rec.captureStats().buffersDropped, 0u);
}

TEST_F(CaptureTest, MonoCaptureFromTheDefaultDeviceWithoutSelection) {
    startRamp(1);
    EXPECT_EQ(rec.SelectedDevice(), -1);
    rec.BufferSize(2000);
    ASSERT_TRUE(rec.StartRecord(44100, 1)) << rec.lastFailure().detail;
    deliver(40);
    rec.StopRecord();
    EXPECT_EQ(got.bytes.front(), 2000);
    EXPECT_TRUE(test::isRamp(got.samples, 1, 10000));
}

TEST_F(CaptureTest, SlowConsumerLosesCountedBuffersButNeverOrder) {
    startRamp();
    selectPulse();
    rec.BufferSize(4096);
    rec.BufferCount(3);
    ASSERT_TRUE(rec.StartRecord(44100, 2));
    std::this_thread::sleep_for(1200ms); // the owner is busy: ~50 buffers' worth
    EXPECT_GT(rec.captureStats().buffersDropped, 0u);
    EXPECT_EQ(rec.captureStats().overruns, 0u); // losses are ours, not the device's
    rec.DeliverPending();
    got = {};
    deliver(20);
    rec.StopRecord();
    // After the loss the stream runs on without further gaps.
    EXPECT_TRUE(test::isRamp(got.samples, 2, 1));
}

TEST_F(CaptureTest, RefusedStartsAndAVanishedServerLeaveTheRecorderIdle) {
    EXPECT_TRUE(rec.StopRecord()); // idle: nothing to do
    rec.BufferSize(0);
    EXPECT_FALSE(rec.StartRecord(44100, 2));
    EXPECT_EQ(rec.lastFailure().code, CaptureError::BadParameters);
    rec.BufferSize(10240);
    EXPECT_FALSE(rec.StartRecord(0, 2));
    EXPECT_FALSE(rec.IsRecording());

    startRamp();
    selectPulse();
    ASSERT_TRUE(rec.StartRecord(44100, 2));
    deliver(3);
    sandbox.killPulse();
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (rec.captureFailure().code == CaptureError::None && std::chrono::steady_clock::now() < deadline) {
        rec.DeliverPending();
        std::this_thread::sleep_for(20ms);
    }
    EXPECT_EQ(rec.captureFailure().code, CaptureError::DeviceLost);
    EXPECT_FALSE(rec.captureFailure().detail.empty());
    EXPECT_TRUE(rec.StopRecord());
    EXPECT_FALSE(rec.IsRecording());
    EXPECT_FALSE(rec.StartRecord(44100, 2));
    EXPECT_NE(rec.lastFailure().code, CaptureError::None);
}

} // namespace
} // namespace mirabend
