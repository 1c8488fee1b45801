// Start-up of the mirabend executable: command-line modes first, then the
// main window.
#include "util/CommandLineTool.h"

#include <QApplication>
#include <cstdio>
#include <cstring>

namespace {

// Command-line modes offered by the subsystems.
const mirabend::CommandLineTool* const kTools[] = {
    nullptr,
};

} // namespace

int main(int argc, char** argv)
{
    for (const mirabend::CommandLineTool* tool : kTools) {
        if (!tool)
            continue;
        for (int i = 1; i < argc; ++i) {
            if (std::strcmp(argv[i], tool->option) == 0)
                return tool->run(argc, argv);
        }
    }
    QApplication app(argc, argv);
    return 0;
}
