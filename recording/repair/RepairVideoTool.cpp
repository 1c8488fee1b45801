#include "recording/repair/RepairVideoTool.h"

#include "recording/repair/RecordingJournal.h"
#include "recording/repair/VideoRepair.h"

extern "C" {
#include <libavutil/log.h>
}

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace mirabend {

int runRepairVideo(int argc, char** argv) {
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--repair-video") == 0)
            continue;
        if (argv[i][0] == '-') {
            std::fprintf(stderr, "mirabend: unknown option %s (see mirabend --help)\n", argv[i]);
            return 2;
        }
        files.emplace_back(argv[i]);
    }
    if (files.empty()) {
        std::fprintf(stderr, "mirabend: --repair-video needs a file name\n");
        return 2;
    }
    // The damage itself makes the demuxers talk; what counts is reported below.
    av_log_set_level(std::getenv("MIRABEND_FFMPEG_LOG") ? AV_LOG_INFO : AV_LOG_QUIET);
    const bool terminal = isatty(STDERR_FILENO);
    const RecordingJournal journal;
    int result = 0;
    for (const std::string& file : files) {
        VideoRepairReport report;
        const VideoRepairFailure failure = repairVideo(file, report, [&](double done) {
            if (terminal)
                std::fprintf(stderr, "\r%s: %3d %%", file.c_str(), int(done * 100));
            return true;
        });
        if (terminal)
            std::fprintf(stderr, "\r\033[K");
        if (failure) {
            std::fprintf(stderr, "mirabend: cannot repair %s\n", failure.detail.c_str());
            result = 1;
            continue;
        }
        journal.remove(file);
        std::printf("%s repaired: %.1f s\n", file.c_str(), report.seconds);
    }
    return result;
}

const CommandLineTool kRepairVideoTool = {
    "--repair-video",
    "--repair-video FILE...",
    "  Finishes video recordings a crash or a kill left unfinished (AVI, WMV, FLV, SWF, MP4, MKV):\n"
    "  the file is rewritten complete under the same name; it is kept as it was if that fails.\n",
    &runRepairVideo,
};

} // namespace mirabend
