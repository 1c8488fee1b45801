// Runs the audio command-line modes the way the mirabend executable does.
#include "audio/ui/AudioTools.h"

#include <cstdio>
#include <cstring>

int main(int argc, char** argv) {
    const mirabend::CommandLineTool* const tools[] = {&mirabend::kRecordAudioTool, &mirabend::kRepairWavTool,
                                                      &mirabend::kAudioRecorderTool};
    for (const mirabend::CommandLineTool* tool : tools) {
        for (int i = 1; i < argc; ++i) {
            if (std::strcmp(argv[i], tool->option) == 0)
                return tool->run(argc, argv);
        }
    }
    for (const mirabend::CommandLineTool* tool : tools)
        std::fprintf(stderr, "%s\n%s", tool->synopsis, tool->help);
    return 2;
}
