#pragma once
// The main window's controls that the subsystems behind the ports read and
// write. The texts of these controls are the program's shared state (the
// presentation path, "no"/"ppt", the slide numbers, "run"/"sleep", ...), so
// the subsystems receive the controls themselves, not copies.
//
// Thread contract: UI thread only.

class QLineEdit;
class QMainWindow;
class QWidget;

namespace mirabend {

class Prompts;

struct ShellFields {
    QMainWindow* window = nullptr; // Mirabend_frm: its caption shows the open file
    QWidget* frmSS = nullptr;      // the slide pane, a native window
    QLineEdit* Text1 = nullptr;    // full path of the open presentation
    QLineEdit* Text2 = nullptr;    // recording-state field: "R" recording, "P" paused
    QLineEdit* Text3 = nullptr;    // slide number after the last navigation
    QLineEdit* Text4 = nullptr;    // "run" while recording, "sleep" after a stop
    QLineEdit* ppt_txt = nullptr;  // "no" until a presentation is open, then "ppt"
    QLineEdit* slide_txt = nullptr;    // slide count
    QLineEdit* slideNow_txt = nullptr; // current slide number
    Prompts* prompts = nullptr;
};

} // namespace mirabend
