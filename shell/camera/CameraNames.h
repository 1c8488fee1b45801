#pragma once
// Names of capture devices and formats as the Camera Settings bar shows them.
//
// Thread contract: any thread (pure functions).

#include <QSize>
#include <QStringList>
#include <QVideoFrameFormat>

namespace mirabend {

// "1280x720 MJPEG 30 fps"; a fractional rate keeps two decimals ("29.97 fps").
QString formatName(QSize resolution, QVideoFrameFormat::PixelFormat pixelFormat, float framesPerSecond);

// The short name users know a pixel format by ("YUY2", "MJPEG", "I420").
QString pixelFormatName(QVideoFrameFormat::PixelFormat pixelFormat);

// Drops repeated names, keeping the first of each.
QStringList withoutRepeats(const QStringList& names);

} // namespace mirabend
