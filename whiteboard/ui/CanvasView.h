#pragma once
// The canvas picture `picPaint` and its twin `picProg`: both paint the one
// editor's image (at its zoom and offset, with the floating selection and
// the Bezier handles above it) and hand every mouse and key event to the
// same editor, in canvas units. A stroke is repainted the moment it is
// drawn, so a recording of the stage shows it in the next frame.
//
// Thread contract: UI thread only.

#include <QWidget>

namespace mirabend {

class CanvasEditor;
class CursorLibrary;

class CanvasView : public QWidget {
    Q_OBJECT
public:
    CanvasView(CanvasEditor& editor, CursorLibrary& cursors, const QString& name, QWidget* parent = nullptr);

    // The shift state of the handlers: 1 Shift, 2 Ctrl, 3 both.
    static int shiftState(Qt::KeyboardModifiers modifiers);
    // The cursor of the current tool (and of the hand while it drags).
    void refreshCursor();
    // Repaints the part of the pane that shows canvas area `canvasRect`
    // (everything when it is empty).
    void repaintCanvas(const QRect& canvasRect);

Q_SIGNALS:
    // A single-key tool shortcut was typed on the canvas.
    void toolKeyPressed(int tool);
    void pasteRequested();
    void undoRequested();
    void redoRequested();
    // Page Down / Page Up (a presenter's clicker sends them): the next or
    // previous board.
    void pageRequested(int step);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    // The canvas resize handles: right edge, bottom edge, corner (pane units).
    enum Handle { NoHandle = -1, RightHandle = 0, BottomHandle = 1, CornerHandle = 2 };
    void AdjustPaintResizeBox();
    Handle handleAt(QPointF panePoint) const;
    void showHandleCursor(Handle handle);
    // The zoom tool shows a zoom-out glass while Shift is held.
    void followShift(Qt::KeyboardModifiers modifiers);
    // Keys for a floating selection; true when the key was one of them.
    bool floatingSelectionKey(const QKeyEvent& event);

    static int buttonOf(Qt::MouseButton button);
    static int buttonsHeld(Qt::MouseButtons buttons);

    CanvasEditor& m_editor;
    CursorLibrary& m_cursors;
    QString m_cursorFile = QStringLiteral("?");
    QRect m_handles[3];
    Handle m_resizing = NoHandle;
    Handle m_hovered = NoHandle;
    bool m_zoomOut = false;
    QSize m_resizeTo;
};

} // namespace mirabend
