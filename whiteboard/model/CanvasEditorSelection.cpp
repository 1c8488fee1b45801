// CanvasEditor: the floating selection, canvas text, the filter tool and the
// view (zoom and pan).
#include "whiteboard/model/CanvasEditor.h"
#include "whiteboard/model/ShapeGeometry.h"

#include <cmath>

namespace mirabend {

void CanvasEditor::DrawSelectionRect() {
    if (!m_selection.visible)
        return;
    PaintSurface& c = m_surface;
    const int mode = c.DrawMode;
    const int style = c.DrawStyle;
    const int width = c.DrawWidth;
    c.DrawStyle = StyleDot;
    c.DrawMode = PenXor;
    c.DrawWidth = 1;
    const QRect r = m_selection.rect();
    c.boxInColor(r.topLeft(), r.topLeft() + QPoint(r.width(), r.height()), c.BackColor());
    c.DrawStyle = style;
    c.DrawMode = mode;
    c.DrawWidth = width;
}

void CanvasEditor::commitSelection() {
    if (!m_selection.visible)
        return;
    // The frame goes before the picture is stamped, so the stamped pixels
    // stay exactly as copied.
    DrawSelectionRect();
    m_selection.visible = false;
    m_selection.dragging = false;
    m_surface.drawImage(m_selection.pos, m_selection.image);
    SetImageBuffer();
    emitChanged();
}

void CanvasEditor::discardSelection() {
    if (!m_selection.visible)
        return;
    DrawSelectionRect();
    m_selection.visible = false;
    m_selection.dragging = false;
    emitChanged();
}

void CanvasEditor::moveSelection(QPoint delta) {
    if (!m_selection.visible || m_selection.dragging)
        return;
    DrawSelectionRect();
    m_selection.pos += delta;
    DrawSelectionRect();
    emitChanged();
}

void CanvasEditor::selectionDown(QPoint p) {
    // The frame is taken away while the picture moves; the canvas widget
    // outlines the moving picture itself.
    DrawSelectionRect();
    m_selection.dragging = true;
    m_selection.grab = p - m_selection.pos;
    emitChanged();
}

void CanvasEditor::selectionRelease(QPoint p, int shift) {
    EditorState& s = m_state;
    PaintSurface& c = m_surface;
    m_selection.visible = false;
    c.boxInColor(s.StartPoint, s.EndPoint, c.BackColor());
    c.DrawMode = PenCopy;
    s.EndPoint = constrainEnd(s.StartPoint, p, shift, false);
    const QRect r = QRect(s.StartPoint, s.EndPoint).normalized().adjusted(0, 0, -1, -1) & c.image().rect();
    if (r.width() < 1 || r.height() < 1)
        return;
    m_selection.pos = r.topLeft();
    m_selection.image = c.image().copy(r);
    m_selection.visible = true;
    DrawSelectionRect();
}

void CanvasEditor::pasteImage(const QImage& image, QPoint topLeft) {
    if (image.isNull())
        return;
    DblClick();
    commitSelection();
    m_state.CurrentTool = ToolSelect;
    m_selection.image = image.convertToFormat(QImage::Format_RGB32);
    m_selection.pos = topLeft;
    m_selection.visible = true;
    DrawSelectionRect();
    emitChanged();
    emitState();
}

void CanvasEditor::printText(QPoint topLeft, const QString& text) {
    PaintSurface& c = m_surface;
    c.DrawMode = PenCopy;
    c.ForeColor = m_state.foreColor;
    if (!text.isEmpty())
        c.text(topLeft, text, m_textFont);
    SetImageBuffer();
    emitChanged();
}

void CanvasEditor::runFilter(QPointF point) {
    if (!m_filter)
        return;
    const bool whole = (point.x() == -1 && point.y() == -1) || m_state.CurrentTool != ToolFilter;
    if (!m_selection.visible) {
        // A pending polygon or curve is finished before the canvas changes.
        if (m_state.PolygonOpen || m_bezier.shown) {
            const int tool = m_state.CurrentTool;
            m_state.CurrentTool = m_state.PolygonOpen ? ToolPolygon : ToolBezier;
            DblClick();
            m_state.CurrentTool = tool;
        }
    }
    QImage& target = m_selection.visible ? m_selection.image : m_surface.image();
    if (whole) {
        DrawSelectionRect();
        m_filter(target, m_filterNumber, m_state.foreColor, m_state.fillColor, target.rect());
        DrawSelectionRect();
        if (!m_selection.visible)
            SetImageBuffer();
        m_surface.setImage(m_surface.image());
    } else {
        // At the pointer: a square brush that grows with the pen width.
        QPoint p(qRound(point.x()), qRound(point.y()));
        if (m_selection.visible)
            p -= m_selection.pos;
        const int side = m_filterBrushSize ? m_filterBrushSize(m_state.penWidth()) : m_state.penWidth() * 8;
        const QRect area = QRect(p.x() - side / 2, p.y() - side / 2, side, side) & target.rect();
        if (!area.isEmpty())
            m_filter(target, m_filterNumber, m_state.foreColor, m_state.fillColor, area);
        m_surface.setImage(m_surface.image());
    }
    emitChanged();
}

void CanvasEditor::setViewport(QSize size) {
    m_view.viewport = size;
    // The canvas covers its pane at the plain zoom, whatever the mode,
    // unless the user has given it a size of their own.
    if (!m_userSized && m_surface.image().size().expandedTo(size) != m_surface.image().size()) {
        m_surface.growTo(size);
        m_history.replaceCurrent(m_surface.image());
    }
    clampOffset();
    emitChanged();
}

QPointF CanvasEditor::eventPoint(QPointF panePoint) const {
    if (m_state.CurrentTool == ToolZoom || m_state.CurrentTool == ToolHand)
        return toCanvas(panePoint);
    // Pane pixel p covers [p, p + 1); its centre decides the canvas pixel.
    const QPointF centre = toCanvas(panePoint + QPointF(0.5, 0.5));
    return QPointF(std::floor(centre.x()), std::floor(centre.y()));
}

void CanvasEditor::zoomAt(QPointF canvasPoint, bool out) {
    const QPointF pane = toPane(canvasPoint);
    const double zoom = out ? qMax(1.0, m_view.zoom / 2) : qMin(8.0, m_view.zoom * 2);
    m_view.zoom = zoom;
    // The point under the pointer stays under it.
    m_view.offset = pane - canvasPoint * zoom;
    clampOffset();
    emitState();
}

void CanvasEditor::panBy(QPointF paneDelta) {
    m_view.offset += paneDelta;
    clampOffset();
    emitState();
}

void CanvasEditor::clampOffset() {
    const QSizeF scaled = QSizeF(m_surface.image().size()) * m_view.zoom;
    const QSize vp = m_view.viewport;
    QPointF& o = m_view.offset;
    o.setX(scaled.width() <= vp.width() ? 0.0 : qBound(vp.width() - scaled.width(), o.x(), 0.0));
    o.setY(scaled.height() <= vp.height() ? 0.0 : qBound(vp.height() - scaled.height(), o.y(), 0.0));
}

} // namespace mirabend
