#pragma once
// Puts the real subsystems behind the main window's ports: the recording
// session, the slide show, the camera and the audio recorder. Subsystems
// that are not built into this program stay absent and their commands do
// nothing.

#include "shell/Mirabend_frm.h"

namespace mirabend {

ShellServices makeShellServices(Prompts& prompts);

// The command-line modes of the subsystems, for app/main.cpp.
struct CommandLineTool;
const CommandLineTool* const* commandLineTools(int* count);

} // namespace mirabend
