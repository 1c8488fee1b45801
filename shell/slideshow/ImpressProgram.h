#pragma once
// PresentationProgram on LibreOffice Impress, driven over UNO.
//
// Mirabend runs an office of its own (OfficeProcess), started on the first
// prepare() and connected with a retry loop on a timer, so the main window
// never waits for it. Each show gets a frame that the office creates inside
// the slide pane (a system child of the pane's X11 window); the document's
// menus, toolbars, sidebar and status bar are hidden and the show runs
// windowed in that frame, so it follows the pane wherever the pane goes.
//
// Quirks absorbed here: a .pps would start a show of its own while loading
// (it is loaded with the plain PowerPoint filter instead); "next" on the last
// slide would show the office's black end screen (it stays on the last
// slide); a hidden document must never run a show (it crashes the office),
// so documents are always loaded into the visible frame.
//
// Thread contract: UI thread only. UNO calls block the UI thread for their
// duration; the only long one is loading a document.

#include "shell/slideshow/PresentationProgram.h"

#include <memory>

namespace mirabend {

class OfficeProcess;

class ImpressProgram final : public PresentationProgram {
    Q_OBJECT
public:
    explicit ImpressProgram(QObject* parent = nullptr);
    ~ImpressProgram() override;

    bool isReady() const override;
    void prepare() override;
    ShowFailure startShow(const QString& path, NativeHandle pane, QSize size) override;
    bool showIsEmbedded() const override { return true; }
    QString showWindowClass() const override;
    void resizeShow(QSize size) override;
    ShowFailure go(SlideMove move) override;
    std::optional<SlidePosition> position() override;
    QString slideTitle() override;
    void endShow() override;
    void shutdown() override;

    // The running office (tests stop it by this id, benchmarks watch it).
    OfficeProcess& office();
    // Seconds prepare() waits for the office to accept the connection.
    void setStartTimeout(int seconds);

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};

} // namespace mirabend
