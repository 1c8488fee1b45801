#pragma once
// The whiteboard canvas's logic: the mouse state machine of the eighteen
// tools over a PaintSurface, the rubber bands under the XOR pen, the pending
// multi-click shapes (polygon, Bezier curve), the floating selection, the
// image history and the view (zoom and pan). The canvas widget and its twin
// hand their events to the one editor, in canvas units.
//
// Thread contract: UI thread only.

#include "whiteboard/model/EditorState.h"
#include "whiteboard/model/ImageHistory.h"
#include "whiteboard/model/PaintSurface.h"

#include <QFont>
#include <QPointF>
#include <array>
#include <functional>
#include <optional>
#include <random>

namespace mirabend {

// The filter operation: applies filter `number` to `area` of `target`;
// number 10 takes the fore and fill colours as its two parameters.
using FilterOperation = std::function<void(QImage& target, int number, QRgb fore, QRgb fill, QRect area)>;

// `picSelect`: a rectangle copied out of the canvas, floating above it.
struct FloatingSelection {
    QImage image;
    QPoint pos;
    bool visible = false;
    bool dragging = false;
    QPoint grab;
    QRect rect() const { return QRect(pos, image.size()); }
};

// `imgBezier`: the four handles of the curve being shaped.
struct BezierHandles {
    std::array<QPoint, 4> points;
    bool shown = false;
    int grabbed = -1; // 0-3 one handle, 4 all of them
    QPoint last;
};

// Zoom factor and offset of the canvas inside its pane (pane = canvas * zoom + offset).
struct ViewTransform {
    double zoom = 1.0;
    QPointF offset;
    QSize viewport;
};

class CanvasEditor {
public:
    explicit CanvasEditor(QSize size = QSize(640, 480));

    EditorState& state() { return m_state; }
    const EditorState& state() const { return m_state; }
    PaintSurface& surface() { return m_surface; }
    const PaintSurface& surface() const { return m_surface; }
    ImageHistory& history() { return m_history; }
    const FloatingSelection& selection() const { return m_selection; }
    const BezierHandles& bezier() const { return m_bezier; }
    const ViewTransform& view() const { return m_view; }

    // Canvas events (button 1 left, 2 right; shift 1 Shift, 2 Ctrl).
    void MouseDown(int button, int shift, QPointF point);
    void MouseMove(int button, int shift, QPointF point);
    void MouseUp(int button, int shift, QPointF point);
    void DblClick();
    void KeyUp(int keyCode, int shift);

    // A tool button pressed and clicked: the pending shape is finished, a
    // floating selection committed unless the selection tool is chosen.
    void selectTool(int tool);
    // A palette swatch pressed (button 1 fore colour with the pending shape
    // redrawn in it, button 2 fill colour).
    void swatchDown(int button, QRgb color);
    void setForeColor(QRgb color);
    void setFillColor(QRgb color);

    // The selection frame, drawn under the XOR pen: once shows, twice removes.
    void DrawSelectionRect();
    void commitSelection();
    // Drops a floating selection without stamping it (Escape): the board
    // stays as it was before the selection was made or pasted.
    void discardSelection();
    // Moves a floating selection by `delta` with its frame (the arrow keys).
    void moveSelection(QPoint delta);
    // Puts `image` on the canvas as a floating selection at `topLeft`.
    void pasteImage(const QImage& image, QPoint topLeft);
    // Prints canvas text at `topLeft` in the fore colour; one history step.
    void printText(QPoint topLeft, const QString& text);
    void setTextFont(const QFont& font) { m_textFont = font; }
    const QFont& textFont() const { return m_textFont; }

    // The filter tool: the operation (when built in) and the current number.
    void setFilterOperation(FilterOperation op) { m_filter = std::move(op); }
    bool hasFilterOperation() const { return static_cast<bool>(m_filter); }
    void setFilterNumber(int number) { m_filterNumber = number; }
    // The side of the square the filter tool works on for a pen width
    // (default: eight times the width).
    void setFilterBrushSize(std::function<int(int)> size) { m_filterBrushSize = std::move(size); }
    int filterNumber() const { return m_filterNumber; }
    // Applies the current filter at `point`, or to the whole target at (-1, -1).
    void runFilter(QPointF point);

    // History commands.
    void SetImageBuffer();
    bool undo();
    bool redo();
    void clearBoard();
    // A new picture for the canvas (a board page, an opened image): the
    // history starts again from it.
    void loadImage(const QImage& image);
    // Resizes the canvas (the resize handles); one history step. From then
    // on the canvas keeps the user's size instead of following its pane.
    void resizeCanvas(QSize size);

    // The view: the pane's size, zoom around a pane point, pan.
    void setViewport(QSize size);
    void zoomAt(QPointF canvasPoint, bool out);
    // Moves the canvas inside its pane (the mouse wheel), kept in reach.
    void panBy(QPointF paneDelta);
    QPointF toPane(QPointF canvasPoint) const { return canvasPoint * m_view.zoom + m_view.offset; }
    QPointF toCanvas(QPointF panePoint) const { return (panePoint - m_view.offset) / m_view.zoom; }
    // The canvas point a pointer event at `panePoint` means: the canvas
    // pixel shown under the pointer for the drawing tools (at 8x a press
    // anywhere in a magnified pixel draws on that pixel), the exact point
    // for zoom and hand, which keep or move what lies under the pointer.
    QPointF eventPoint(QPointF panePoint) const;

    // The cursor file the canvas shows now (empty: the default arrow).
    QString cursorFile() const;

    // Seeds the airbrush (tests); the program seeds from the clock.
    void seed(unsigned value) { m_random.seed(value); }

    // Told after every change: `changed` with the canvas area to repaint,
    // `stateChanged` when tool, colours or the view changed, `placeText`
    // when the text tool asks for the text box at a canvas point.
    std::function<void(QRect)> changed;
    std::function<void()> stateChanged;
    std::function<void(QPoint)> placeText;

private:
    void applyFillModeColours();
    void drawRubber(QPoint start, QPoint end);
    void drawArrow(QPoint p1, QPoint p2);
    void drawPolygonOutline();
    void drawBezier();
    void redrawPending();
    void stampAlong(QPoint from, QPoint to, int tool);
    void stamp(QPoint p, int tool);
    void spray(QPoint p);
    void closePolygon();
    void fixBezier();
    void selectionDown(QPoint p);
    void selectionRelease(QPoint p, int shift);
    void clampOffset();
    bool showStep(const std::optional<QImage>& image);
    // Forgets an open polygon or curve and its XOR preview; false when
    // there was none.
    bool dropPending();
    void emitChanged();
    void emitState();

    EditorState m_state;
    PaintSurface m_surface;
    ImageHistory m_history;
    FloatingSelection m_selection;
    BezierHandles m_bezier;
    ViewTransform m_view;
    QFont m_textFont;
    FilterOperation m_filter;
    int m_filterNumber = 1;
    std::function<int(int)> m_filterBrushSize;
    std::mt19937 m_random;
    // The pen the pending polygon or curve was drawn with, so erasing it
    // draws exactly the same pixels.
    int m_pendingWidth = 1;
    int m_pendingStyle = 0;
    QPoint m_lastStamp;
    bool m_userSized = false;
};

} // namespace mirabend
