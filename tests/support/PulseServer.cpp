#include "support/PulseServer.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <sys/stat.h>
#include <thread>

namespace mirabend::test {

PulseServer::PulseServer() {
    if (!haveProgram("pulseaudio") || m_folder.path().empty())
        return;
    const std::string run = m_folder.file("run");
    const std::string home = m_folder.file("home");
    mkdir(run.c_str(), 0700);
    mkdir(home.c_str(), 0700);
    m_socket = run + "/native";
    if (const char* previous = getenv("PULSE_SERVER"))
        m_previousServer = previous;
    m_process.start({"pulseaudio", "--daemonize=no", "--exit-idle-time=-1", "-n", "-L",
                     "module-native-protocol-unix auth-anonymous=1", "-L", "module-null-sink sink_name=rec",
                     "-L", "module-sine-source source_name=mic"},
                    {"PULSE_RUNTIME_PATH=" + run, "XDG_RUNTIME_DIR=" + run, "HOME=" + home,
                     "PULSE_SERVER=unix:" + m_socket,
                     // No session bus: the server would claim org.PulseAudio1
                     // there, and a second private server could not start.
                     "DBUS_SESSION_BUS_ADDRESS=unix:path=" + m_folder.file("no-bus")},
                    m_folder.file("pulse.log"));
    for (int i = 0; i < 200; ++i) {
        struct stat st {};
        if (stat(m_socket.c_str(), &st) == 0) {
            setenv("PULSE_SERVER", ("unix:" + m_socket).c_str(), 1);
            m_ok = pactl("info").find("Server Name") != std::string::npos;
            if (m_ok)
                return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(25));
    }
}

PulseServer::~PulseServer() {
    m_process.stop();
    if (m_previousServer.empty())
        unsetenv("PULSE_SERVER");
    else
        setenv("PULSE_SERVER", m_previousServer.c_str(), 1);
}

std::string PulseServer::pactl(const std::string& arguments) const {
    return runShell("PULSE_SERVER=unix:" + m_socket + " pactl " + arguments + " 2>/dev/null");
}

} // namespace mirabend::test
