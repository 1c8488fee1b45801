#pragma once
// "mirabend --record-screen FILE [options]": records the screen from the
// command line with the same engine the options window drives.
//
// Thread contract: run() on the main thread; it owns the process's signal
// handling for SIGINT and SIGTERM while it runs.

#include "util/CommandLineTool.h"

namespace mirabend {

extern const CommandLineTool kRecordScreenTool;

int runRecordScreen(int argc, char** argv);

} // namespace mirabend
