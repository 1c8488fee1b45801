#pragma once
// What the rest of Mirabend uses of the audio recorder: the window, the list
// of input devices for the start-up check, and the command-line modes.
//
// Thread contract: UI thread (the command-line modes run on main's thread).

#include "util/CommandLineTool.h"

#include <QStringList>

class QWidget;

namespace mirabend {

class Form1;
class Prompts;

// Opens the audio recorder window (the main window's "mic" command). The
// window is a top-level window owned by `parent` when one is given, and
// deletes itself when closed.
Form1* openAudioRecorder(Prompts& prompts, QWidget* parent = nullptr);

// Readable names of the audio input devices; empty when there are none.
QStringList audioInputDevices();

// "--record-audio FILE [--seconds N] [--device NAME] [--line NAME] ..."
extern const CommandLineTool kRecordAudioTool;
// "--repair-wav FILE [--rate HZ] [--channels 1|2]"
extern const CommandLineTool kRepairWavTool;
// "--audio-recorder": the recorder window on its own.
extern const CommandLineTool kAudioRecorderTool;

} // namespace mirabend
