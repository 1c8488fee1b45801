#include "whiteboard/notes/EditorIcons.h"

#include <QPainter>
#include <QPixmap>

namespace mirabend {
namespace {

constexpr int kSize = 32; // drawn at twice the shown size, for sharp scaling
const QColor kInk(0x2b, 0x34, 0x40);

void letter(QPainter& p, const QString& text, bool bold, bool italic, bool underline, const QRect& box) {
    QFont font(QStringLiteral("serif"));
    font.setPixelSize(box.height() * 3 / 4);
    font.setBold(bold);
    font.setItalic(italic);
    font.setUnderline(underline);
    p.setFont(font);
    p.drawText(box, Qt::AlignCenter, text);
}

// Four lines of text set left, centred or right.
void lines(QPainter& p, int code) {
    const int widths[] = {26, 18, 26, 14};
    for (int i = 0; i < 4; ++i) {
        const int w = widths[i];
        const int x = code == 0 ? 3 : code == 1 ? (kSize - w) / 2 : kSize - 3 - w;
        p.fillRect(x, 5 + i * 7, w, 3, kInk);
    }
}

} // namespace

QIcon editorIcon(const QString& key) {
    QPixmap pixmap(kSize, kSize);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    p.setPen(kInk);
    const QRect all(0, 0, kSize, kSize);
    if (key == QLatin1String("bold")) {
        letter(p, QStringLiteral("B"), true, false, false, all);
    } else if (key == QLatin1String("italic")) {
        letter(p, QStringLiteral("I"), false, true, false, all);
    } else if (key == QLatin1String("underline")) {
        letter(p, QStringLiteral("U"), false, false, true, all);
    } else if (key == QLatin1String("bullets")) {
        p.setBrush(kInk);
        for (int i = 0; i < 3; ++i) {
            p.drawEllipse(QPointF(6, 7 + i * 9), 2.5, 2.5);
            p.fillRect(12, 6 + i * 9, 17, 3, kInk);
        }
    } else if (key == QLatin1String("align_left")) {
        lines(p, 0);
    } else if (key == QLatin1String("align_center")) {
        lines(p, 1);
    } else if (key == QLatin1String("align_right")) {
        lines(p, 2);
    } else if (key == QLatin1String("text_color")) {
        letter(p, QStringLiteral("A"), true, false, false, QRect(0, 0, kSize, 26));
        p.fillRect(4, 25, kSize - 8, 5, QColor(0xd0, 0x21, 0x21));
    } else if (key == QLatin1String("font") || key == QLatin1String("fontSh")) {
        const bool up = key == QLatin1String("font");
        letter(p, QStringLiteral("A"), true, false, false, QRect(0, up ? 4 : 8, 22, up ? 28 : 20));
        p.fillRect(22, 13, 9, 3, kInk);
        if (up)
            p.fillRect(25, 10, 3, 9, kInk);
    } else if (key == QLatin1String("clear")) {
        QPen pen(QColor(0xb0, 0x30, 0x30), 4, Qt::SolidLine, Qt::RoundCap);
        p.setPen(pen);
        p.drawLine(8, 8, 24, 24);
        p.drawLine(24, 8, 8, 24);
    }
    p.end();
    return QIcon(pixmap);
}

} // namespace mirabend
