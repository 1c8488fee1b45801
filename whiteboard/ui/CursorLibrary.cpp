#include "whiteboard/ui/CursorLibrary.h"

#include "util/ProgramFolder.h"

#include <QFile>
#include <QImage>
#include <QPixmap>

namespace mirabend {

bool CursorLibrary::readHotSpot(const QString& path, QPoint* hotSpot) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(22);
    if (head.size() < 22)
        return false;
    const auto u16 = [&head](int at) {
        return static_cast<int>(static_cast<unsigned char>(head[at])) |
               (static_cast<int>(static_cast<unsigned char>(head[at + 1])) << 8);
    };
    // Reserved 0, type 2 (cursor), at least one image.
    if (u16(0) != 0 || u16(2) != 2 || u16(4) < 1)
        return false;
    *hotSpot = QPoint(u16(10), u16(12));
    return true;
}

QCursor CursorLibrary::cursor(const QString& designName) {
    if (designName.isEmpty())
        return QCursor(Qt::ArrowCursor);
    const auto found = m_cache.constFind(designName);
    if (found != m_cache.constEnd())
        return *found;
    QCursor result(Qt::CrossCursor);
    const QString path = ProgramFolder::dataFile(designName);
    QPoint hot;
    if (!path.isEmpty() && readHotSpot(path, &hot)) {
        const QImage picture(path, "CUR");
        if (!picture.isNull())
            result = QCursor(QPixmap::fromImage(picture), hot.x(), hot.y());
    }
    m_cache.insert(designName, result);
    return result;
}

} // namespace mirabend
