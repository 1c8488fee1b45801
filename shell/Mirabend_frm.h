#pragma once
// The main window: toolbar, task pane, stage and status bar. It owns the
// controls and wires the layout and command classes to them; the work itself
// is done by those classes (PresentationModes, PaneRotation, PaneSwitcher,
// RecordingCommands, CommandDispatcher).
//
// Lifecycle, in this order: construction -> Form_Initialize -> Form_Load ->
// running -> Form_QueryUnload -> Form_Unload -> Form_Terminate.
//
// Thread contract: UI thread only.

#include "shell/ShellContext.h"

#include <QMainWindow>
#include <functional>
#include <memory>
#include <vector>

class QLineEdit;

namespace mirabend {

class CommandDispatcher;
class PaneRotation;
class PaneSwitcher;
class PresentationModes;
class RecordingCommands;
class SlideCounter;
class StageSize;
class Mirabend_frm;

// What the main window needs from outside. Every factory may be left empty;
// the subsystem is then absent and its commands do nothing.
struct ShellServices {
    Prompts* prompts = nullptr;
    // Called by Form_Initialize: the recording options window and its session.
    std::function<std::unique_ptr<RecordingPort>(Mirabend_frm&)> makeRecording;
    std::function<std::unique_ptr<SlideShowPort>(Mirabend_frm&)> makeSlides;
    std::function<std::unique_ptr<CameraPort>(Mirabend_frm&)> makeCamera;
    std::function<std::unique_ptr<AudioPort>(Mirabend_frm&)> makeAudio;
    // Called by Form_Load once the task pane exists: each subsystem puts its
    // widgets into the stage's pane containers and its tools into its bar.
    std::vector<std::function<void(Mirabend_frm&)>> attachPanes;
    // Ends the whole program (default: quits the application).
    std::function<void()> endProgram;
};

class Mirabend_frm : public QMainWindow {
    Q_OBJECT
public:
    static constexpr int kHeightFloorTwips = 2800;

    explicit Mirabend_frm(ShellServices services, QWidget* parent = nullptr);
    ~Mirabend_frm() override;

    void Form_Initialize();
    void Form_Load();
    void Form_Resize();
    void Form_QueryUnload();
    void Form_Unload();
    void Form_Terminate();
    void InitDevices();

    // Runs Form_Initialize and Form_Load, then shows the window.
    void start();

    // Registers the compiled-in pictures (toolbar, task pane, window icon).
    static void registerResources();

    ShellContext& context() { return m_ctx; }
    const ShellContext& context() const { return m_ctx; }
    PresentationModes& modes() { return *m_modes; }
    PaneRotation& rotation() { return *m_rotation; }
    PaneSwitcher& panes() { return *m_panes; }
    CommandDispatcher& commands() { return *m_commands; }
    RecordingCommands& recordingCommands() { return *m_recording; }

    // Screen twips per pixel, read at load.
    double twipsPerPixelX() const { return m_twipsPerPixelX; }
    double twipsPerPixelY() const { return m_twipsPerPixelY; }
    // Audio input devices found by InitDevices.
    const QStringList& audioInputDevices() const { return m_audioDevices; }

    void ScreenDec();
    void ScreenInc();
    SlideCounter& slideCounter() { return *m_slideCounter; }
    // Status panel 3: the audio inputs found by InitDevices.
    static constexpr int kAudioPanel = 3;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    QLineEdit* hiddenField(const char* name, const char* text);
    void buildToolbars();
    void buildCentre();
    void wireCamera();
    // Shows what InitDevices found, once the task pane exists.
    void showAudioDevices();

    ShellServices m_services;
    ShellContext m_ctx;
    std::unique_ptr<RecordingPort> m_recordingPort;
    std::unique_ptr<SlideShowPort> m_slidesPort;
    std::unique_ptr<CameraPort> m_cameraPort;
    std::unique_ptr<AudioPort> m_audioPort;
    std::unique_ptr<PresentationModes> m_modes;
    std::unique_ptr<PaneRotation> m_rotation;
    std::unique_ptr<PaneSwitcher> m_panes;
    std::unique_ptr<RecordingCommands> m_recording;
    std::unique_ptr<CommandDispatcher> m_commands;
    std::unique_ptr<StageSize> m_stageSize;
    SlideCounter* m_slideCounter = nullptr;
    QStringList m_audioDevices;
    double m_twipsPerPixelX = 15.0;
    double m_twipsPerPixelY = 15.0;
    bool m_reportNoAudioDevices = false;
    bool m_initialized = false;
    bool m_loaded = false;
    bool m_ending = false;
};

} // namespace mirabend
