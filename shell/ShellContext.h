#pragma once
// What the main window's layout and command classes share: the controls of
// Mirabend_frm and the ports to the subsystems. The main window owns all of
// it; the classes hold this context by reference.
//
// Thread contract: UI thread only.

#include "shell/ports/Ports.h"
#include "shell/ports/ShellFields.h"

#include <functional>

class QLabel;

namespace mirabend {

class Stage;
class MainStatusBar;
class KeyedToolbar;
class ExplorerBar;
class CameraSettingsPanel;

// The subsystems behind the main window. Null ports stand in until the
// wiring installs real ones.
struct ShellPorts {
    RecordingPort* recording = nullptr;
    SlideShowPort* slides = nullptr;
    CameraPort* camera = nullptr;
    AudioPort* audio = nullptr;
};

struct ShellContext {
    Stage* stage = nullptr;
    MainStatusBar* status = nullptr;
    KeyedToolbar* toolbar1 = nullptr;    // main toolbar
    KeyedToolbar* modeToolbar = nullptr; // layout toolbar
    ExplorerBar* ebDemo = nullptr;
    CameraSettingsPanel* cameraPanel = nullptr;
    QLabel* elapsedLabel = nullptr;
    ShellFields fields;
    ShellPorts ports;
    // The main window's small audio level display (not built yet).
    std::function<bool()> audioDisplayRunning = [] { return false; };
    std::function<void()> stopAudioDisplay = [] {};
    // Ends the program (unloads the main window).
    std::function<void()> unloadMainWindow = [] {};
    // Shrinks the stage one step; grows it one step back.
    std::function<void()> screenDec = [] {};
    std::function<void()> screenInc = [] {};
    // A pane switch chose a pane ("slides", "cam", "text", "draw", "web").
    std::function<void(const QString&)> paneShown = [](const QString&) {};

    static const QString& modeSingle();
    static const QString& modeSide();
    static const QString& modeMixed();
    // The mode text of status panel 6.
    QString mode() const;
    void setMode(const QString& modeText) const;
};

} // namespace mirabend
