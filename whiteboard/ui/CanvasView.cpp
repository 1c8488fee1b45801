#include "whiteboard/ui/CanvasView.h"

#include "whiteboard/model/CanvasEditor.h"
#include "whiteboard/model/ToolTable.h"
#include "whiteboard/ui/CursorLibrary.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

namespace mirabend {

CanvasView::CanvasView(CanvasEditor& editor, CursorLibrary& cursors, const QString& name, QWidget* parent)
    : QWidget(parent)
    , m_editor(editor)
    , m_cursors(cursors) {
    setObjectName(name);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    // Tracked so the pointer can show where the resize handles are.
    setMouseTracking(true);
    setMinimumSize(16, 16);
    refreshCursor();
}

int CanvasView::shiftState(Qt::KeyboardModifiers modifiers) {
    return (modifiers & Qt::ShiftModifier ? 1 : 0) | (modifiers & Qt::ControlModifier ? 2 : 0);
}

int CanvasView::buttonOf(Qt::MouseButton button) {
    if (button == Qt::LeftButton)
        return ButtonLeft;
    if (button == Qt::RightButton)
        return ButtonRight;
    return button == Qt::MiddleButton ? 4 : 0;
}

int CanvasView::buttonsHeld(Qt::MouseButtons buttons) {
    if (buttons & Qt::LeftButton)
        return ButtonLeft;
    return buttons & Qt::RightButton ? ButtonRight : 0;
}

void CanvasView::refreshCursor() {
    if (m_hovered != NoHandle || m_resizing != NoHandle)
        return;
    QString file = m_editor.cursorFile();
    if (m_zoomOut && m_editor.state().CurrentTool == ToolZoom)
        file = QString::fromLatin1(kZoomOutCursorFile);
    if (file == m_cursorFile)
        return;
    m_cursorFile = file;
    setCursor(m_cursors.cursor(file));
}

void CanvasView::followShift(Qt::KeyboardModifiers modifiers) {
    const bool out = m_editor.state().CurrentTool == ToolZoom && (modifiers & Qt::ShiftModifier);
    if (out == m_zoomOut)
        return;
    m_zoomOut = out;
    refreshCursor();
}

void CanvasView::repaintCanvas(const QRect& canvasRect) {
    if (canvasRect.isEmpty()) {
        update();
        return;
    }
    const QRectF scaled(m_editor.toPane(canvasRect.topLeft()),
                        QSizeF(canvasRect.size()) * m_editor.view().zoom);
    update(scaled.toAlignedRect().adjusted(-1, -1, 1, 1));
}

void CanvasView::paintEvent(QPaintEvent* event) {
    QPainter p(this);
    const CanvasEditor& e = m_editor;
    const double zoom = e.view().zoom;
    const QPointF offset = e.view().offset;
    const QImage& image = e.surface().image();
    const QRectF canvasArea(offset, QSizeF(image.size()) * zoom);
    // Beside the canvas (after a resize or at the far end of a pan).
    QRegion beside = QRegion(event->rect()) - QRegion(canvasArea.toAlignedRect());
    for (const QRect& r : beside)
        p.fillRect(r, QColor(0x8a, 0x8f, 0x98));
    p.setRenderHint(QPainter::SmoothPixmapTransform, false);
    if (zoom == 1.0) {
        const QRect target = event->rect() & canvasArea.toAlignedRect();
        p.drawImage(target, image, target.translated(-offset.toPoint()));
    } else {
        p.save();
        p.translate(offset);
        p.scale(zoom, zoom);
        const QRect source =
            QRectF(QPointF(event->rect().topLeft()) - offset, QSizeF(event->rect().size())).toAlignedRect();
        const QRect visible =
            QRect(static_cast<int>(source.x() / zoom) - 1, static_cast<int>(source.y() / zoom) - 1,
                  static_cast<int>(source.width() / zoom) + 3, static_cast<int>(source.height() / zoom) + 3) &
            image.rect();
        p.drawImage(visible.topLeft(), image, visible);
        p.restore();
    }
    // `picSelect` floats above the canvas. Its picture covers the top and
    // left edges of the XOR frame on the canvas (and while it is dragged the
    // frame is away), so the view outlines it too, dotted black on white so
    // it shows on any picture.
    const FloatingSelection& sel = e.selection();
    if (sel.visible) {
        p.save();
        p.translate(offset);
        p.scale(zoom, zoom);
        p.drawImage(sel.pos, sel.image);
        p.restore();
        const QRectF outline = QRectF(e.toPane(sel.pos), QSizeF(sel.image.size()) * zoom);
        p.setBrush(Qt::NoBrush);
        p.setPen(QPen(Qt::white, 1));
        p.drawRect(outline);
        p.setPen(QPen(Qt::black, 1, Qt::DotLine));
        p.drawRect(outline);
    }
    // The resize handles, and the new outline while one is dragged.
    AdjustPaintResizeBox();
    p.setPen(QPen(QColor(0x3a, 0x3f, 0x47), 1));
    p.setBrush(QColor(0xf4, 0xf6, 0xf8));
    for (const QRect& h : m_handles)
        p.drawRect(h.adjusted(0, 0, -1, -1));
    if (m_resizing != NoHandle) {
        p.setPen(QPen(Qt::black, 1, Qt::DashLine));
        p.setBrush(Qt::NoBrush);
        p.drawRect(QRectF(offset, QSizeF(m_resizeTo) * zoom));
    }
    // `imgBezier`: the handles of the curve being shaped.
    if (e.bezier().shown) {
        p.setPen(QPen(Qt::black, 1));
        p.setBrush(QColor(255, 255, 255));
        for (const QPoint& h : e.bezier().points) {
            const QPointF c = e.toPane(h);
            p.drawRect(QRectF(c.x() - 3, c.y() - 3, 6, 6));
        }
    }
}

void CanvasView::AdjustPaintResizeBox() {
    // Small squares just inside the canvas's right edge, bottom edge and
    // bottom-right corner, where they stay reachable when the canvas fills
    // its pane.
    constexpr int kSide = 7;
    const QPointF corner =
        m_editor.toPane(QPointF(m_editor.surface().image().width(), m_editor.surface().image().height()));
    const QPointF origin = m_editor.view().offset;
    const int right = static_cast<int>(corner.x()) - kSide;
    const int bottom = static_cast<int>(corner.y()) - kSide;
    m_handles[RightHandle] =
        QRect(right, static_cast<int>((origin.y() + corner.y()) / 2) - kSide / 2, kSide, kSide);
    m_handles[BottomHandle] =
        QRect(static_cast<int>((origin.x() + corner.x()) / 2) - kSide / 2, bottom, kSide, kSide);
    m_handles[CornerHandle] = QRect(right, bottom, kSide, kSide);
}

CanvasView::Handle CanvasView::handleAt(QPointF panePoint) const {
    for (int h = CornerHandle; h >= RightHandle; --h) {
        if (m_handles[h].adjusted(-2, -2, 2, 2).contains(panePoint.toPoint()))
            return static_cast<Handle>(h);
    }
    return NoHandle;
}

void CanvasView::showHandleCursor(Handle handle) {
    if (handle == m_hovered)
        return;
    m_hovered = handle;
    if (handle == NoHandle) {
        m_cursorFile = QStringLiteral("?");
        refreshCursor();
        return;
    }
    setCursor(handle == RightHandle    ? Qt::SizeHorCursor
              : handle == BottomHandle ? Qt::SizeVerCursor
                                       : Qt::SizeFDiagCursor);
}

void CanvasView::leaveEvent(QEvent* event) {
    if (m_resizing == NoHandle)
        showHandleCursor(NoHandle);
    QWidget::leaveEvent(event);
}

void CanvasView::mousePressEvent(QMouseEvent* event) {
    AdjustPaintResizeBox();
    const Handle handle = handleAt(event->position());
    if (event->button() == Qt::LeftButton && handle != NoHandle && !m_editor.state().IsDrawing) {
        m_resizing = handle;
        m_resizeTo = m_editor.surface().image().size();
        return;
    }
    m_editor.MouseDown(buttonOf(event->button()), shiftState(event->modifiers()),
                       m_editor.eventPoint(event->position()));
    refreshCursor();
}

void CanvasView::mouseMoveEvent(QMouseEvent* event) {
    if (m_resizing != NoHandle) {
        const QPointF p = m_editor.toCanvas(event->position());
        const QSize now = m_editor.surface().image().size();
        m_resizeTo = QSize(m_resizing == BottomHandle ? now.width() : qMax(8, qRound(p.x())),
                           m_resizing == RightHandle ? now.height() : qMax(8, qRound(p.y())));
        update();
        return;
    }
    followShift(event->modifiers());
    if (!(event->buttons() & (Qt::LeftButton | Qt::RightButton))) {
        AdjustPaintResizeBox();
        showHandleCursor(handleAt(event->position()));
        return;
    }
    m_editor.MouseMove(buttonsHeld(event->buttons()), shiftState(event->modifiers()),
                       m_editor.eventPoint(event->position()));
}

void CanvasView::mouseReleaseEvent(QMouseEvent* event) {
    if (m_resizing != NoHandle) {
        m_resizing = NoHandle;
        if (m_resizeTo != m_editor.surface().image().size())
            m_editor.resizeCanvas(m_resizeTo);
        update();
        return;
    }
    m_editor.MouseUp(buttonOf(event->button()), shiftState(event->modifiers()),
                     m_editor.eventPoint(event->position()));
    refreshCursor();
}

void CanvasView::mouseDoubleClickEvent(QMouseEvent* event) {
    // The second press of a double-click is a press too (a polygon gets its
    // last vertex), then the shape is finished.
    mousePressEvent(event);
    if (event->button() == Qt::LeftButton)
        m_editor.DblClick();
}

void CanvasView::keyPressEvent(QKeyEvent* event) {
    followShift(event->modifiers() | (event->key() == Qt::Key_Shift ? Qt::ShiftModifier : Qt::NoModifier));
    const Qt::KeyboardModifiers mods = event->modifiers() & ~Qt::KeypadModifier;
    if (event->matches(QKeySequence::Undo)) {
        Q_EMIT undoRequested();
        return;
    }
    if (event->matches(QKeySequence::Redo) || (mods == Qt::ControlModifier && event->key() == Qt::Key_Y)) {
        Q_EMIT redoRequested();
        return;
    }
    if (event->matches(QKeySequence::Paste)) {
        Q_EMIT pasteRequested();
        return;
    }
    if ((event->key() == Qt::Key_PageDown || event->key() == Qt::Key_PageUp) && !m_editor.state().IsDrawing) {
        Q_EMIT pageRequested(event->key() == Qt::Key_PageDown ? 1 : -1);
        return;
    }
    if (floatingSelectionKey(*event))
        return;
    if ((mods == Qt::NoModifier || mods == Qt::ShiftModifier) && !event->text().isEmpty() &&
        !m_editor.state().IsDrawing) {
        const int tool = toolForKey(event->text().at(0));
        if (tool >= 0) {
            Q_EMIT toolKeyPressed(tool);
            return;
        }
    }
    QWidget::keyPressEvent(event);
}

bool CanvasView::floatingSelectionKey(const QKeyEvent& event) {
    const FloatingSelection& sel = m_editor.selection();
    if (!sel.visible || sel.dragging)
        return false;
    // Escape or Delete drop the floating picture; the arrows nudge it, by
    // ten pixels with Shift.
    const int step = event.modifiers() & Qt::ShiftModifier ? 10 : 1;
    switch (event.key()) {
    case Qt::Key_Escape:
    case Qt::Key_Delete:
        m_editor.discardSelection();
        return true;
    case Qt::Key_Left:
        m_editor.moveSelection(QPoint(-step, 0));
        return true;
    case Qt::Key_Right:
        m_editor.moveSelection(QPoint(step, 0));
        return true;
    case Qt::Key_Up:
        m_editor.moveSelection(QPoint(0, -step));
        return true;
    case Qt::Key_Down:
        m_editor.moveSelection(QPoint(0, step));
        return true;
    default:
        return false;
    }
}

void CanvasView::keyReleaseEvent(QKeyEvent* event) {
    followShift(event->key() == Qt::Key_Shift ? event->modifiers() & ~Qt::ShiftModifier : event->modifiers());
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        m_editor.KeyUp(13, shiftState(event->modifiers()));
    else
        QWidget::keyReleaseEvent(event);
}

void CanvasView::wheelEvent(QWheelEvent* event) {
    // Ctrl+wheel zooms around the pointer like the zoom tool; the wheel
    // alone scrolls a canvas larger than its pane (Shift: sideways).
    const QPoint steps = event->angleDelta();
    if (event->modifiers() & Qt::ControlModifier) {
        if (steps.y() != 0)
            m_editor.zoomAt(m_editor.toCanvas(event->position()), steps.y() < 0);
    } else {
        QPointF delta = event->pixelDelta().isNull() ? QPointF(steps) / 2.0 : QPointF(event->pixelDelta());
        if (event->modifiers() & Qt::ShiftModifier)
            delta = QPointF(delta.y(), delta.x());
        m_editor.panBy(delta);
    }
    event->accept();
}

void CanvasView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // The twin follows the canvas's view; only the canvas sets it.
    if (objectName() == QLatin1String("picPaint"))
        m_editor.setViewport(size());
}

} // namespace mirabend
