#pragma once
// The presentation program of a Mirabend built without the office SDK:
// there is none, so every open reports that it can't open the presentation.
//
// Thread contract: UI thread only.

#include "shell/slideshow/PresentationProgram.h"

namespace mirabend {

class NoPresentationProgram final : public PresentationProgram {
    Q_OBJECT
public:
    using PresentationProgram::PresentationProgram;

    bool isReady() const override { return false; }
    void prepare() override;
    ShowFailure startShow(const QString&, NativeHandle, QSize) override;
    bool showIsEmbedded() const override { return true; }
    QString showWindowClass() const override { return QStringLiteral("screenClass"); }
    void resizeShow(QSize) override {}
    ShowFailure go(SlideMove) override;
    std::optional<SlidePosition> position() override { return std::nullopt; }
    void endShow() override {}
    void shutdown() override {}
};

} // namespace mirabend
