#include "util/CursorFile.h"

#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QPixmap>
#include <QtEndian>

namespace mirabend {

namespace {

constexpr int kDirectorySize = 6;
constexpr int kEntrySize = 16;
constexpr quint16 kCursorType = 2;

quint16 word(const QByteArray& data, int at) {
    return qFromLittleEndian<quint16>(reinterpret_cast<const uchar*>(data.constData()) + at);
}

} // namespace

std::optional<CursorPicture> readCursorFile(const QByteArray& data) {
    // ICONDIR (reserved, type, count), then one 16-byte entry per picture;
    // in a cursor file the entry's planes and bit count are the hot spot.
    if (data.size() < kDirectorySize + kEntrySize || word(data, 0) != 0 || word(data, 2) != kCursorType ||
        word(data, 4) < 1)
        return std::nullopt;
    CursorPicture picture;
    picture.hotSpot = QPoint(word(data, kDirectorySize + 4), word(data, kDirectorySize + 6));
    picture.image = QImage::fromData(data, "CUR");
    if (picture.image.isNull())
        picture.image = QImage::fromData(data);
    if (picture.image.isNull())
        return std::nullopt;
    const QRect bounds = picture.image.rect();
    if (!bounds.contains(picture.hotSpot))
        picture.hotSpot = bounds.center();
    return picture;
}

QCursor loadCursorFile(const QString& path, const QCursor& fallback) {
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return fallback;
    const std::optional<CursorPicture> picture = readCursorFile(file.readAll());
    if (!picture)
        return fallback;
    return QCursor(QPixmap::fromImage(picture->image), picture->hotSpot.x(), picture->hotSpot.y());
}

} // namespace mirabend
