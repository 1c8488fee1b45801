#pragma once
// A private PulseAudio server for the recorder's integration tests: its own
// runtime folder, a null sink and a 440 Hz sine source named "mic". The
// process environment is pointed at it (PULSE_SERVER) so libpulse and the
// pulse input find it. Stopped by process id.

#include "support/ChildProcess.h"

#include <string>

namespace mirabend::test {

class PulseServer {
public:
    PulseServer();
    ~PulseServer();
    bool ok() const { return m_ok; }
    // Runs pactl against this server; returns its output ("" on failure).
    std::string pactl(const std::string& arguments) const;

private:
    TempFolder m_folder{"mirabend-pulse"};
    ChildProcess m_process;
    std::string m_socket;
    std::string m_previousServer; // restored on stop
    bool m_ok = false;
};

} // namespace mirabend::test
