#pragma once
// "mirabend --repair-video FILE...": finishes video files a crash or a kill
// left unfinished, as the program does at its start for the recordings it
// lists as in progress.

#include "util/CommandLineTool.h"

namespace mirabend {

int runRepairVideo(int argc, char** argv);
extern const CommandLineTool kRepairVideoTool;

} // namespace mirabend
