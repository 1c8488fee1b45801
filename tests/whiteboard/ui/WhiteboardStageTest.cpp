// The whiteboard inside the running main window on a private X display: the
// canvas fills its pane in every mode and rotation and keeps its drawing,
// and a stroke drawn and a selection dragged with mouse events show in a
// recording of the stage made meanwhile (read back with libavformat).
#include "recording/engine/Screen2Video.h"
#include "shell/CommandDispatcher.h"
#include "shell/Mirabend_frm.h"
#include "shell/Stage.h"
#include "shell/wiring/WhiteboardWiring.h"
#include "support/ChildProcess.h"
#include "support/MediaProbe.h"
#include "support/ScriptedPrompts.h"
#include "whiteboard/filters/ImageFilters.h"
#include "whiteboard/ui/CanvasView.h"
#include "whiteboard/ui/ColorPalette.h"
#include "whiteboard/ui/DrawPanel.h"
#include "whiteboard/ui/Whiteboard.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QTest>
#include <QToolButton>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace mirabend {
namespace {

void pump(int ms) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ms) {
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        QTest::qWait(10);
    }
}

class WhiteboardStage : public ::testing::Test {
protected:
    void SetUp() override {
        ShellServices services;
        services.prompts = &prompts;
        services.attachPanes.push_back(
            [this](Mirabend_frm& w) { board = WhiteboardWiring::attach(w, prompts); });
        services.endProgram = [] {
        };
        window = std::make_unique<Mirabend_frm>(std::move(services));
        window->start();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get(), 10000));
        ASSERT_NE(board, nullptr);
        window->commands().perform(QStringLiteral("draw"));
        pump(300);
        canvas = board->picPaint();
    }
    void TearDown() override {
        window->hide();
        window.reset();
    }

    void press(QPoint at) { QTest::mousePress(canvas, Qt::LeftButton, {}, at); }
    void moveHeld(QPoint at) {
        QMouseEvent event(QEvent::MouseMove, QPointF(at), canvas->mapToGlobal(QPointF(at)), Qt::NoButton,
                          Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(canvas, &event);
    }
    void release(QPoint at) { QTest::mouseRelease(canvas, Qt::LeftButton, {}, at); }
    // "X Y" on the screen for a canvas point, as xdotool takes it.
    std::string at(QPoint canvasPoint) const {
        const QPoint p = canvas->mapToGlobal(canvasPoint);
        return std::to_string(p.x()) + " " + std::to_string(p.y());
    }
    // Runs xdotool's commands on the private display (XTest: real pointer
    // events through the X server) while the program handles them.
    bool pointer(const std::vector<std::string>& commands) {
        std::vector<std::string> argv{"xdotool"};
        for (const std::string& c : commands) {
            // "X Y" pairs are two arguments.
            const auto space = c.find(' ');
            if (space == std::string::npos) {
                argv.push_back(c);
            } else {
                argv.push_back(c.substr(0, space));
                argv.push_back(c.substr(space + 1));
            }
        }
        test::ChildProcess tool;
        if (!tool.start(argv))
            return false;
        const bool ended = waitFor([&tool] { return !tool.running(); });
        return ended && tool.exitCode() == 0;
    }
    static bool waitFor(const std::function<bool()>& condition, int ms = 20000) {
        QElapsedTimer timer;
        timer.start();
        while (!condition()) {
            if (timer.elapsed() > ms)
                return false;
            QApplication::processEvents(QEventLoop::AllEvents, 20);
            QTest::qWait(10);
        }
        return true;
    }
    QRgb pixel(QPoint p) { return board->editor().surface().image().pixel(p); }

    test::ScriptedPrompts prompts;
    std::unique_ptr<Mirabend_frm> window;
    Whiteboard* board = nullptr;
    CanvasView* canvas = nullptr;
};

TEST_F(WhiteboardStage, TheCanvasFillsItsPaneInEveryModeKeepsItsDrawingAndTheFiltersReachIt) {
    QWidget* parentPic = window->context().stage->parentPic();
    ASSERT_EQ(canvas->parentWidget(), parentPic);
    EXPECT_EQ(window->focusWidget(), canvas) << "after \"draw\" the tool keys reach the canvas";
    QTest::keyClick(canvas, Qt::Key_P);
    press({20, 20});
    moveHeld({120, 20});
    release({120, 20});
    ASSERT_EQ(pixel({70, 20}), qRgb(0, 0, 0));
    int checked = 0;
    for (const char* key : {"uni", "side", "mix", "rotate1", "rotate2", "rotate3", "rotate0", "uni", "draw",
                            "side", "draw", "mix", "draw"}) {
        window->commands().perform(QString::fromLatin1(key));
        pump(50);
        if (parentPic->isVisible()) {
            EXPECT_EQ(canvas->geometry(), parentPic->rect()) << key;
            EXPECT_TRUE(canvas->isVisible()) << key;
            ++checked;
        }
        EXPECT_EQ(pixel({70, 20}), qRgb(0, 0, 0)) << "the drawing stays after " << key;
        EXPECT_GE(board->editor().surface().image().width(), parentPic->width());
    }
    EXPECT_GE(checked, 4);

    // The draw bar lists the filters; its button and the filter tool use them.
    DrawPanel* panel = board->panel();
    QComboBox* list = panel->filters();
    ASSERT_EQ(list->count(), static_cast<int>(imageFilters().size()));
    const int invert = list->findData(static_cast<int>(ImageFilterNumber::Invert));
    ASSERT_GE(invert, 0);
    list->setCurrentIndex(invert);
    Q_EMIT list->activated(invert);

    const ImageHistory& history = board->editor().history();
    const int steps = history.HistoryWrite;
    QTest::mouseClick(panel->findChild<QToolButton*>(QStringLiteral("cmdApplyFilter")), Qt::LeftButton);
    EXPECT_EQ(pixel({3, 3}), qRgb(0, 0, 0)) << "the whole board inverted";
    EXPECT_EQ(pixel({400, 300}), qRgb(0, 0, 0));
    EXPECT_EQ(history.HistoryWrite - steps, 1);

    // The filter tool works on its brush square under the pointer.
    QTest::keyClick(canvas, Qt::Key_X);
    press({200, 200});
    release({200, 200});
    const QRect square = filterBrushRect({200, 200}, filterBrushSize(board->editor().state().penWidth()));
    EXPECT_EQ(pixel(square.topLeft()), qRgb(255, 255, 255));
    EXPECT_EQ(pixel(square.bottomRight()), qRgb(255, 255, 255));
    EXPECT_EQ(pixel(square.topLeft() - QPoint(1, 1)), qRgb(0, 0, 0));
    EXPECT_EQ(pixel(square.bottomRight() + QPoint(1, 1)), qRgb(0, 0, 0));
    EXPECT_EQ(history.HistoryWrite - steps, 2);
}

TEST_F(WhiteboardStage, AStrokeShowsInARecordingOfTheStageMadeMeanwhile) {
    ASSERT_TRUE(test::haveProgram("xdotool")) << "the pointer is driven with xdotool: install it";
    Stage* stage = window->context().stage;
    auto* panel = static_cast<DrawPanel*>(board->panel());
    test::TempFolder folder{"mirabend-board"};
    const std::string file = folder.file("board.avi");
    Screen2Video recorder;
    recorder.OutputFileName(QString::fromStdString(file));
    recorder.CaptureWindowHandle(QString::number(stage->winId()));
    recorder.AudioEnabled(false);
    recorder.FrameRate(10);
    ASSERT_TRUE(recorder.StartCapture()) << recorder.LastFailure().detail;
    pump(800);

    // The board in black by flood fill, then a thick white pencil stroke.
    QTest::keyClick(canvas, Qt::Key_F);
    press({300, 300});
    release({300, 300});
    QTest::mouseClick(panel->lblColor()->swatch(14), Qt::LeftButton); // white
    QTest::keyClick(canvas, Qt::Key_P);
    board->editor().state().WidthIndex = 7;
    press({60, 100});
    for (int x = 60; x <= 260; x += 10)
        moveHeld({x, 100});
    release({260, 100});
    pump(100);
    const double strokeAt = recorder.Counters().secondsRecorded;
    pump(1000);

    // A selection around the stroke's left end, dragged 150 pixels down by
    // the display's own pointer, as a user's mouse does it.
    QTest::keyClick(canvas, Qt::Key_S);
    ASSERT_TRUE(pointer({"mousemove", at({50, 85}), "mousedown", "1", "mousemove", at({100, 100}),
                         "mousemove", at({110, 115}), "mouseup", "1"}));
    ASSERT_TRUE(waitFor([this] { return board->editor().selection().visible; }));
    EXPECT_EQ(board->editor().selection().rect(), QRect(50, 85, 60, 30));
    pump(600); // the next press is no double-click
    std::vector<std::string> drag{"mousemove", at({80, 100}), "mousedown", "1"};
    for (int y = 125; y <= 250; y += 25)
        drag.insert(drag.end(), {"sleep", "0.05", "mousemove", at({80, y})});
    drag.insert(drag.end(), {"mouseup", "1"});
    ASSERT_TRUE(pointer(drag));
    ASSERT_TRUE(waitFor([this] {
        return board->editor().selection().pos == QPoint(50, 235) && !board->editor().selection().dragging;
    }));
    pump(100);
    const double draggedAt = recorder.Counters().secondsRecorded;
    pump(1000);
    recorder.StopCapture();
    ASSERT_TRUE(test::probe(file).opened);

    const QPoint strokeOnStage = canvas->mapTo(stage, QPoint(60, 96));
    const QPoint quietOnStage = canvas->mapTo(stage, QPoint(60, 200));
    EXPECT_GT(test::brightestLuma(file, strokeOnStage.x(), strokeOnStage.y(), 200, 8, strokeAt + 0.3), 200)
        << "the white stroke is in the recording";
    EXPECT_LT(test::brightestLuma(file, quietOnStage.x(), quietOnStage.y(), 200, 40, strokeAt + 0.3), 60)
        << "the rest of the board is black in the recording";
    const QPoint movedOnStage = canvas->mapTo(stage, QPoint(60, 246));
    EXPECT_GT(test::brightestLuma(file, movedOnStage.x(), movedOnStage.y(), 40, 8, draggedAt + 0.3), 200)
        << "the dragged selection is in the recording at its new place";
    EXPECT_GT(test::brightestLuma(file, strokeOnStage.x(), strokeOnStage.y(), 40, 8, draggedAt + 0.3), 200)
        << "its source stays";
}

} // namespace
} // namespace mirabend
