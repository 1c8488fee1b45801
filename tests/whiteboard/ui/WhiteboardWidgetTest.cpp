// The whiteboard's widgets driven with mouse and key events (offscreen):
// every tool by its key and a drag on the canvas, the pickers, the palette,
// the text box, the board commands and pages.
#include "support/ScriptedPrompts.h"
#include "whiteboard/model/ToolTable.h"
#include "whiteboard/ui/CanvasTextBox.h"
#include "whiteboard/ui/CanvasView.h"
#include "whiteboard/ui/ColorPalette.h"
#include "whiteboard/ui/DrawPanel.h"
#include "whiteboard/ui/OptionPickers.h"
#include "whiteboard/ui/ToolPalette.h"
#include "whiteboard/ui/Whiteboard.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace mirabend {
namespace {

constexpr QRgb kWhite = 0xffffffff;

class WhiteboardWidgets : public ::testing::Test {
protected:
    void SetUp() override {
        pane = std::make_unique<QWidget>();
        pane->resize(580, 435);
        auto* layout = new QVBoxLayout(pane.get());
        layout->setContentsMargins(0, 0, 0, 0);
        board = new Whiteboard(prompts, pane.get());
        board->attachCanvas(pane.get());
        panel.reset(board->createDrawPanel());
        pane->show();
        panel->show();
        QApplication::processEvents();
        canvas = board->picPaint();
    }

    // Mouse events as the window system delivers them to the canvas.
    void send(QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held,
              Qt::KeyboardModifiers mods = Qt::NoModifier, QWidget* target = nullptr) {
        target = target ? target : canvas;
        QMouseEvent event(type, QPointF(at), target->mapToGlobal(QPointF(at)), button, held, mods);
        QApplication::sendEvent(target, &event);
    }
    void dragOnCanvas(std::initializer_list<QPoint> path, Qt::KeyboardModifiers mods = Qt::NoModifier) {
        auto p = path.begin();
        send(QEvent::MouseButtonPress, *p, Qt::LeftButton, Qt::LeftButton, mods);
        for (++p; p != path.end(); ++p)
            send(QEvent::MouseMove, *p, Qt::NoButton, Qt::LeftButton, mods);
        send(QEvent::MouseButtonRelease, *(path.end() - 1), Qt::LeftButton, Qt::NoButton, mods);
        QApplication::processEvents();
    }
    QImage image() const { return board->editor().surface().image(); }
    EditorState& state() { return board->editor().state(); }

    test::ScriptedPrompts prompts;
    std::unique_ptr<QWidget> pane;
    std::unique_ptr<QWidget> panel;
    Whiteboard* board = nullptr;
    CanvasView* canvas = nullptr;
};

struct ToolRow {
    int tool;
    bool changesPicture;
    bool customCursor;
};

TEST_F(WhiteboardWidgets, EveryToolByItsKeyAndADragOnTheCanvas) {
    // A stand-in filter (invert) behind the filter tool.
    board->setFilters(
        [](QImage& target, int, QRgb, QRgb, QRect area) {
            for (int y = area.top(); y <= area.bottom(); ++y)
                for (int x = area.left(); x <= area.right(); ++x)
                    target.setPixel(x, y, target.pixel(x, y) ^ 0xffffff);
        },
        {{1, QStringLiteral("Invert"), QString()}});
    const ToolRow rows[] = {
        {ToolSelect, true, false},   {ToolPicker, false, true},  {ToolEraser, false, true},
        {ToolFill, true, true},      {ToolPencil, true, true},   {ToolLine, true, true},
        {ToolRectangle, true, true}, {ToolEllipse, true, true},  {ToolText, false, true},
        {ToolArrow, true, true},     {ToolAirbrush, true, true}, {ToolRoundRect, true, true},
        {ToolPolygon, false, true},  {ToolBezier, true, false},  {ToolFilter, true, true},
        {ToolZoom, false, true},     {ToolBrush, true, true},    {ToolHand, false, true},
    };
    auto* palette = static_cast<DrawPanel*>(panel.get());
    for (const ToolRow& row : rows) {
        board->editor().loadImage(QImage(580, 435, QImage::Format_RGB32));
        board->editor().surface().clear();
        board->editor().zoomAt(QPointF(0, 0), true);
        board->editor().setForeColor(qRgb(0, 0, 0)); // the colour picker took white
        const QImage before = image();
        const char key = toolInfo(row.tool).key;
        canvas->setFocus();
        QTest::keyClick(canvas, static_cast<char>(key + ('a' - 'A')));
        ASSERT_EQ(state().CurrentTool, row.tool) << key;
        QToolButton* button = palette->optTools()->button(row.tool);
        EXPECT_TRUE(button->isChecked());
        EXPECT_TRUE(button->toolTip().endsWith(QStringLiteral("(%1)").arg(QLatin1Char(key)))) << key;
        EXPECT_EQ(palette->fraOptDot()->isVisibleTo(panel.get()), toolInfo(row.tool).widthPicker) << key;
        EXPECT_EQ(palette->fraOptFill()->isVisibleTo(panel.get()), toolInfo(row.tool).fillPicker) << key;
        EXPECT_EQ(canvas->cursor().shape() == Qt::BitmapCursor, row.customCursor) << key;
        if (!row.customCursor) {
            EXPECT_EQ(canvas->cursor().shape(), Qt::ArrowCursor) << "the default arrow for " << key;
        }
        dragOnCanvas({{50, 50}, {80, 70}, {120, 90}});
        EXPECT_EQ(image() != before, row.changesPicture) << "tool " << key;
        if (row.tool == ToolText) {
            EXPECT_TRUE(board->textBox()->txtText()->isVisible());
            board->textBox()->discard();
        }
        if (row.tool == ToolZoom) {
            EXPECT_EQ(board->editor().view().zoom, 2.0);
        }
    }
}

TEST_F(WhiteboardWidgets, PickerCellsSwatchesAndTheColourDialog) {
    auto* p = static_cast<DrawPanel*>(panel.get());
    board->chooseTool(ToolRectangle);
    OptionPicker* dots = p->fraOptDot();
    OptionPicker* fills = p->fraOptFill();
    const auto pixelsOf = [](OptionPicker* picker, int xTwips, int yTwips) {
        return QPoint(qRound(xTwips * picker->logicalDpiX() / 1440.0),
                      qRound(yTwips * picker->logicalDpiX() / 1440.0));
    };
    struct {
        int x, y, widthIndex;
    } widths[] = {{450, 1000, 7}, {100, 200, 0}, {450, 700, 5}, {20, 700, 5}};
    for (const auto& w : widths) {
        QTest::mouseClick(dots, Qt::LeftButton, {}, pixelsOf(dots, w.x, w.y));
        EXPECT_EQ(state().WidthIndex, w.widthIndex);
    }
    EXPECT_EQ(state().penWidth(), 6);
    struct {
        int y, fillMode;
    } modes[] = {{600, 1}, {437, 1}, {900, 2}, {762, 2}, {200, 0}};
    for (const auto& m : modes) {
        QTest::mouseClick(fills, Qt::LeftButton, {}, pixelsOf(fills, 300, m.y));
        EXPECT_EQ(state().FillMode, m.fillMode) << m.y;
    }
    QTest::mouseClick(fills, Qt::RightButton, {}, pixelsOf(fills, 300, 900));
    EXPECT_EQ(state().FillMode, 0) << "only the left button picks";

    ColorPalette* palette = p->lblColor();
    const QRgb red = palette->swatch(16)->color();
    const QRgb blue = palette->swatch(20)->color();
    QTest::mouseClick(palette->swatch(16), Qt::LeftButton);
    QTest::mouseClick(palette->swatch(20), Qt::RightButton);
    EXPECT_EQ(state().foreColor, red);
    EXPECT_EQ(state().fillColor, blue);
    EXPECT_EQ(palette->lblForeColor()->color(), red);
    EXPECT_EQ(palette->lblFillColor()->color(), blue);

    prompts.answerColor(QColor(0, 200, 0));
    prompts.answerColor(std::nullopt);
    QTest::mouseDClick(palette->lblForeColor(), Qt::LeftButton);
    QTest::mouseDClick(palette->lblFillColor(), Qt::LeftButton);
    EXPECT_EQ(state().foreColor, qRgb(0, 200, 0));
    EXPECT_EQ(state().fillColor, blue) << "a cancelled dialog changes nothing";
    EXPECT_EQ(prompts.colorTitles.size(), 2);

    p->lineStyles()->setCurrentIndex(2);
    Q_EMIT p->lineStyles()->activated(2);
    p->fillStyles()->setCurrentIndex(6);
    Q_EMIT p->fillStyles()->activated(6);
    EXPECT_EQ(state().LineStyle, 2);
    EXPECT_EQ(state().FillStyle, 6);
}

TEST_F(WhiteboardWidgets, TextBoxMovesDiscardsAndPrints) {
    board->chooseTool(ToolText);
    QLineEdit* box = board->textBox()->txtText();
    const QImage blank = image();
    dragOnCanvas({{40, 40}});
    ASSERT_TRUE(box->isVisible());
    EXPECT_EQ(box->pos(), QPoint(40, 40));
    QTest::keyClicks(box, QStringLiteral("Hi"));
    EXPECT_EQ(box->text(), QStringLiteral("Hi"));
    QTest::keyClick(box, Qt::Key_Escape);
    EXPECT_FALSE(box->isVisible());
    EXPECT_EQ(image(), blank) << "Escape discards";

    dragOnCanvas({{40, 40}});
    QTest::keyClicks(box, QStringLiteral("Hi"));
    dragOnCanvas({{60, 120}});
    EXPECT_TRUE(box->isVisible());
    EXPECT_EQ(box->pos(), QPoint(60, 120));
    EXPECT_EQ(image(), blank) << "moving the box prints nothing";
    const int steps = board->editor().history().HistoryWrite;
    const int emptyWidth = box->width();
    QTest::keyClicks(box, QStringLiteral("Hey"));
    EXPECT_GT(box->width(), emptyWidth) << "the box grows with the text";
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_FALSE(box->isVisible());
    EXPECT_EQ(board->editor().history().HistoryWrite - steps, 1);
    QRect inked;
    for (int y = 0; y < 435; ++y)
        for (int x = 0; x < 580; ++x)
            if (image().pixel(x, y) != kWhite)
                inked |= QRect(x, y, 1, 1);
    EXPECT_GE(inked.left(), 60);
    EXPECT_GE(inked.top(), 120);
    EXPECT_LT(inked.left(), 66) << "printed at the box's top-left";

    // A double-click on the box prints, and so does the focus going to
    // another control of the window.
    const std::function<void()> commits[] = {
        [box] { QTest::mouseDClick(box, Qt::LeftButton); },
        [this] { canvas->setFocus(Qt::MouseFocusReason); },
    };
    pane->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(pane.get()));
    for (const auto& commit : commits) {
        dragOnCanvas({{300, 300}});
        box->setFocus(Qt::MouseFocusReason);
        QTest::keyClicks(box, QStringLiteral("Yo"));
        const int before = board->editor().history().HistoryWrite;
        commit();
        EXPECT_FALSE(box->isVisible());
        EXPECT_EQ(board->editor().history().HistoryWrite - before, 1);
    }
}

TEST_F(WhiteboardWidgets, UndoRedoClearPasteSaveAndPages) {
    board->chooseTool(ToolPencil);
    dragOnCanvas({{10, 10}, {100, 10}});
    const QImage drawn = image();
    canvas->setFocus();
    QTest::keyClick(canvas, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(image().pixel(50, 10), kWhite);
    QTest::keyClick(canvas, Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(image(), drawn);
    board->clearBoard();
    EXPECT_EQ(image().pixel(50, 10), kWhite);
    board->undo();
    EXPECT_EQ(image(), drawn) << "undo brings a cleared board back";

    QImage red(20, 20, QImage::Format_RGB32);
    red.fill(Qt::red);
    QGuiApplication::clipboard()->setImage(red);
    QTest::keyClick(canvas, Qt::Key_V, Qt::ControlModifier);
    ASSERT_TRUE(board->editor().selection().visible);
    dragOnCanvas({{5, 5}, {195, 115}}); // drag the pasted picture
    QTest::keyClick(canvas, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(canvas, Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(board->editor().selection().pos, QPoint(200, 100)) << "dragged, then nudged by the arrows";
    board->chooseTool(ToolPencil);
    EXPECT_EQ(image().pixel(210, 110), qRgb(255, 0, 0));
    EXPECT_EQ(image().pixel(50, 10), drawn.pixel(50, 10));
    const QImage pasted = image();
    QTest::mouseClick(panel->findChild<QToolButton*>(QStringLiteral("cmdPaste")), Qt::LeftButton);
    ASSERT_TRUE(board->editor().selection().visible);
    QTest::keyClick(canvas, Qt::Key_Right);
    QTest::keyClick(canvas, Qt::Key_Escape);
    EXPECT_FALSE(board->editor().selection().visible);
    EXPECT_EQ(image(), pasted) << "Escape drops a pasted picture, frame and all";
    QImage wide(2000, 1000, QImage::Format_RGB32);
    wide.fill(Qt::blue);
    QGuiApplication::clipboard()->setImage(wide);
    board->paste();
    EXPECT_EQ(board->editor().selection().image.size(), QSize(580, 290)) << "a large picture is fitted";
    QTest::keyClick(canvas, Qt::Key_Delete);
    EXPECT_EQ(image(), pasted);
    board->chooseTool(ToolPencil);

    QTemporaryDir dir;
    prompts.answerFile(dir.filePath(QStringLiteral("board")));
    board->saveBoardAs();
    const QImage saved(dir.filePath(QStringLiteral("board.png")));
    EXPECT_EQ(saved.convertToFormat(QImage::Format_RGB32), image());
    prompts.answerFile(dir.filePath(QStringLiteral("missing/board.png")));
    board->saveBoardAs();
    ASSERT_EQ(prompts.messages.size(), 1);
    EXPECT_TRUE(prompts.messages[0].text.contains(QStringLiteral("can't save")));

    const QImage first = image();
    QTest::keyClick(canvas, Qt::Key_PageDown);
    EXPECT_EQ(board->pageCount(), 2);
    EXPECT_EQ(image().pixel(50, 10), kWhite) << "a new board is blank";
    EXPECT_FALSE(board->editor().history().canUndo());
    dragOnCanvas({{10, 200}, {100, 200}});
    QTest::keyClick(canvas, Qt::Key_PageUp);
    EXPECT_EQ(image(), first);
    EXPECT_TRUE(board->editor().history().canUndo()) << "each board keeps its history";
    board->nextPage();
    EXPECT_NE(image().pixel(50, 200), kWhite);
}

TEST_F(WhiteboardWidgets, ZoomClicksDrawUnderThePointerAndTheHandPansWithAGrabbingHand) {
    const ViewTransform& view = board->editor().view();
    canvas->setFocus();
    QTest::keyClick(canvas, Qt::Key_Z);
    for (double zoom : {2.0, 4.0, 8.0, 8.0}) {
        dragOnCanvas({{100, 100}});
        EXPECT_EQ(view.zoom, zoom) << "two-fold per click, at most eight-fold";
    }
    const QImage zoomIn = canvas->cursor().pixmap().toImage();
    QTest::keyPress(canvas, Qt::Key_Shift);
    EXPECT_NE(canvas->cursor().pixmap().toImage(), zoomIn) << "Shift shows the zoom-out glass";
    dragOnCanvas({{100, 100}}, Qt::ShiftModifier);
    EXPECT_EQ(view.zoom, 4.0) << "Shift+click zooms out";
    QTest::keyRelease(canvas, Qt::Key_Shift);
    EXPECT_EQ(canvas->cursor().pixmap().toImage(), zoomIn);
    EXPECT_EQ(panel->findChild<QLabel*>(QStringLiteral("lblPage"))->text(),
              QStringLiteral("Board 1 of 1, 4x"));
    dragOnCanvas({{100, 100}});
    EXPECT_EQ(board->editor().toCanvas(QPointF(100, 100)), QPointF(100, 100)) << "the clicked point stays";

    // Wherever the pointer sits inside a magnified pixel, the pencil inks
    // that one canvas pixel, and the pane shows it under the pointer.
    QTest::keyClick(canvas, Qt::Key_P);
    for (QPoint at : {QPoint(96, 96), QPoint(103, 96), QPoint(100, 111), QPoint(301, 222), QPoint(7, 430)}) {
        const QImage before = image();
        dragOnCanvas({at});
        int inked = 0;
        for (int y = 0; y < before.height(); ++y)
            for (int x = 0; x < before.width(); ++x)
                inked += image().pixel(x, y) != before.pixel(x, y);
        EXPECT_EQ(inked, 1) << at.x() << "," << at.y();
        EXPECT_EQ(canvas->grab().toImage().pixel(at), qRgb(0, 0, 0)) << at.x() << "," << at.y();
    }

    // The hand: a flat hand, grabbing while it drags the board along.
    QTest::keyClick(canvas, Qt::Key_H);
    const QImage flat = canvas->cursor().pixmap().toImage();
    const QPointF offset = view.offset;
    send(QEvent::MouseButtonPress, {300, 200}, Qt::LeftButton, Qt::LeftButton);
    const QImage grabbing = canvas->cursor().pixmap().toImage();
    EXPECT_NE(grabbing, flat);
    send(QEvent::MouseMove, {260, 150}, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, {260, 150}, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(view.offset - offset, QPointF(-40, -50));
    EXPECT_EQ(canvas->cursor().pixmap().toImage(), flat);
    EXPECT_EQ(canvas->grab().toImage().pixel(QPoint(301, 222) - QPoint(40, 50)), qRgb(0, 0, 0))
        << "the drawing moved with the hand";

    const auto wheel = [this](int dy, Qt::KeyboardModifiers mods) {
        QWheelEvent event(QPointF(100, 100), canvas->mapToGlobal(QPointF(100, 100)), QPoint(), QPoint(0, dy),
                          Qt::NoButton, mods, Qt::NoScrollPhase, false);
        QApplication::sendEvent(canvas, &event);
    };
    wheel(-120, Qt::ControlModifier);
    EXPECT_EQ(view.zoom, 4.0) << "Ctrl+wheel zooms";
    wheel(120, Qt::ControlModifier);
    EXPECT_EQ(view.zoom, 8.0);
    const QPointF before = view.offset;
    wheel(-120, Qt::NoModifier);
    EXPECT_EQ(view.offset - before, QPointF(0, -60)) << "the wheel scrolls the magnified board";
}

TEST_F(WhiteboardWidgets, TheCanvasFillsItsPaneAndKeepsItsDrawing) {
    board->chooseTool(ToolPencil);
    dragOnCanvas({{10, 10}, {100, 10}});
    pane->resize(800, 600);
    QApplication::processEvents();
    EXPECT_EQ(canvas->geometry(), QRect(0, 0, 800, 600));
    EXPECT_TRUE(image().width() >= 800 && image().height() >= 600);
    EXPECT_NE(image().pixel(50, 10), kWhite) << "the drawing stays";
    // The corner handle makes the canvas smaller; it keeps that size after.
    const QSize full = image().size();
    dragOnCanvas({{full.width() - 3, full.height() - 3}, {200, 150}, {300, 200}});
    EXPECT_EQ(image().size(), QSize(300, 200));
    const ImageHistory& history = board->editor().history();
    EXPECT_EQ(history.tag(history.HistoryWrite), QStringLiteral("30000200"));
    pane->resize(625, 469);
    QApplication::processEvents();
    EXPECT_EQ(image().size(), QSize(300, 200));
    EXPECT_NE(image().pixel(50, 10), kWhite);
    board->undo();
    EXPECT_EQ(image().size(), full);

    // `picProg` carries the canvas's handlers: a stroke on it lands on the board.
    const QImage before = image();
    send(QEvent::MouseButtonPress, {20, 300}, Qt::LeftButton, Qt::LeftButton, {}, board->picProg());
    send(QEvent::MouseMove, {90, 300}, Qt::NoButton, Qt::LeftButton, {}, board->picProg());
    send(QEvent::MouseButtonRelease, {90, 300}, Qt::LeftButton, Qt::NoButton, {}, board->picProg());
    EXPECT_EQ(before.pixel(50, 300), kWhite);
    EXPECT_NE(image().pixel(50, 300), kWhite);
}

} // namespace
} // namespace mirabend
