#include "whiteboard/model/CanvasEditor.h"

#include "whiteboard/model/ShapeGeometry.h"
#include "whiteboard/model/ToolTable.h"

#include <QPolygon>
#include <chrono>
#include <cmath>

namespace mirabend {

namespace {

QPoint rounded(QPointF p) {
    return QPoint(static_cast<int>(std::lround(p.x())), static_cast<int>(std::lround(p.y())));
}

} // namespace

CanvasEditor::CanvasEditor(QSize size)
    : m_surface(size)
    , m_textFont(QStringLiteral("DejaVu Sans"), 16)
    , m_random(static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count())) {
    m_history.reset(m_surface.image());
    m_view.viewport = size;
}

void CanvasEditor::MouseDown(int button, int /*shift*/, QPointF point) {
    EditorState& s = m_state;
    PaintSurface& c = m_surface;
    const QPoint p = rounded(point);
    if (button == ButtonRight) {
        if (s.CurrentTool == ToolPicker) {
            s.fillColor = c.pixel(p);
            emitState();
        }
        return;
    }
    if (button != ButtonLeft)
        return;
    // `picSelect` lies above the canvas: a press on it drags it.
    if (m_selection.visible && m_selection.rect().contains(p) && s.CurrentTool == ToolSelect) {
        selectionDown(p);
        return;
    }
    s.IsDrawing = true;
    s.StartPoint = p;
    if (s.CurrentTool != ToolSelect) {
        c.DrawStyle = s.LineStyle;
        c.DrawWidth = s.penWidth();
    } else {
        c.DrawStyle = StyleDot;
        c.DrawWidth = 1;
    }
    const int w = c.DrawWidth;
    m_lastStamp = p;
    switch (s.CurrentTool) {
    case ToolPicker:
        s.foreColor = c.pixel(p);
        emitState();
        return;
    case ToolEraser:
    case ToolBrush:
        c.DrawMode = PenCopy;
        stamp(p, s.CurrentTool);
        emitChanged();
        return;
    case ToolFill:
        c.DrawMode = PenCopy;
        c.FillColor = s.foreColor;
        c.FillStyle = s.FillStyle;
        c.floodFill(p);
        emitChanged();
        return;
    case ToolPencil:
        c.DrawMode = PenCopy;
        c.ForeColor = s.foreColor;
        c.dot(p);
        emitChanged();
        return;
    case ToolText:
        s.IsDrawing = false;
        if (placeText)
            placeText(p);
        return;
    case ToolAirbrush:
        c.DrawMode = PenCopy;
        c.ForeColor = s.foreColor;
        spray(p);
        emitChanged();
        return;
    case ToolPolygon:
        c.DrawMode = PenXor;
        c.FillStyle = FillTransparent;
        c.ForeColor = c.xorColor(s.foreColor);
        if (!s.PolygonOpen) {
            s.PolygonPoints = {p};
            s.PolygonOpen = true;
            m_pendingWidth = w;
            m_pendingStyle = c.DrawStyle;
        } else {
            s.PolygonPoints.append(p);
            c.DrawWidth = m_pendingWidth;
            c.DrawStyle = m_pendingStyle;
            const int n = static_cast<int>(s.PolygonPoints.size());
            c.segment(s.PolygonPoints[n - 2], s.PolygonPoints[n - 1]);
        }
        emitChanged();
        return;
    case ToolBezier:
        if (!m_bezier.shown) {
            c.DrawMode = PenXor;
            c.ForeColor = c.xorColor(s.foreColor);
            m_pendingWidth = w;
            m_pendingStyle = c.DrawStyle;
            m_bezier.points = bezierHandles(p);
            m_bezier.shown = true;
            m_bezier.grabbed = 4;
            drawBezier();
        } else {
            // A press on a handle shapes the curve by that handle.
            m_bezier.grabbed = -1;
            for (int i = 0; i < 4; ++i) {
                if ((m_bezier.points[static_cast<std::size_t>(i)] - p).manhattanLength() <= 10)
                    m_bezier.grabbed = i;
            }
        }
        m_bezier.last = p;
        emitChanged();
        return;
    case ToolFilter:
        runFilter(point);
        return;
    case ToolHand:
        s.StartPoint = rounded(toPane(point) - m_view.offset);
        s.IsPanning = true;
        emitState();
        return;
    default:
        break;
    }
    // The rubber-band tools: 0, 5, 6, 7, 9, 11 and 15. A segment of no
    // length draws nothing, as on the platform, so no step is needed for it.
    if (s.CurrentTool == ToolSelect) {
        commitSelection();
    }
    c.DrawMode = PenXor;
    if (s.CurrentTool == ToolLine || s.CurrentTool == ToolArrow || s.CurrentTool == ToolSelect) {
        c.ForeColor = c.xorColor(s.foreColor);
        c.FillStyle = FillTransparent;
    } else {
        applyFillModeColours();
        c.ForeColor = c.xorColor(c.ForeColor);
        c.FillColor = c.xorColor(c.FillColor);
    }
    s.EndPoint = s.StartPoint;
}

void CanvasEditor::applyFillModeColours() {
    PaintSurface& c = m_surface;
    switch (m_state.FillMode) {
    case 1:
        c.FillStyle = m_state.FillStyle;
        c.ForeColor = m_state.foreColor;
        c.FillColor = m_state.fillColor;
        break;
    case 2:
        c.FillStyle = m_state.FillStyle;
        c.ForeColor = m_state.fillColor;
        c.FillColor = m_state.fillColor;
        break;
    default:
        c.FillStyle = FillTransparent;
        c.ForeColor = m_state.foreColor;
        break;
    }
}

void CanvasEditor::drawRubber(QPoint start, QPoint end) {
    PaintSurface& c = m_surface;
    switch (m_state.CurrentTool) {
    case ToolSelect:
        c.boxInColor(start, end, c.BackColor());
        break;
    case ToolLine:
        c.segment(start, end);
        break;
    case ToolRectangle:
        c.box(start, end);
        break;
    case ToolEllipse:
        if (const auto box = ellipseBox(start, end))
            c.ellipse(*box);
        break;
    case ToolArrow:
        drawArrow(start, end);
        break;
    case ToolRoundRect:
        c.roundRect(start, end);
        break;
    default:
        break;
    }
}

void CanvasEditor::drawArrow(QPoint p1, QPoint p2) {
    m_surface.segment(p1, p2);
    const auto head = arrowHead(p1, p2);
    m_surface.segment(p2, head[0]);
    m_surface.segment(p2, head[1]);
}

void CanvasEditor::MouseMove(int button, int shift, QPointF point) {
    EditorState& s = m_state;
    PaintSurface& c = m_surface;
    const QPoint p = rounded(point);
    if (m_selection.dragging) {
        m_selection.pos = p - m_selection.grab;
        emitChanged();
        return;
    }
    if (button != ButtonLeft || !s.IsDrawing)
        return;
    switch (s.CurrentTool) {
    case ToolSelect:
        c.boxInColor(s.StartPoint, s.EndPoint, c.BackColor());
        s.EndPoint = constrainEnd(s.StartPoint, p, shift, false);
        c.boxInColor(s.StartPoint, s.EndPoint, c.BackColor());
        break;
    case ToolEraser:
    case ToolBrush:
        stampAlong(m_lastStamp, p, s.CurrentTool);
        break;
    case ToolPencil:
        s.EndPoint = s.StartPoint;
        s.StartPoint = p;
        c.segment(s.StartPoint, s.EndPoint);
        break;
    case ToolLine:
    case ToolArrow:
        drawRubber(s.StartPoint, s.EndPoint);
        s.EndPoint = constrainEnd(s.StartPoint, p, shift, true);
        drawRubber(s.StartPoint, s.EndPoint);
        break;
    case ToolRectangle:
    case ToolRoundRect:
        if (s.CurrentTool == ToolRoundRect || s.EndPoint != s.StartPoint)
            drawRubber(s.StartPoint, s.EndPoint);
        s.EndPoint = constrainEnd(s.StartPoint, p, shift, false);
        drawRubber(s.StartPoint, s.EndPoint);
        break;
    case ToolEllipse:
        if (s.EndPoint.x() != s.StartPoint.x())
            drawRubber(s.StartPoint, s.EndPoint);
        s.EndPoint = constrainEnd(s.StartPoint, p, shift, false);
        drawRubber(s.StartPoint, s.EndPoint);
        break;
    case ToolAirbrush:
        spray(p);
        break;
    case ToolPolygon: {
        const int n = static_cast<int>(s.PolygonPoints.size());
        if (n == 0)
            break;
        c.DrawWidth = m_pendingWidth;
        c.DrawStyle = m_pendingStyle;
        if (n >= 2)
            c.segment(s.PolygonPoints[n - 2], s.PolygonPoints[n - 1]);
        s.PolygonPoints[n - 1] = p;
        if (n >= 2)
            c.segment(s.PolygonPoints[n - 2], s.PolygonPoints[n - 1]);
        break;
    }
    case ToolBezier:
        if (m_bezier.shown && m_bezier.grabbed >= 0) {
            drawBezier();
            const QPoint delta = p - m_bezier.last;
            for (int i = 0; i < 4; ++i) {
                if (m_bezier.grabbed == 4 || m_bezier.grabbed == i)
                    m_bezier.points[static_cast<std::size_t>(i)] += delta;
            }
            m_bezier.last = p;
            drawBezier();
        }
        break;
    case ToolFilter:
        runFilter(point);
        return;
    case ToolHand:
        if (s.IsPanning) {
            m_view.offset = toPane(point) - QPointF(s.StartPoint);
            clampOffset();
            emitState();
        }
        return;
    default:
        break;
    }
    emitChanged();
}

void CanvasEditor::MouseUp(int button, int shift, QPointF point) {
    EditorState& s = m_state;
    PaintSurface& c = m_surface;
    const QPoint p = rounded(point);
    if (m_selection.dragging) {
        m_selection.dragging = false;
        DrawSelectionRect();
        emitChanged();
        return;
    }
    if (button != ButtonLeft || !s.IsDrawing)
        return;
    s.IsDrawing = false;
    const int tool = s.CurrentTool;
    switch (tool) {
    case ToolSelect:
        selectionRelease(p, shift);
        break;
    case ToolLine:
    case ToolRectangle:
    case ToolEllipse:
    case ToolArrow:
    case ToolRoundRect: {
        const QPoint end = constrainEnd(s.StartPoint, p, shift, tool == ToolLine || tool == ToolArrow);
        // The final shape covers the last rubber band; should the release
        // land elsewhere than the last move, that band is taken away first.
        if (end != s.EndPoint && (tool != ToolRectangle || s.EndPoint != s.StartPoint) &&
            (tool != ToolEllipse || s.EndPoint.x() != s.StartPoint.x()))
            drawRubber(s.StartPoint, s.EndPoint);
        c.DrawMode = PenCopy;
        if (tool == ToolLine) {
            c.ForeColor = s.foreColor;
        } else {
            c.ForeColor = c.xorColor(c.ForeColor);
            c.FillColor = c.xorColor(c.FillColor);
        }
        s.EndPoint = end;
        drawRubber(s.StartPoint, s.EndPoint);
        break;
    }
    case ToolZoom:
        zoomAt(point, shift == ShiftShift);
        break;
    case ToolHand:
        s.IsPanning = false;
        emitState();
        break;
    default:
        break;
    }
    if (tool != ToolSelect && tool != ToolText && tool != ToolPolygon && tool != ToolBezier &&
        tool != ToolZoom)
        SetImageBuffer();
    emitChanged();
}

void CanvasEditor::DblClick() {
    EditorState& s = m_state;
    if (s.CurrentTool == ToolSelect)
        commitSelection();
    else if (s.CurrentTool == ToolPolygon && s.PolygonOpen)
        closePolygon();
    else if (s.CurrentTool == ToolBezier && m_bezier.shown)
        fixBezier();
    emitChanged();
}

void CanvasEditor::KeyUp(int keyCode, int /*shift*/) {
    if (keyCode == 13)
        DblClick();
}

void CanvasEditor::closePolygon() {
    EditorState& s = m_state;
    PaintSurface& c = m_surface;
    // The open outline goes first, then the polygon is drawn for good.
    c.DrawMode = PenXor;
    c.ForeColor = c.xorColor(s.foreColor);
    drawPolygonOutline();
    c.DrawMode = PenCopy;
    c.DrawWidth = m_pendingWidth;
    c.DrawStyle = m_pendingStyle;
    applyFillModeColours();
    c.polygon(QPolygon(s.PolygonPoints));
    s.PolygonOpen = false;
    s.PolygonPoints.clear();
    SetImageBuffer();
}

void CanvasEditor::fixBezier() {
    PaintSurface& c = m_surface;
    c.DrawMode = PenXor;
    c.ForeColor = c.xorColor(m_state.foreColor);
    drawBezier();
    c.DrawMode = PenCopy;
    c.ForeColor = m_state.foreColor;
    drawBezier();
    m_bezier.shown = false;
    m_bezier.grabbed = -1;
    SetImageBuffer();
}

void CanvasEditor::drawPolygonOutline() {
    const auto& pts = m_state.PolygonPoints;
    m_surface.DrawWidth = m_pendingWidth;
    m_surface.DrawStyle = m_pendingStyle;
    for (int i = 1; i < pts.size(); ++i)
        m_surface.segment(pts[i - 1], pts[i]);
}

void CanvasEditor::drawBezier() {
    m_surface.DrawWidth = m_pendingWidth;
    m_surface.DrawStyle = m_pendingStyle;
    QPolygon curve;
    for (const QPoint& handle : m_bezier.points)
        curve << handle;
    m_surface.bezier(curve);
}

void CanvasEditor::redrawPending() {
    if (m_state.CurrentTool == ToolPolygon && m_state.PolygonOpen)
        drawPolygonOutline();
    if (m_state.CurrentTool == ToolBezier && m_bezier.shown)
        drawBezier();
}

void CanvasEditor::stamp(QPoint p, int tool) {
    PaintSurface& c = m_surface;
    const int w = c.DrawWidth;
    if (tool == ToolEraser) {
        c.filledBox(p, p + QPoint(w, -w), c.BackColor());
    } else {
        c.ForeColor = m_state.foreColor;
        c.FillColor = m_state.foreColor;
        c.FillStyle = FillSolid;
        c.disc(p, qMax(1, w * 3 / 2));
    }
    m_lastStamp = p;
}

void CanvasEditor::stampAlong(QPoint from, QPoint to, int tool) {
    // Stamps close enough together that a quick stroke leaves no gaps.
    const int step = qMax(1, m_surface.DrawWidth / 2);
    const int distance = qMax(qAbs(to.x() - from.x()), qAbs(to.y() - from.y()));
    const int count = distance / step;
    for (int i = 1; i < count; ++i)
        stamp(from + (to - from) * i / count, tool);
    stamp(to, tool);
}

void CanvasEditor::spray(QPoint p) {
    PaintSurface& c = m_surface;
    const int saved = c.DrawWidth;
    const int size = saved * 4;
    c.DrawWidth = 1;
    for (const QPoint& dot : sprayDots(p, size, m_random))
        c.dot(dot);
    c.DrawWidth = saved;
}

void CanvasEditor::selectTool(int tool) {
    DblClick();
    m_state.CurrentTool = qBound(0, tool, ToolCount - 1);
    if (m_state.CurrentTool != ToolSelect)
        commitSelection();
    emitChanged();
    emitState();
}

void CanvasEditor::swatchDown(int button, QRgb color) {
    if (button == ButtonLeft)
        setForeColor(color);
    else if (button == ButtonRight)
        setFillColor(color);
}

void CanvasEditor::setForeColor(QRgb color) {
    PaintSurface& c = m_surface;
    const int savedMode = c.DrawMode;
    c.DrawMode = PenXor;
    c.ForeColor = c.xorColor(m_state.foreColor);
    redrawPending();
    m_state.foreColor = color | 0xff000000;
    c.ForeColor = c.xorColor(m_state.foreColor);
    redrawPending();
    if (!m_state.PolygonOpen && !m_bezier.shown)
        c.DrawMode = savedMode;
    emitChanged();
    emitState();
}

void CanvasEditor::setFillColor(QRgb color) {
    m_state.fillColor = color | 0xff000000;
    emitState();
}

void CanvasEditor::SetImageBuffer() {
    m_history.storeStep(m_surface.image());
}

bool CanvasEditor::undo() {
    commitSelection();
    // An open polygon or curve is no step yet: undo takes just it away.
    if (dropPending())
        return showStep(m_history.picture(m_history.HistoryCurrent));
    return showStep(m_history.undo());
}

bool CanvasEditor::redo() {
    dropPending();
    return showStep(m_history.redo());
}

bool CanvasEditor::dropPending() {
    if (!m_state.PolygonOpen && !m_bezier.shown)
        return false;
    m_state.PolygonOpen = false;
    m_state.PolygonPoints.clear();
    m_bezier.shown = false;
    m_bezier.grabbed = -1;
    m_surface.DrawMode = PenCopy;
    m_surface.setImage(m_history.picture(m_history.HistoryCurrent));
    return true;
}

bool CanvasEditor::showStep(const std::optional<QImage>& image) {
    if (!image)
        return false;
    m_surface.setImage(*image);
    emitChanged();
    emitState();
    return true;
}

void CanvasEditor::clearBoard() {
    DblClick();
    m_selection.visible = false;
    m_surface.clear();
    SetImageBuffer();
    emitChanged();
}

void CanvasEditor::loadImage(const QImage& image) {
    m_selection.visible = false;
    m_bezier.shown = false;
    m_state.PolygonOpen = false;
    m_state.PolygonPoints.clear();
    m_surface.setImage(image);
    m_history.reset(m_surface.image());
    clampOffset();
    emitChanged();
    emitState();
}

void CanvasEditor::resizeCanvas(QSize size) {
    commitSelection();
    m_userSized = true;
    m_surface.resizeTo(size.expandedTo(QSize(1, 1)));
    SetImageBuffer();
    clampOffset();
    emitChanged();
    emitState();
}

QString CanvasEditor::cursorFile() const {
    if (m_state.CurrentTool == ToolHand && m_state.IsPanning)
        return QString::fromLatin1(kGrabCursorFile);
    return toolCursorFile(m_state.CurrentTool);
}

void CanvasEditor::emitChanged() {
    const QRect dirty = m_surface.takeDirty();
    if (changed)
        changed(dirty);
}

void CanvasEditor::emitState() {
    if (stateChanged)
        stateChanged();
}

} // namespace mirabend
