#pragma once
// The presentation program that runs slide shows inside the slide pane. The
// slide show logic (SlideShow) talks to it only through this interface; the
// product uses LibreOffice Impress (ImpressProgram), builds without the
// office SDK use NoPresentationProgram, and tests use a fake.
//
// Starting the program may take seconds, so it is asynchronous: prepare()
// returns at once and prepared() reports the outcome. Everything else is a
// synchronous call into the running program.
//
// Thread contract: UI thread only. Signals are emitted on the UI thread.

#include "util/WindowSystem.h"
#include "util/core/Failure.h"

#include <QObject>
#include <QSize>
#include <QString>
#include <optional>

namespace mirabend {

enum class ShowError {
    None,
    NoProgram,        // the presentation program is not installed
    StartFailed,      // it did not start or refused the automation connection
    OpenFailed,       // the file could not be read
    NotAPresentation, // the file opened, but not as a presentation
    ShowFailed,       // the show did not start
    ProgramLost,      // the program ended while we used it
};

using ShowFailure = Failure<ShowError>;

enum class SlideMove { First, Next, Previous, Last };

struct SlidePosition {
    int current = 0; // 1-based
    int count = 0;
};

class PresentationProgram : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    ~PresentationProgram() override = default;

    // True when the program runs and accepts automation calls.
    virtual bool isReady() const = 0;
    // Starts the program unless it runs already. Returns at once; prepared()
    // follows, also when it was ready already.
    virtual void prepare() = 0;

    // Opens `path` (any previous show ends first) and runs its show windowed
    // inside the native window `pane`, sized `size` in device pixels.
    virtual ShowFailure startShow(const QString& path, NativeHandle pane, QSize size) = 0;
    // True when the running show lives inside the pane; false when it opened
    // a top-level window of its own that the caller has to embed.
    virtual bool showIsEmbedded() const = 0;
    // X11 class of a show window that opened at top level.
    virtual QString showWindowClass() const = 0;
    virtual void resizeShow(QSize size) = 0;

    virtual ShowFailure go(SlideMove move) = 0;
    // The running show's position; empty when no show runs.
    virtual std::optional<SlidePosition> position() = 0;
    // The title of the slide the show is on; empty when it has none.
    virtual QString slideTitle() { return {}; }
    // Ends the show and closes its presentation; the pane becomes empty.
    virtual void endShow() = 0;
    // Ends the program itself (the main window is closing).
    virtual void shutdown() = 0;

Q_SIGNALS:
    void prepared(mirabend::ShowFailure failure);
    // The program ended by itself while a show ran.
    void lost();
};

} // namespace mirabend

Q_DECLARE_METATYPE(mirabend::ShowFailure)
