#pragma once
// A presentation program for the slide show logic's tests: it records what
// it is asked, answers with what the test set up, and starts or dies when
// the test says so.

#include "shell/slideshow/PresentationProgram.h"

#include <QStringList>
#include <algorithm>

namespace mirabend::test {

class FakePresentationProgram final : public PresentationProgram {
    Q_OBJECT
public:
    bool ready = false;
    bool embedded = true;
    int slideCount = 3;
    int current = 0; // 0: no show runs
    ShowFailure startFailure;
    ShowFailure goFailure;

    int prepareCalls = 0;
    int shutdownCalls = 0;
    QStringList openedPaths;
    NativeHandle lastPane = 0;
    QList<QSize> sizes; // every size the show was given
    QList<SlideMove> moves;
    int endCalls = 0;
    QStringList titles; // per slide; missing entries have no title

    // Completes a prepare() the way the program would.
    void finishPrepare(const ShowFailure& failure = {}) {
        ready = !failure;
        Q_EMIT prepared(failure);
    }

    // The program ends by itself.
    void die() {
        ready = false;
        current = 0;
        Q_EMIT lost();
    }

    bool isReady() const override { return ready; }
    void prepare() override { ++prepareCalls; }
    ShowFailure startShow(const QString& path, NativeHandle pane, QSize size) override {
        openedPaths << path;
        lastPane = pane;
        sizes << size;
        if (startFailure)
            return startFailure;
        current = 1;
        return {};
    }
    bool showIsEmbedded() const override { return embedded; }
    QString showWindowClass() const override { return QStringLiteral("screenClass"); }
    void resizeShow(QSize size) override { sizes << size; }
    ShowFailure go(SlideMove move) override {
        moves << move;
        if (goFailure)
            return goFailure;
        const int step = move == SlideMove::Next ? 1 : move == SlideMove::Previous ? -1 : 0;
        current = move == SlideMove::First  ? 1
                  : move == SlideMove::Last ? slideCount
                                            : std::clamp(current + step, 1, slideCount);
        return {};
    }
    std::optional<SlidePosition> position() override {
        if (current == 0)
            return std::nullopt;
        return SlidePosition{current, slideCount};
    }
    QString slideTitle() override { return current > 0 ? titles.value(current - 1) : QString(); }
    void endShow() override {
        ++endCalls;
        current = 0;
    }
    void shutdown() override {
        ++shutdownCalls;
        ready = false;
        current = 0;
    }
};

} // namespace mirabend::test
