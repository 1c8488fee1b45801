#pragma once
// The canvas text box `txtText` and its measuring label `lblTextSize`: the
// text tool places the box at a press point; Enter or a double-click prints
// the text onto the canvas in the fore colour, Escape discards it, losing
// the focus prints it unless the box is being moved ("moving").
//
// Thread contract: UI thread only.

#include <QObject>
#include <QPoint>

class QLabel;
class QLineEdit;
class QWidget;

namespace mirabend {

class CanvasEditor;

class CanvasTextBox : public QObject {
    Q_OBJECT
public:
    CanvasTextBox(CanvasEditor& editor, QWidget* canvas);

    QLineEdit* txtText() const { return m_box; }
    QLabel* lblTextSize() const { return m_measure; }
    QPoint canvasPos() const { return m_pos; }

    // The text tool's press at canvas point `p`.
    void place(QPoint p);
    // Prints the text (the box's double-click, Enter, focus loss).
    void commit();
    // Hides the box without printing.
    void discard();
    // Follows zoom and pan.
    void reposition();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void measure(const QString& prefix);

    CanvasEditor& m_editor;
    QWidget* m_canvas;
    QLineEdit* m_box;
    QLabel* m_measure;
    QPoint m_pos;
};

} // namespace mirabend
