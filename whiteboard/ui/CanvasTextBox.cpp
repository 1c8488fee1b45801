#include "whiteboard/ui/CanvasTextBox.h"

#include "whiteboard/model/CanvasEditor.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>

namespace mirabend {

CanvasTextBox::CanvasTextBox(CanvasEditor& editor, QWidget* canvas)
    : QObject(canvas)
    , m_editor(editor)
    , m_canvas(canvas)
    , m_box(new QLineEdit(canvas))
    , m_measure(new QLabel(canvas)) {
    m_box->setObjectName(QStringLiteral("txtText"));
    m_box->setFrame(false);
    m_box->setProperty("tag", QString());
    m_box->setToolTip(tr("Enter prints the text on the board, Escape discards it"));
    m_box->hide();
    m_box->installEventFilter(this);
    m_measure->setObjectName(QStringLiteral("lblTextSize"));
    m_measure->hide();
}

void CanvasTextBox::place(QPoint p) {
    if (m_box->isVisible())
        m_box->setProperty("tag", QStringLiteral("moving"));
    m_pos = p;
    const QColor back = QColor::fromRgb(m_editor.surface().BackColor());
    const QColor fore = QColor::fromRgb(m_editor.state().foreColor);
    m_box->setStyleSheet(
        QStringLiteral("QLineEdit#txtText { background: %1; color: %2; border: 1px dotted %2;"
                       " padding: 0; }")
            .arg(back.name(), fore.name()));
    m_box->setText(QString());
    reposition();
    measure(QStringLiteral("M"));
    // While the box is open a press on the canvas moves it: the canvas must
    // not take the focus from it on that press.
    m_canvas->setFocusPolicy(Qt::NoFocus);
    m_box->show();
    m_box->raise();
    m_box->setFocus(Qt::MouseFocusReason);
    // The move is done: the tag only guards the focus change it causes.
    m_box->setProperty("tag", QString());
}

void CanvasTextBox::reposition() {
    const double zoom = m_editor.view().zoom;
    QFont font = m_editor.textFont();
    font.setPointSizeF(font.pointSizeF() * zoom);
    m_box->setFont(font);
    m_measure->setFont(font);
    m_box->move(m_editor.toPane(m_pos).toPoint());
}

void CanvasTextBox::measure(const QString& prefix) {
    // The label sizes itself to the text; the box takes its size, so it
    // grows while the user types.
    m_measure->setText(prefix + m_box->text());
    m_measure->adjustSize();
    m_box->resize(m_measure->width() + m_measure->fontMetrics().averageCharWidth() * 2,
                  m_measure->height() + 2);
}

void CanvasTextBox::commit() {
    if (!m_box->isVisible())
        return;
    const QString text = m_box->text();
    m_box->hide();
    m_canvas->setFocusPolicy(Qt::StrongFocus);
    m_editor.printText(m_pos, text);
}

void CanvasTextBox::discard() {
    m_box->hide();
    m_canvas->setFocusPolicy(Qt::StrongFocus);
}

bool CanvasTextBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_box)
        return QObject::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::KeyPress:
        measure(QStringLiteral("M"));
        break;
    case QEvent::KeyRelease: {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
            commit();
        else if (key == Qt::Key_Escape)
            discard();
        else
            measure(QStringLiteral("O"));
        if (!m_box->isVisible())
            m_canvas->setFocus(Qt::OtherFocusReason);
        break;
    }
    case QEvent::FocusOut: {
        // Another window coming to the front is no reason to print.
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason)
            break;
        if (m_box->isVisible() && m_box->property("tag").toString() != QLatin1String("moving"))
            commit();
        m_box->setProperty("tag", QString());
        break;
    }
    case QEvent::MouseButtonDblClick:
        commit();
        return true;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace mirabend
