#pragma once
// The main window reaches its subsystems through these small interfaces. The
// shell's wiring installs the real ones; until a subsystem is present the
// Null* versions stand in and its commands do nothing.
//
// Thread contract: UI thread only.

#include <QString>
#include <QStringList>

namespace mirabend {

// The recording session (the options window's public operations).
class RecordingPort {
public:
    virtual ~RecordingPort() = default;
    virtual void StartRecPre() = 0;
    virtual void StartRec() = 0;
    virtual void PauseRec() = 0;
    virtual void ResumeRec() = 0;
    virtual void StopRec() = 0;
    virtual void showOptions() = 0;
    // Size fields of the options window: the default recording area.
    virtual void setDefaultArea(int width, int height) = 0;
    // A chapter of the running recording begins now, named `title`.
    virtual void addChapter(const QString& title) { (void)title; }
};

// The slide show in the slide pane.
class SlideShowPort {
public:
    virtual ~SlideShowPort() = default;
    virtual void openSlides() = 0;       // asks for a file, then shows it
    virtual void openSlidesStart() = 0;  // the welcome presentation
    virtual bool openFile(const QString& path) = 0; // a file named on the command line
    virtual void OpenSlidesResize() = 0; // after the slide pane changed size
    virtual void PresentSize() = 0;      // after a rotation or pane move
    virtual void PPTInfo() = 0;
    // "first", "next", "previous", "last", "exit" (end of show).
    virtual void navigate(const QString& key) = 0;
    // Ends the presentation program when the main window ends.
    virtual void shutdown() = 0;
    // True while an open waits for the presentation program to start.
    virtual bool isOpening() const { return false; }
    // The title of the slide the show is on; empty when it has none.
    virtual QString slideTitle() { return {}; }
};

// The camera pane's capture control.
class CameraPort {
public:
    virtual ~CameraPort() = default;
    virtual void PreviewCam1() = 0;
    virtual QStringList deviceNames() = 0;
    virtual QStringList formatNames() = 0;
};

// The audio recorder window and the main window's small level display.
class AudioPort {
public:
    virtual ~AudioPort() = default;
    virtual void showRecorder() = 0;
    // Names of the audio input devices; empty when the system has none.
    virtual QStringList inputDevices() = 0;
};

class NullRecordingPort final : public RecordingPort {
public:
    void StartRecPre() override {}
    void StartRec() override {}
    void PauseRec() override {}
    void ResumeRec() override {}
    void StopRec() override {}
    void showOptions() override {}
    void setDefaultArea(int, int) override {}
};

class NullSlideShowPort final : public SlideShowPort {
public:
    void openSlides() override {}
    void openSlidesStart() override {}
    bool openFile(const QString&) override { return false; }
    void OpenSlidesResize() override {}
    void PresentSize() override {}
    void PPTInfo() override {}
    void navigate(const QString&) override {}
    void shutdown() override {}
};

class NullCameraPort final : public CameraPort {
public:
    void PreviewCam1() override {}
    QStringList deviceNames() override { return {}; }
    QStringList formatNames() override { return {}; }
};

class NullAudioPort final : public AudioPort {
public:
    void showRecorder() override {}
    QStringList inputDevices() override { return {}; }
};

} // namespace mirabend
