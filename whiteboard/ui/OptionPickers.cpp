#include "whiteboard/ui/OptionPickers.h"

#include "whiteboard/model/ShapeGeometry.h"

#include <QLabel>
#include <QMouseEvent>
#include <QPainter>

namespace mirabend {

namespace {
constexpr int kWidthTwips = 650;
constexpr int kDotHeightTwips = 1300;
constexpr int kFillHeightTwips = 1200;
} // namespace

OptionPicker::OptionPicker(bool widths, QWidget* parent)
    : QWidget(parent)
    , m_widths(widths)
    , m_marker(new QLabel(this)) {
    setObjectName(widths ? QStringLiteral("fraOptDot") : QStringLiteral("fraOptFill"));
    m_marker->setObjectName(widths ? QStringLiteral("lblDot") : QStringLiteral("lblFill"));
    m_marker->setStyleSheet(QStringLiteral("border: 2px solid #2f6fd0; background: transparent;"));
    m_marker->setAttribute(Qt::WA_TransparentForMouseEvents);
    setFixedSize(pixels(kWidthTwips), pixels(widths ? kDotHeightTwips : kFillHeightTwips));
    setToolTip(widths ? tr("Line width") : tr("Fill: outline only, outline and fill, fill only"));
    setCursor(Qt::PointingHandCursor);
    setValue(0);
}

int OptionPicker::twips(double px) const {
    return static_cast<int>(px * 1440.0 / logicalDpiX());
}

int OptionPicker::pixels(int twipsValue) const {
    return qRound(twipsValue * logicalDpiX() / 1440.0);
}

QRect OptionPicker::cellPixels(int value) const {
    const QRect t = m_widths ? widthCellTwips(value) : fillCellTwips(value);
    return QRect(QPoint(pixels(t.left()), pixels(t.top())), QPoint(pixels(t.right()), pixels(t.bottom())));
}

void OptionPicker::setValue(int value) {
    m_value = value;
    // The marker moves to the chosen cell.
    m_marker->setGeometry(cellPixels(value).adjusted(-1, -1, 1, 1));
    update();
}

void OptionPicker::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), QColor(0xfa, 0xfb, 0xfc));
    p.setPen(QColor(0xb8, 0xbe, 0xc8));
    p.drawRect(rect().adjusted(0, 0, -1, -1));
    const int cells = m_widths ? 8 : 3;
    for (int i = 0; i < cells; ++i) {
        const QRect r = cellPixels(i).adjusted(2, 2, -2, -2);
        if (m_widths) {
            p.fillRect(QRect(r.left(), r.center().y() - i / 2, r.width(), i + 1), Qt::black);
        } else {
            p.setPen(i == 2 ? QColor(0x80, 0x80, 0x80) : Qt::black);
            p.setBrush(i == 0 ? QBrush(Qt::NoBrush) : QBrush(QColor(0x80, 0x80, 0x80)));
            p.drawRect(r.adjusted(2, 1, -3, -2));
        }
    }
}

void OptionPicker::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    const int x = twips(event->position().x());
    const int y = twips(event->position().y());
    const int cell = m_widths ? widthCellAt(x, y) : fillCellAt(y);
    if (cell < 0)
        return;
    setValue(cell);
    Q_EMIT picked(cell);
}

} // namespace mirabend
