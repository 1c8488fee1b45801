#pragma once
// What the recording session writes into, and reads from, the main window.
// The session lives below the shell, so it sees the main window only through
// this interface; the shell implements it over its real controls.
//
// Thread contract: UI thread only.

#include <QString>
#include <cstdint>

namespace mirabend {

class RecordingHost {
public:
    virtual ~RecordingHost() = default;

    // 1-based panels of the main window's status bar.
    virtual QString statusPanel(int index) const = 0;
    virtual void setStatusPanel(int index, const QString& text) = 0;
    // The main window's elapsed-time label.
    virtual void setElapsedLabel(const QString& text) = 0;

    // Hidden fields: the recording-state field ("R" / "P") and Text4 ("run" / "sleep").
    virtual QString recordingState() const = 0;
    virtual void setRecordingState(const QString& text) = 0;
    virtual QString Text4() const = 0;
    virtual void setText4(const QString& text) = 0;

    // The notice box shown during the warm-up.
    virtual void setNoticeVisible(bool visible) = 0;

    // Main toolbar buttons by 1-based position (12 is the record button).
    virtual void setToolbarButtonEnabled(int position, bool enabled) = 0;

    // Items of the task pane group keyed "record" ("options", "startrec", "pause", "stop").
    virtual void setRecordItemEnabled(const QString& itemKey, bool enabled) = 0;
    virtual void redrawTaskPane() = 0;

    // The main window into / out of the top-most band, without moving or resizing it.
    virtual void setTopMost(bool topMost) = 0;

    // Size of the main window and X11 id of the stage window that is recorded.
    virtual int mainWindowWidth() const = 0;
    virtual int mainWindowHeight() const = 0;
    virtual std::uint32_t stageWindowHandle() const = 0;
    virtual int stageWidth() const = 0;
    virtual int stageHeight() const = 0;
};

} // namespace mirabend
