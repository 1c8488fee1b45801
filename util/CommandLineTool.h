#pragma once
// A command-line mode of the mirabend executable ("--record-screen FILE",
// "--record-audio FILE", ...). Each subsystem offers its own; app/main.cpp
// lists them, prints their help and runs the one named first on the command
// line.

namespace mirabend {

struct CommandLineTool {
    const char* option;   // "--record-screen"
    const char* synopsis; // "--record-screen FILE [options]"
    const char* help;     // further lines for --help, each starting with two blanks
    // Runs the mode with the whole argv; returns the process exit code. The
    // mode creates its own (Gui)Application when it needs one.
    int (*run)(int argc, char** argv);
};

} // namespace mirabend
