// The remote-control client modes as a program of their own, so the tests
// run them exactly as "mirabend --command KEY" would, in a separate process.
#include "recording/ui/remote/RemoteClient.h"

#include <cstdio>
#include <cstring>

int main(int argc, char** argv) {
    for (const mirabend::CommandLineTool* tool :
         {&mirabend::kRemoteCommandTool, &mirabend::kRemoteRecordToTool}) {
        for (int i = 1; i < argc; ++i) {
            if (std::strcmp(argv[i], tool->option) == 0)
                return tool->run(argc, argv);
        }
    }
    std::fprintf(stderr, "usage: %s --command KEY | --record-to FILE\n", argv[0]);
    return 2;
}
