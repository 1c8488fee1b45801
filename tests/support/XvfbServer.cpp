#include "support/XvfbServer.h"

#include <cerrno>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace mirabend::test {

XvfbServer::XvfbServer(int width, int height, int depth, const std::vector<std::string>& extra)
{
    if (!haveProgram("Xvfb"))
        return;
    int fds[2];
    if (pipe(fds) != 0)
        return;
    const std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x" + std::to_string(depth);
    std::vector<std::string> arguments = {"Xvfb",     "-displayfd", std::to_string(fds[1]), "-screen", "0", screen,
                                          "-nolisten", "tcp", "-noreset", "+extension", "MIT-SHM"};
    arguments.insert(arguments.end(), extra.begin(), extra.end());
    const bool started = m_process.start(arguments, {}, {}, fds[1]);
    close(fds[1]);
    if (!started) {
        close(fds[0]);
        return;
    }
    // Xvfb writes the display number followed by a newline once it accepts
    // connections.
    std::string number;
    pollfd p{fds[0], POLLIN, 0};
    while (poll(&p, 1, 10000) > 0) {
        char c = 0;
        const ssize_t n = read(fds[0], &c, 1);
        if (n <= 0 || c == '\n')
            break;
        number.push_back(c);
    }
    close(fds[0]);
    if (number.empty()) {
        m_process.stop();
        return;
    }
    m_display = ":" + number;
}

XvfbServer::~XvfbServer() { m_process.stop(); }

} // namespace mirabend::test
