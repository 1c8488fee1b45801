#pragma once
// A private sound setup for one test: its own HOME (with an asoundrc that
// declares the mixer test devices), runtime folders and, on request, its own
// PulseAudio server with a pipe source that plays a known ramp. The process
// environment points alsa-lib and libpulse at it while the sandbox lives; the
// server is stopped by its process id.

#include "support/ChildProcess.h"

#include <atomic>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace mirabend::test {

class SoundSandbox {
public:
    // `mixerPlugin`: path of the test control plugin, or empty to leave the
    // mixer test devices out of the asoundrc.
    explicit SoundSandbox(const std::string& mixerPlugin = {});
    ~SoundSandbox();
    SoundSandbox(const SoundSandbox&) = delete;
    SoundSandbox& operator=(const SoundSandbox&) = delete;

    // Starts PulseAudio with a null sink; false with `error` filled when the
    // server does not come up.
    bool startPulse(std::string* error);
    // Kills the server at once, as a crash would.
    void killPulse();

    // Runs pactl against the private server; returns its output, `ok` tells
    // whether it exited with 0.
    std::string pactl(const std::string& args, bool* ok = nullptr) const;

    const std::string& home() const { return m_folder.path(); }
    std::string stateFile(const std::string& layout) const { return m_folder.file(layout + ".state"); }
    // The value the mixer test plugin saved for one control ("v0 v1" or
    // "v0"): what reached the "card", not what the engine remembers.
    std::string saved(const std::string& layout, const std::string& control) const;

private:
    TempFolder m_folder;
    ChildProcess m_pulse;
    std::vector<std::pair<std::string, std::string>> m_savedEnv;
};

// Frame k of the ramp: left runs 1, 2, ..., 30000, 1, 2, ...; right is the
// negated left, so a swap of the channels shows at once.
inline std::int16_t rampLeft(std::uint64_t k) {
    return static_cast<std::int16_t>(k % 30000 + 1);
}

// Success when interleaved `samples` are the ramp without gap, repeat or
// mixed channels from the first sounding frame on (a pipe source plays
// silence before its first data), over at least `minFrames` frames.
::testing::AssertionResult isRamp(const std::vector<std::int16_t>& samples, unsigned channels,
                                  std::size_t minFrames);

// A module-pipe-source called "ramp", made the default source and fed with
// the ramp by a writer thread. Loaded fresh for each test, since a pipe keeps
// old data.
class RampSource {
public:
    RampSource(SoundSandbox& sandbox, unsigned rate = 44100, unsigned channels = 2);
    ~RampSource();
    bool ok() const { return m_module >= 0; }
    const std::string& error() const { return m_error; }

private:
    void feed();

    SoundSandbox& m_sandbox;
    unsigned m_rate;
    unsigned m_channels;
    int m_module = -1;
    int m_fd = -1;
    std::string m_error;
    std::atomic<bool> m_stop{false};
    std::thread m_writer;
};

// A test with its own PulseAudio server whose default source plays the
// ramp; skipped where PulseAudio is not installed.
class RampTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string error;
        if (!sandbox.startPulse(&error))
            GTEST_SKIP() << error;
        ramp = std::make_unique<RampSource>(sandbox);
        ASSERT_TRUE(ramp->ok()) << ramp->error();
    }
    std::string file(const std::string& name) const { return sandbox.home() + "/" + name; }

    SoundSandbox sandbox;
    std::unique_ptr<RampSource> ramp;
};

} // namespace mirabend::test
