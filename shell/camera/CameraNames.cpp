#include "shell/camera/CameraNames.h"

#include <QSet>
#include <cmath>

namespace mirabend {

QString pixelFormatName(QVideoFrameFormat::PixelFormat pixelFormat) {
    using F = QVideoFrameFormat;
    switch (pixelFormat) {
    case F::Format_Jpeg:
        return QStringLiteral("MJPEG");
    case F::Format_YUYV:
        return QStringLiteral("YUY2");
    case F::Format_UYVY:
        return QStringLiteral("UYVY");
    case F::Format_YUV420P:
        return QStringLiteral("I420");
    case F::Format_YV12:
        return QStringLiteral("YV12");
    case F::Format_NV12:
        return QStringLiteral("NV12");
    case F::Format_NV21:
        return QStringLiteral("NV21");
    case F::Format_YUV422P:
        return QStringLiteral("Y42B");
    case F::Format_Y8:
        return QStringLiteral("GRAY8");
    case F::Format_Y16:
        return QStringLiteral("GRAY16");
    case F::Format_ARGB8888:
    case F::Format_ARGB8888_Premultiplied:
    case F::Format_XRGB8888:
    case F::Format_BGRA8888:
    case F::Format_BGRA8888_Premultiplied:
    case F::Format_BGRX8888:
    case F::Format_ABGR8888:
    case F::Format_XBGR8888:
    case F::Format_RGBA8888:
    case F::Format_RGBX8888:
        return QStringLiteral("RGB32");
    default:
        break;
    }
    // Anything else by Qt's own name, without its "Format_" prefix.
    QString name = QVideoFrameFormat::pixelFormatToString(pixelFormat);
    if (name.startsWith(QLatin1String("Format_")))
        name.remove(0, 7);
    return name.isEmpty() ? QStringLiteral("raw") : name;
}

QString formatName(QSize resolution, QVideoFrameFormat::PixelFormat pixelFormat, float framesPerSecond) {
    const double rounded = std::round(framesPerSecond * 100.0) / 100.0;
    const QString rate = std::fabs(rounded - std::round(rounded)) < 0.005
                             ? QString::number(static_cast<int>(std::lround(rounded)))
                             : QString::number(rounded, 'f', 2);
    return QStringLiteral("%1x%2 %3 %4 fps")
        .arg(resolution.width())
        .arg(resolution.height())
        .arg(pixelFormatName(pixelFormat), rate);
}

QStringList withoutRepeats(const QStringList& names) {
    QStringList unique;
    QSet<QString> seen;
    for (const QString& name : names) {
        if (!seen.contains(name)) {
            seen.insert(name);
            unique.append(name);
        }
    }
    return unique;
}

} // namespace mirabend
