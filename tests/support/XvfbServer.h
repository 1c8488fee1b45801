#pragma once
// A private Xvfb display for integration tests. Xvfb picks a free display
// number itself (-displayfd), so parallel test processes never collide.

#include "support/ChildProcess.h"

#include <string>
#include <vector>

namespace mirabend::test {

class XvfbServer {
public:
    // Starts Xvfb with one screen of the given size; check ok() afterwards.
    // `extra` goes on Xvfb's command line (e.g. {"-extension", "DAMAGE"}).
    explicit XvfbServer(int width = 1280, int height = 1024, int depth = 24,
                        const std::vector<std::string>& extra = {});
    ~XvfbServer();
    XvfbServer(const XvfbServer&) = delete;
    XvfbServer& operator=(const XvfbServer&) = delete;

    bool ok() const { return !m_display.empty(); }
    const std::string& display() const { return m_display; } // ":N"
    pid_t pid() const { return m_process.pid(); }

private:
    ChildProcess m_process;
    std::string m_display;
};

} // namespace mirabend::test
