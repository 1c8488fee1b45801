#include "SoundSandbox.h"

#include <alsa/asoundlib.h>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace mirabend::test {
namespace {

void writeFile(const std::string& path, const std::string& text) {
    std::ofstream(path) << text;
}

std::string asoundrc(const std::string& plugin, const SoundSandbox& box) {
    if (plugin.empty())
        return {};
    std::string rc = "ctl_type.mixtest { lib \"" + plugin + "\" }\n";
    const std::array<std::pair<const char*, const char*>, 3> layouts = {
        {{"switches", "Test card with capture switches"},
         {"enum", "Test card with an input source list"},
         {"server", "Test sound server"}}};
    for (const auto& [layout, description] : layouts) {
        const std::string name = std::string("mixtest_") + layout;
        rc += "pcm." + name + " { type null hint { show on description \"" + description + "\" } }\n";
        rc += "ctl." + name + " { type mixtest layout \"" + layout + "\" state \"" + box.stateFile(layout) +
              "\" }\n";
    }
    // A card whose mixer works but whose PCM cannot be opened, and one
    // without any mixer.
    rc += "pcm.mixtest_broken { type hw card 99 hint { show on description \"Test card that fails\" } }\n";
    rc += "ctl.mixtest_broken { type mixtest layout \"server\" }\n";
    rc += "pcm.mixtest_nomixer { type null hint { show on description \"Test card without mixer\" } }\n";
    return rc;
}

} // namespace

SoundSandbox::SoundSandbox(const std::string& mixerPlugin)
    : m_folder("mirabend-sound") {
    const std::string run = m_folder.file("run");
    mkdir(run.c_str(), 0700);
    mkdir((run + "/pulse").c_str(), 0700);
    std::filesystem::create_directories(m_folder.file(".config/pulse"));
    writeFile(m_folder.file(".config/pulse/client.conf"), "autospawn = no\n");
    writeFile(m_folder.file(".asoundrc"), asoundrc(mixerPlugin, *this));

    const std::vector<std::pair<std::string, std::string>> env = {
        {"HOME", m_folder.path()},
        {"XDG_RUNTIME_DIR", run},
        {"PULSE_RUNTIME_PATH", run + "/pulse"},
        {"PULSE_SERVER", "unix:" + run + "/pulse/native"},
        {"PULSE_CLIENTCONFIG", m_folder.file(".config/pulse/client.conf")},
    };
    for (const auto& [name, value] : env) {
        const char* old = std::getenv(name.c_str());
        m_savedEnv.emplace_back(name, old ? std::string(old) : std::string("\x01"));
        setenv(name.c_str(), value.c_str(), 1);
    }
    // alsa-lib keeps its configuration for the whole process; read it anew
    // with this HOME.
    snd_config_update_free_global();
}

SoundSandbox::~SoundSandbox() {
    m_pulse.stop();
    for (const auto& [name, value] : m_savedEnv) {
        if (value == "\x01")
            unsetenv(name.c_str());
        else
            setenv(name.c_str(), value.c_str(), 1);
    }
    snd_config_update_free_global();
}

bool SoundSandbox::startPulse(std::string* error) {
    if (!haveProgram("pulseaudio") || !haveProgram("pactl")) {
        *error = "pulseaudio or pactl is not installed";
        return false;
    }
    const std::vector<std::string> argv = {"pulseaudio",
                                           "--daemonize=no",
                                           "--exit-idle-time=-1",
                                           "-n",
                                           "--disable-shm=yes",
                                           "-L",
                                           "module-native-protocol-unix auth-anonymous=1",
                                           "-L",
                                           "module-null-sink sink_name=rec"};
    if (!m_pulse.start(argv, {}, m_folder.file("pulse.log"))) {
        *error = "pulseaudio did not start";
        return false;
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::chrono::steady_clock::now() < deadline) {
        bool ok = false;
        pactl("info", &ok);
        if (ok) {
            snd_config_update_free_global();
            return true;
        }
        if (!m_pulse.running())
            break;
        usleep(20000);
    }
    std::ifstream log(m_folder.file("pulse.log"));
    *error = "pulseaudio did not answer: " + std::string(std::istreambuf_iterator<char>(log), {});
    m_pulse.stop();
    return false;
}

void SoundSandbox::killPulse() {
    if (m_pulse.pid() > 0)
        kill(m_pulse.pid(), SIGKILL);
    m_pulse.stop(100);
}

std::string SoundSandbox::pactl(const std::string& args, bool* ok) const {
    int code = -1;
    std::string out = runShell("pactl " + args + " 2>&1", &code);
    if (ok)
        *ok = code == 0;
    return out;
}

RampSource::RampSource(SoundSandbox& sandbox, unsigned rate, unsigned channels)
    : m_sandbox(sandbox)
    , m_rate(rate)
    , m_channels(channels) {
    // A killed server leaves the writer without a reader; that must end the
    // writer, not the test.
    signal(SIGPIPE, SIG_IGN);
    static int serial = 0;
    const std::string fifo = sandbox.home() + "/ramp" + std::to_string(++serial) + ".fifo";
    bool ok = false;
    const std::string out = sandbox.pactl("load-module module-pipe-source source_name=ramp file=" + fifo +
                                              " format=s16le rate=" + std::to_string(rate) +
                                              " channels=" + std::to_string(channels),
                                          &ok);
    if (!ok) {
        m_error = "module-pipe-source: " + out;
        return;
    }
    m_module = std::atoi(out.c_str());
    sandbox.pactl("set-default-source ramp");
    // Non-blocking, so the writer can always see that it should stop.
    m_fd = open(fifo.c_str(), O_WRONLY | O_NONBLOCK);
    if (m_fd < 0) {
        m_error = "cannot open " + fifo;
        return;
    }
    m_writer = std::thread([this] { feed(); });
}

RampSource::~RampSource() {
    m_stop = true;
    if (m_writer.joinable())
        m_writer.join();
    if (m_fd >= 0)
        close(m_fd);
    if (m_module >= 0)
        m_sandbox.pactl("unload-module " + std::to_string(m_module));
}

// Written at the source's own pace, a little ahead of the clock, as a
// microphone would deliver it: a pipe source passes on whatever it reads at
// once, and an unpaced writer would flood every client.
void RampSource::feed() {
    std::vector<std::int16_t> chunk(1024 * m_channels);
    std::uint64_t frame = 0;
    const auto start = std::chrono::steady_clock::now();
    const auto lead = std::chrono::milliseconds(250); // stays below the 64 KB a pipe holds
    while (!m_stop) {
        const auto due = start + std::chrono::microseconds(frame * 1000000 / m_rate) - lead;
        std::this_thread::sleep_until(due);
        for (std::size_t i = 0; i < 1024; ++i, ++frame) {
            chunk[i * m_channels] = rampLeft(frame);
            if (m_channels == 2)
                chunk[i * m_channels + 1] = static_cast<std::int16_t>(-rampLeft(frame));
        }
        const auto* bytes = reinterpret_cast<const char*>(chunk.data());
        std::size_t left = chunk.size() * sizeof(std::int16_t);
        while (left > 0 && !m_stop) {
            const ssize_t n = write(m_fd, bytes, left);
            if (n < 0 && errno == EAGAIN) {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                continue;
            }
            if (n <= 0)
                return;
            bytes += n;
            left -= static_cast<std::size_t>(n);
        }
    }
}

std::string SoundSandbox::saved(const std::string& layout, const std::string& control) const {
    std::ifstream in(stateFile(layout));
    std::string line;
    while (std::getline(in, line)) {
        if (line.rfind(control + "|", 0) == 0)
            return line.substr(control.size() + 1);
    }
    return "<missing>";
}

::testing::AssertionResult isRamp(const std::vector<std::int16_t>& s, unsigned channels,
                                  std::size_t minFrames) {
    const std::size_t frames = s.size() / channels;
    std::size_t start = 0;
    while (start < frames && s[start * channels] == 0)
        ++start;
    if (start + minFrames > frames)
        return ::testing::AssertionFailure() << "only " << frames - start << " ramp frames arrived";
    for (std::size_t f = start; f < frames; ++f) {
        const std::int16_t left = s[f * channels];
        if (channels == 2 && s[f * 2 + 1] != -left)
            return ::testing::AssertionFailure() << "channels swapped or mixed at frame " << f;
        const std::int16_t before = f > start ? s[(f - 1) * channels] : std::int16_t(left - 1);
        if (left != (before == 30000 ? 1 : before + 1))
            return ::testing::AssertionFailure()
                   << "gap or repeat at frame " << f << ": " << before << " -> " << left;
    }
    return ::testing::AssertionSuccess();
}

} // namespace mirabend::test
