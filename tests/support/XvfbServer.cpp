#include "support/XvfbServer.h"

#include <string>

namespace mirabend::test {

XvfbServer::XvfbServer(int width, int height, int depth, const std::vector<std::string>& extra) {
    if (!haveProgram("Xvfb"))
        return;
    const std::string screen =
        std::to_string(width) + "x" + std::to_string(height) + "x" + std::to_string(depth);
    std::vector<std::string> arguments = {"Xvfb",     "-displayfd", "{fd}",      "-screen",
                                          "0",        screen,       "-nolisten", "tcp",
                                          "-noreset", "+extension", "MIT-SHM"};
    arguments.insert(arguments.end(), extra.begin(), extra.end());
    // The display number comes once Xvfb accepts connections.
    const std::string number = m_process.startReportingLine(arguments);
    if (!number.empty())
        m_display = ":" + number;
}

XvfbServer::~XvfbServer() {
    m_process.stop();
}

} // namespace mirabend::test
