// Draws the whiteboard's tool cursors and writes them as cursor files
// (32 x 32, 32-bit colour with alpha, hot spot in the file), one per tool
// file name, into the folder given on the command line.
#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <cstdio>
#include <functional>
#include <initializer_list>

namespace {

constexpr int kSize = 32;

void put16(QByteArray& out, int v) {
    out.append(static_cast<char>(v & 0xff));
    out.append(static_cast<char>((v >> 8) & 0xff));
}

void put32(QByteArray& out, quint32 v) {
    put16(out, static_cast<int>(v & 0xffff));
    put16(out, static_cast<int>(v >> 16));
}

// A cursor file: the directory entry with the hot spot, then one device
// independent bitmap of double height (colour rows bottom up, then the mask).
QByteArray cursorFile(const QImage& picture, QPoint hot) {
    const QImage image = picture.convertToFormat(QImage::Format_ARGB32);
    QByteArray bitmap;
    put32(bitmap, 40);
    put32(bitmap, kSize);
    put32(bitmap, kSize * 2);
    put16(bitmap, 1);
    put16(bitmap, 32);
    put32(bitmap, 0);
    put32(bitmap, kSize * kSize * 4 + kSize * 4);
    for (int i = 0; i < 4; ++i)
        put32(bitmap, 0);
    for (int y = kSize - 1; y >= 0; --y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < kSize; ++x)
            put32(bitmap, line[x]);
    }
    for (int y = kSize - 1; y >= 0; --y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        quint32 bits = 0;
        for (int x = 0; x < kSize; ++x) {
            if (qAlpha(line[x]) == 0)
                bits |= 1u << (31 - x);
        }
        // Mask rows are stored most significant byte first.
        bitmap.append(static_cast<char>(bits >> 24));
        bitmap.append(static_cast<char>((bits >> 16) & 0xff));
        bitmap.append(static_cast<char>((bits >> 8) & 0xff));
        bitmap.append(static_cast<char>(bits & 0xff));
    }
    QByteArray out;
    put16(out, 0);
    put16(out, 2);
    put16(out, 1);
    out.append(static_cast<char>(kSize));
    out.append(static_cast<char>(kSize));
    out.append('\0');
    out.append('\0');
    put16(out, hot.x());
    put16(out, hot.y());
    put32(out, static_cast<quint32>(bitmap.size()));
    put32(out, 22);
    return out + bitmap;
}

struct CursorDesign {
    const char* file;
    QPoint hot;
    std::function<void(QPainter&)> draw;
};

void outlined(QPainter& p, const QPainterPath& path, QColor fill = Qt::white) {
    p.setPen(QPen(Qt::black, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(fill);
    p.drawPath(path);
}

// The outline through `points`, closed back to the first.
QPainterPath closedPath(std::initializer_list<QPointF> points) {
    QPainterPath path;
    path.addPolygon(QPolygonF(points));
    path.closeSubpath();
    return path;
}

// A magnifying glass with a plus (zoom in) or a minus (zoom out).
void magnifier(QPainter& p, bool plus) {
    outlined(p, closedPath({{19, 17}, {29, 27}, {27, 29}, {17, 19}}), Qt::black);
    QPainterPath lens;
    lens.addEllipse(QPointF(12, 12), 9, 9);
    outlined(p, lens, QColor(220, 235, 255, 200));
    p.drawLine(QPointF(8, 12), QPointF(16, 12));
    if (plus)
        p.drawLine(QPointF(12, 8), QPointF(12, 16));
}

QPainterPath hand(bool grabbing) {
    QPainterPath path;
    if (grabbing) {
        path.addRoundedRect(QRectF(7, 11, 18, 14), 5, 5);
        for (int i = 0; i < 4; ++i)
            path.addRoundedRect(QRectF(8 + i * 4.2, 8, 4, 6), 2, 2);
    } else {
        path.addRoundedRect(QRectF(8, 14, 16, 14), 5, 5);
        for (int i = 0; i < 4; ++i)
            path.addRoundedRect(QRectF(8.5 + i * 3.8, 3 + (i == 0 || i == 3 ? 3 : 0), 3.6, 14), 1.8, 1.8);
        path.addRoundedRect(QRectF(3, 15, 8, 3.6), 1.8, 1.8);
    }
    return path.simplified();
}

const CursorDesign kDesigns[] = {
    {"pick.cur",
     {2, 29},
     [](QPainter& p) {
         const QPainterPath tube = closedPath({{2, 29}, {5, 22}, {17, 10}, {21, 14}, {9, 26}});
         outlined(p, tube);
         QPainterPath bulb;
         bulb.addEllipse(QPointF(22, 9), 5.5, 5.5);
         outlined(p, bulb, Qt::black);
     }},
    {"eraser.cur",
     {3, 28},
     [](QPainter& p) {
         const QPainterPath block = closedPath({{3, 28}, {3, 18}, {17, 4}, {28, 4}, {28, 14}, {14, 28}});
         outlined(p, block, QColor(250, 180, 190));
         p.drawLine(QPointF(3, 18), QPointF(14, 18));
         p.drawLine(QPointF(14, 18), QPointF(28, 4));
         p.drawLine(QPointF(14, 18), QPointF(14, 28));
     }},
    {"fill.cur",
     {4, 27},
     [](QPainter& p) {
         const QPainterPath bucket = closedPath({{10, 10}, {22, 4}, {29, 17}, {17, 23}});
         outlined(p, bucket);
         QPainterPath drop;
         drop.moveTo(10, 10);
         drop.cubicTo(4, 13, 3, 20, 4, 27);
         drop.cubicTo(6, 22, 8, 18, 12, 15);
         outlined(p, drop, QColor(40, 90, 220));
     }},
    {"draw.cur",
     {2, 29},
     [](QPainter& p) {
         const QPainterPath pencil = closedPath({{2, 29}, {4, 22}, {22, 4}, {27, 9}, {9, 27}});
         outlined(p, pencil, QColor(250, 210, 90));
         p.drawLine(QPointF(4, 22), QPointF(9, 27));
     }},
    {"cross.cur",
     {15, 15},
     [](QPainter& p) {
         p.setPen(QPen(Qt::white, 3));
         p.drawLine(15, 2, 15, 28);
         p.drawLine(2, 15, 28, 15);
         p.setPen(QPen(Qt::black, 1));
         p.drawLine(15, 2, 15, 28);
         p.drawLine(2, 15, 28, 15);
     }},
    {"text.cur",
     {15, 15},
     [](QPainter& p) {
         QPainterPath beam;
         beam.moveTo(11, 4);
         beam.lineTo(19, 4);
         beam.moveTo(15, 4);
         beam.lineTo(15, 26);
         beam.moveTo(11, 26);
         beam.lineTo(19, 26);
         p.setPen(QPen(Qt::white, 4, Qt::SolidLine, Qt::RoundCap));
         p.drawPath(beam);
         p.setPen(QPen(Qt::black, 1.6, Qt::SolidLine, Qt::RoundCap));
         p.drawPath(beam);
     }},
    {"airbrush.cur",
     {5, 5},
     [](QPainter& p) {
         QPainterPath can;
         can.addRoundedRect(QRectF(14, 12, 9, 17), 3, 3);
         can.addRect(QRectF(16, 8, 5, 4));
         outlined(p, can.simplified(), QColor(200, 200, 210));
         p.setPen(Qt::NoPen);
         p.setBrush(Qt::black);
         const QPointF dots[] = {{5, 5}, {2, 7}, {8, 3}, {7, 8}, {3, 2}, {10, 6}, {5, 10}, {11, 2}};
         for (const QPointF& d : dots)
             p.drawEllipse(d, 1.0, 1.0);
     }},
    {"filter.cur",
     {4, 4},
     [](QPainter& p) {
         const QPainterPath wand = closedPath({{8, 6}, {28, 26}, {26, 28}, {6, 8}});
         outlined(p, wand, Qt::black);
         p.setPen(QPen(QColor(230, 160, 0), 2, Qt::SolidLine, Qt::RoundCap));
         p.drawLine(QPointF(4, 0.5), QPointF(4, 7.5));
         p.drawLine(QPointF(0.5, 4), QPointF(7.5, 4));
         p.drawLine(QPointF(1.5, 1.5), QPointF(6.5, 6.5));
     }},
    {"zoom.cur",
     {12, 12},
     [](QPainter& p) {
         magnifier(p, true);
     }},
    // The zoom tool while Shift is held (Shift+click zooms out).
    {"zoomout.cur",
     {12, 12},
     [](QPainter& p) {
         magnifier(p, false);
     }},
    {"brush.cur",
     {3, 28},
     [](QPainter& p) {
         const QPainterPath handle = closedPath({{12, 17}, {27, 2}, {30, 5}, {15, 20}});
         outlined(p, handle, QColor(170, 110, 50));
         QPainterPath tip;
         tip.moveTo(11, 16);
         tip.lineTo(16, 21);
         tip.cubicTo(12, 27, 7, 28, 3, 28);
         tip.cubicTo(4, 24, 6, 19, 11, 16);
         outlined(p, tip, QColor(40, 90, 220));
     }},
    {"handflat.cur",
     {16, 16},
     [](QPainter& p) {
         outlined(p, hand(false));
     }},
    {"handgrab.cur",
     {16, 16},
     [](QPainter& p) {
         outlined(p, hand(true));
     }},
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s OUTPUT-FOLDER\n", argv[0]);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    for (const CursorDesign& design : kDesigns) {
        QImage image(kSize, kSize, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        {
            QPainter p(&image);
            p.setRenderHint(QPainter::Antialiasing);
            design.draw(p);
        }
        QFile out(folder + QLatin1Char('/') + QString::fromLatin1(design.file));
        if (!out.open(QIODevice::WriteOnly) || out.write(cursorFile(image, design.hot)) < 0) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(out.fileName()));
            return 1;
        }
    }
    return 0;
}
