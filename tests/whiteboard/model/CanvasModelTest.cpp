// The whiteboard canvas model, checked on the pixels it leaves: the tools,
// the XOR rubber bands, the constraints and geometry, flood fill, the
// history ring, the pickers' hit tests, the selection and the filter hook.
// Paste, clear, canvas text and zoom are driven through the widgets.
#include "whiteboard/model/CanvasEditor.h"
#include "whiteboard/model/ShapeGeometry.h"

#include <QPainter>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace mirabend {
namespace {

constexpr QRgb kWhite = 0xffffffff;
constexpr QRgb kBlack = 0xff000000;
constexpr QRgb kRed = 0xffff0000;
constexpr QRgb kBlue = 0xff0000ff;

// A picture with something on it everywhere, so XOR drawing meets every
// kind of pixel, not just the back colour.
QImage busyPicture(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb((x * 7) & 255, (y * 5) & 255, ((x + y) * 3) & 255));
    }
    return image;
}

void drag(CanvasEditor& e, QPoint from, std::vector<QPoint> moves, int shift = 0) {
    e.MouseDown(ButtonLeft, shift, from);
    for (QPoint p : moves)
        e.MouseMove(ButtonLeft, shift, p);
    e.MouseUp(ButtonLeft, shift, moves.empty() ? from : moves.back());
}

QRgb px(const CanvasEditor& e, int x, int y) {
    return e.surface().image().pixel(x, y);
}

struct XorCase {
    int tool;
    int fillMode;
    int fillStyle;
    int lineStyle;
    int widthIndex;
};

class XorRubberBands : public ::testing::TestWithParam<XorCase> {};

// Every rubber band drawn and taken away again (the pointer back at the
// press point) leaves the picture exactly as it was.
TEST_P(XorRubberBands, DrawnTwiceRestoreThePictureBitForBit) {
    const XorCase c = GetParam();
    CanvasEditor e(QSize(120, 90));
    e.surface().setImage(busyPicture(QSize(120, 90)));
    const QImage before = e.surface().image().copy();
    e.selectTool(c.tool);
    e.state().FillMode = c.fillMode;
    e.state().FillStyle = static_cast<qint16>(c.fillStyle);
    e.state().LineStyle = static_cast<qint16>(c.lineStyle);
    e.state().WidthIndex = static_cast<qint16>(c.widthIndex);
    e.setForeColor(qRgb(200, 30, 90));
    e.setFillColor(qRgb(20, 160, 60));
    const QPoint start(40, 30);
    e.MouseDown(ButtonLeft, 0, start);
    for (QPoint p : {QPoint(90, 70), QPoint(70, 35), QPoint(15, 80), QPoint(41, 75)}) {
        e.MouseMove(ButtonLeft, 0, p);
        EXPECT_NE(e.surface().image(), before) << "the rubber band shows at " << p.x() << "," << p.y();
    }
    e.MouseMove(ButtonLeft, 0, start);
    EXPECT_EQ(e.surface().image(), before);
}

INSTANTIATE_TEST_SUITE_P(Tools, XorRubberBands,
                         ::testing::Values(XorCase{0, 0, 1, 0, 0}, XorCase{5, 0, 1, 0, 0},
                                           XorCase{5, 0, 1, 1, 3}, XorCase{6, 0, 1, 0, 0},
                                           XorCase{6, 1, 0, 0, 2}, XorCase{6, 2, 7, 2, 7},
                                           XorCase{7, 1, 0, 0, 0}, XorCase{7, 1, 4, 6, 5},
                                           XorCase{9, 0, 1, 0, 0}, XorCase{9, 0, 1, 3, 4},
                                           XorCase{11, 0, 1, 0, 0}, XorCase{11, 1, 6, 4, 1}),
                         [](const ::testing::TestParamInfo<XorCase>& param) {
                             const XorCase& c = param.param;
                             return "tool" + std::to_string(c.tool) + "_fill" + std::to_string(c.fillMode) +
                                    std::to_string(c.fillStyle) + "_line" + std::to_string(c.lineStyle) +
                                    "_width" + std::to_string(c.widthIndex + 1);
                         });

TEST(XorRubberBands, OpenPolygonAndBezierVanishWhenDrawnAgain) {
    CanvasEditor e(QSize(160, 120));
    e.surface().setImage(busyPicture(QSize(160, 120)));
    const QImage before = e.surface().image().copy();
    // A colour change erases the pending shape in the old colour and draws
    // it in the new one: done back and forth, the picture is restored
    // once the pending shape is gone.
    e.selectTool(ToolPolygon);
    for (QPoint p : {QPoint(10, 10), QPoint(80, 20), QPoint(60, 90)}) {
        e.MouseDown(ButtonLeft, 0, p);
        e.MouseUp(ButtonLeft, 0, p);
    }
    const QImage open = e.surface().image().copy();
    e.swatchDown(ButtonLeft, kRed);
    e.swatchDown(ButtonLeft, kBlack);
    EXPECT_EQ(e.surface().image(), open);

    e.selectTool(ToolBezier); // closes the polygon
    e.surface().setImage(before);
    e.MouseDown(ButtonLeft, 0, QPoint(80, 60));
    e.MouseMove(ButtonLeft, 0, QPoint(85, 62));
    e.MouseUp(ButtonLeft, 0, QPoint(85, 62));
    EXPECT_NE(e.surface().image(), before);
    EXPECT_EQ(e.bezier().points[0], QPoint(35, 112)) << "the handles followed the pointer";
    e.swatchDown(ButtonLeft, kBlue);
    e.swatchDown(ButtonLeft, kBlack);
    PaintSurface& s = e.surface();
    s.DrawMode = PenXor;
    s.DrawWidth = 1;
    s.DrawStyle = 0;
    s.ForeColor = s.xorColor(kBlack);
    QPolygon curve;
    for (QPoint h : e.bezier().points)
        curve << h;
    s.bezier(curve);
    EXPECT_EQ(s.image(), before);
}

struct ConstraintCase {
    QPoint pointer;
    int shift;
    bool axisSnap;
    QPoint end;
};

TEST(ShapeGeometry, ShiftSquaresAndCtrlSnapsToTheNearerAxis) {
    const QPoint s(100, 100);
    const ConstraintCase cases[] = {
        {{130, 110}, 1, false, {110, 110}}, // 30 right, 10 down: a 10 x 10 square
        {{90, 60}, 1, true, {90, 90}},      // dy >= dx, upwards
        {{70, 105}, 1, false, {95, 105}},   // leftwards
        {{130, 110}, 2, true, {130, 100}},  // Ctrl on a line: the start's row
        {{105, 140}, 2, true, {100, 140}},  // ... or its column
        {{130, 110}, 2, false, {130, 110}}, // Ctrl on a rectangle: free
        {{130, 110}, 3, true, {130, 110}},  // both keys: free
        {{130, 110}, 0, true, {130, 110}},
    };
    for (const ConstraintCase& c : cases)
        EXPECT_EQ(constrainEnd(s, c.pointer, c.shift, c.axisSnap), c.end) << c.pointer.x() << "," << c.shift;
}

TEST(ShapeGeometry, ArrowHeadsStandAt45DegreesAndEllipsesNeedAWidth) {
    struct {
        QPoint p1, p2, head1, head2;
    } arrows[] = {
        {{0, 50}, {100, 50}, {93, 43}, {93, 57}}, // to the right
        {{50, 100}, {50, 0}, {43, 7}, {57, 7}},   // straight up: angle 90, s = -1
        {{50, 50}, {50, 50}, {50, 50}, {50, 50}}, // no length: s = 0
    };
    for (const auto& a : arrows) {
        const auto head = arrowHead(a.p1, a.p2);
        EXPECT_EQ(head[0], a.head1);
        EXPECT_EQ(head[1], a.head2);
    }
    EXPECT_FALSE(ellipseBox({10, 10}, {10, 60}).has_value());
    EXPECT_EQ(ellipseBox({10, 10}, {50, 30}), QRect(10, 10, 40, 20));
}

TEST(OptionPickers, WidthCellsAndFillCellsWithTheirGaps) {
    struct {
        int x, y, cell;
    } widths[] = {{100, 200, 0}, {400, 200, 1},  {100, 500, 2},  {574, 1149, 7}, {400, 800, 5},
                  {50, 200, -1}, {600, 200, -1}, {100, 100, -1}, {100, 1200, -1}};
    for (const auto& w : widths)
        EXPECT_EQ(widthCellAt(w.x, w.y), w.cell) << w.x << "," << w.y;
    struct {
        int y, cell;
    } fills[] = {{200, 0}, {430, -1}, {600, 1}, {760, -1}, {900, 2}, {1100, -1}, {100, -1}};
    for (const auto& f : fills)
        EXPECT_EQ(fillCellAt(f.y), f.cell) << f.y;
}

TEST(FloodFill, StopsAtABoundaryAndFollowsTheFillStyle) {
    struct {
        int style;
        QPoint filled, spared; // inside the box: a pixel that takes the colour, one that keeps white
    } cases[] = {
        {0, {20, 20}, {-1, -1}}, {2, {20, 24}, {20, 25}}, {3, {24, 20}, {25, 20}}, {1, {-1, -1}, {20, 20}}};
    for (const auto& c : cases) {
        CanvasEditor e(QSize(80, 60));
        e.selectTool(ToolRectangle);
        drag(e, {10, 10}, {{40, 40}});
        e.selectTool(ToolFill);
        e.state().FillStyle = static_cast<qint16>(c.style);
        e.setForeColor(kRed);
        drag(e, {20, 30}, {});
        if (c.filled.x() >= 0) {
            EXPECT_EQ(px(e, c.filled.x(), c.filled.y()), kRed) << "style " << c.style;
        }
        if (c.spared.x() >= 0) {
            EXPECT_EQ(px(e, c.spared.x(), c.spared.y()), kWhite) << "style " << c.style;
        }
        EXPECT_EQ(px(e, 10, 20), kBlack) << "the boundary keeps its colour";
        EXPECT_EQ(px(e, 60, 50), kWhite) << "outside the boundary nothing is filled";
    }
}

TEST(ImageHistory, WrapsAfterTwelveImagesTagsTheSizeAndStepsBackAndForth) {
    CanvasEditor e(QSize(640, 480));
    ImageHistory& h = e.history();
    EXPECT_EQ(h.tag(0), QStringLiteral("64000480"));
    e.selectTool(ToolPencil);
    for (int i = 1; i <= 11; ++i)
        drag(e, {i * 10, 10}, {{i * 10, 20}});
    EXPECT_EQ(h.HistoryWrite, 0) << "the twelfth image overwrote slot 0";
    EXPECT_EQ(h.HistoryCurrent, 0);
    EXPECT_EQ(h.HistoryOldest, 1);
    EXPECT_EQ(h.loaded(), 11);
    EXPECT_TRUE(h.ImageDirty);

    // Ten steps back reach the oldest image kept: the first stroke alone.
    for (int i = 0; i < 10; ++i)
        EXPECT_TRUE(e.undo());
    EXPECT_FALSE(e.undo());
    EXPECT_EQ(px(e, 10, 15), kBlack);
    EXPECT_EQ(px(e, 20, 15), kWhite);
    EXPECT_TRUE(e.redo());
    EXPECT_EQ(px(e, 20, 15), kBlack);
    // A new stroke after an undo drops the steps undone.
    drag(e, {300, 300}, {{310, 300}});
    EXPECT_FALSE(e.redo());
    EXPECT_TRUE(e.undo());
    EXPECT_EQ(px(e, 305, 300), kWhite);
    EXPECT_EQ(px(e, 20, 15), kBlack);

    e.resizeCanvas(QSize(300, 200));
    EXPECT_EQ(h.tag(h.HistoryWrite), QStringLiteral("30000200"));
}

// One press-move-release per tool, and the pixels and history it leaves.
struct ToolCase {
    int tool;
    int shift;
    QPoint from, to;
    std::vector<std::pair<QPoint, QRgb>> pixels;
    int historySteps;
};

TEST(CanvasTools, EachToolLeavesItsPixelsAndHistory) {
    const std::vector<ToolCase> cases = {
        {ToolPencil, 0, {10, 10}, {30, 10}, {{{20, 10}, kBlack}, {{20, 12}, kWhite}}, 1},
        {ToolLine, 2, {10, 10}, {40, 20}, {{{35, 10}, kBlack}, {{40, 20}, kWhite}}, 1},
        {ToolRectangle,
         1,
         {10, 10},
         {40, 20},
         {{{20, 15}, kBlack}, {{15, 20}, kBlack}, {{30, 20}, kWhite}},
         1},
        {ToolRectangle, 2, {10, 10}, {40, 20}, {{{40, 15}, kBlack}}, 1},
        {ToolEllipse, 0, {10, 10}, {10, 40}, {{{10, 25}, kWhite}, {{10, 10}, kWhite}}, 1},
        {ToolEllipse, 0, {10, 10}, {50, 30}, {{{30, 10}, kBlack}, {{30, 20}, kWhite}}, 1},
        {ToolArrow, 0, {10, 50}, {60, 50}, {{{35, 50}, kBlack}, {{55, 45}, kBlack}, {{55, 55}, kBlack}}, 1},
        {ToolRoundRect, 0, {10, 10}, {60, 40}, {{{35, 10}, kBlack}, {{10, 10}, kWhite}}, 1},
        // The eraser box runs from (x, y) to (x + W, y - W), W = 8.
        {ToolEraser,
         0,
         {100, 100},
         {100, 100},
         {{{104, 96}, kWhite}, {{99, 100}, kBlack}, {{100, 101}, kBlack}},
         1},
        {ToolBrush, 0, {30, 30}, {30, 30}, {{{30, 30}, kBlack}, {{31, 30}, kBlack}}, 1},
        {ToolFill, 0, {5, 5}, {5, 5}, {{{100, 100}, kBlack}}, 1},
        {ToolPicker, 0, {5, 5}, {5, 5}, {}, 1},
        {ToolSelect, 0, {10, 10}, {40, 40}, {}, 0},
        {ToolText, 0, {10, 10}, {10, 10}, {}, 0},
        {ToolPolygon, 0, {10, 10}, {40, 40}, {}, 0},
        {ToolBezier, 0, {60, 60}, {60, 60}, {}, 0},
        {ToolZoom, 0, {60, 60}, {60, 60}, {}, 0},
        {ToolHand, 0, {60, 60}, {50, 50}, {}, 1},
        {ToolAirbrush, 0, {60, 60}, {60, 60}, {}, 1},
    };
    for (const ToolCase& c : cases) {
        CanvasEditor e(QSize(160, 120));
        if (c.tool == ToolEraser) {
            e.surface().image().fill(kBlack);
            e.state().WidthIndex = 7;
        }
        e.selectTool(c.tool);
        const int before = e.history().HistoryWrite;
        drag(e, c.from, {c.to}, c.shift);
        for (const auto& [p, colour] : c.pixels)
            EXPECT_EQ(px(e, p.x(), p.y()), colour) << "tool " << c.tool << " at " << p.x() << "," << p.y();
        EXPECT_EQ(e.history().HistoryWrite - before, c.historySteps) << "tool " << c.tool;
    }
}

// S = 4 W: width 8 sprays 256 dots in a 32 x 32 square around the pointer.
TEST(CanvasTools, AirbrushSpraysInsideItsSquare) {
    CanvasEditor e(QSize(100, 100));
    e.surface().image().fill(kBlack);
    e.selectTool(ToolAirbrush);
    e.state().WidthIndex = 7;
    e.setForeColor(kWhite);
    e.seed(1);
    e.MouseDown(ButtonLeft, 0, QPoint(20, 20));
    int sprayed = 0;
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 100; ++x) {
            if (px(e, x, y) == kWhite) {
                EXPECT_TRUE(QRect(4, 4, 32, 32).contains(x, y)) << x << "," << y;
                ++sprayed;
            }
        }
    }
    EXPECT_GT(sprayed, 150) << "256 dots, a few on the same pixel";
    EXPECT_LE(sprayed, 256);
}

TEST(CanvasTools, PolygonClosesOnEnterAndSwatchesColourOnlyWhatTheyShould) {
    CanvasEditor e(QSize(120, 120));
    e.selectTool(ToolPolygon);
    e.state().FillMode = 1;
    e.state().FillStyle = 0;
    for (QPoint p : {QPoint(10, 10), QPoint(100, 10), QPoint(100, 100)}) {
        e.MouseDown(ButtonLeft, 0, p);
        e.MouseUp(ButtonLeft, 0, p);
    }
    EXPECT_EQ(px(e, 50, 10), kBlack);
    const QImage open = e.surface().image().copy();
    e.swatchDown(ButtonRight, kBlue);
    EXPECT_EQ(e.surface().image(), open) << "a right click redraws nothing";
    EXPECT_EQ(e.state().fillColor, kBlue);
    EXPECT_EQ(e.state().foreColor, kBlack);
    e.swatchDown(ButtonLeft, kRed);
    EXPECT_EQ(px(e, 50, 10), kRed) << "a left click redraws the open polygon in the new colour";
    const int before = e.history().HistoryWrite;
    e.KeyUp(13, 0);
    EXPECT_FALSE(e.state().PolygonOpen);
    EXPECT_EQ(px(e, 50, 10), kRed);
    EXPECT_EQ(px(e, 90, 50), kBlue) << "filled in the fill colour";
    EXPECT_EQ(px(e, 20, 80), kWhite);
    EXPECT_EQ(e.history().HistoryWrite - before, 1);

    // Undo with a new polygon open drops just that polygon, preview and all.
    const QImage closed = e.surface().image().copy();
    for (QPoint p : {QPoint(20, 110), QPoint(110, 110)}) {
        e.MouseDown(ButtonLeft, 0, p);
        e.MouseUp(ButtonLeft, 0, p);
    }
    EXPECT_TRUE(e.undo());
    EXPECT_FALSE(e.state().PolygonOpen);
    EXPECT_EQ(e.surface().image(), closed);
    EXPECT_TRUE(e.undo());
    EXPECT_EQ(px(e, 50, 10), kWhite) << "the next undo takes the closed polygon away";
}

TEST(Selection, DragLeavesTheSourceCommitStampsAndTheFrameVanishesWhenDrawnTwice) {
    CanvasEditor e(QSize(120, 120));
    e.surface().setImage(busyPicture(QSize(120, 120)));
    const QImage original = e.surface().image().copy();
    e.selectTool(ToolSelect);
    drag(e, {10, 10}, {{30, 30}, {40, 40}});
    ASSERT_TRUE(e.selection().visible);
    EXPECT_EQ(e.selection().rect(), QRect(10, 10, 30, 30));
    const QImage framed = e.surface().image().copy();
    EXPECT_NE(framed, original) << "the dotted frame shows";
    e.DrawSelectionRect();
    EXPECT_EQ(e.surface().image(), original);
    e.DrawSelectionRect();
    EXPECT_EQ(e.surface().image(), framed);

    const int before = e.history().HistoryWrite;
    drag(e, {20, 20}, {{70, 80}}); // grabbed inside: moved by (50, 60)
    EXPECT_EQ(e.selection().pos, QPoint(60, 70));
    EXPECT_EQ(e.history().HistoryWrite, before) << "no history step while it floats";
    e.selectTool(ToolPencil); // commits
    EXPECT_FALSE(e.selection().visible);
    EXPECT_EQ(e.history().HistoryWrite - before, 1);
    const QImage& after = e.surface().image();
    for (QPoint p : {QPoint(10, 10), QPoint(25, 25), QPoint(39, 39)})
        EXPECT_EQ(after.pixel(p), original.pixel(p)) << "the source stays";
    for (QPoint p : {QPoint(0, 0), QPoint(15, 15), QPoint(29, 29)})
        EXPECT_EQ(after.pixel(p + QPoint(60, 70)), original.pixel(p + QPoint(10, 10)))
            << "stamped at the new place";
    EXPECT_EQ(after.pixel(100, 100 + 0), original.pixel(100, 100)) << "no frame left behind";
    EXPECT_EQ(after.pixel(90, 85), original.pixel(90, 85));
}

TEST(FilterHook, WholeTargetOrAtThePointerWithAHistoryStepOnlyForTheBoard) {
    CanvasEditor e(QSize(100, 100));
    std::vector<std::pair<int, QRect>> calls;
    e.setFilterOperation([&calls](QImage& target, int number, QRgb fore, QRgb fill, QRect area) {
        EXPECT_EQ(fore, kBlack);
        EXPECT_EQ(fill, kWhite);
        calls.emplace_back(number, area);
        for (int y = area.top(); y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                target.setPixel(x, y, target.pixel(x, y) ^ 0xffffff);
    });
    e.setFilterNumber(10);
    int steps = e.history().HistoryWrite;
    e.runFilter(QPointF(-1, -1));
    EXPECT_EQ(px(e, 99, 99), kBlack);
    EXPECT_EQ(e.history().HistoryWrite - steps, 1);

    e.selectTool(ToolFilter); // pen width 1: an 8 x 8 square at the pointer
    steps = e.history().HistoryWrite;
    drag(e, {50, 50}, {});
    EXPECT_EQ(calls.back(), std::make_pair(10, QRect(46, 46, 8, 8)));
    EXPECT_EQ(px(e, 50, 50), kWhite);
    EXPECT_EQ(px(e, 60, 50), kBlack);
    EXPECT_EQ(e.history().HistoryWrite - steps, 1);

    e.selectTool(ToolSelect);
    drag(e, {10, 10}, {{30, 30}});
    const QImage board = e.surface().image().copy();
    steps = e.history().HistoryWrite;
    e.runFilter(QPointF(-1, -1));
    EXPECT_EQ(calls.back().second, QRect(0, 0, 20, 20)) << "the floating selection is the target";
    EXPECT_EQ(e.surface().image(), board);
    EXPECT_EQ(e.history().HistoryWrite, steps);
    EXPECT_EQ(e.selection().image.pixel(5, 5), kWhite);
}

} // namespace
} // namespace mirabend
