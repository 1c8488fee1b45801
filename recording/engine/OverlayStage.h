#pragma once
// Where the stamps meet the frame: the capture thread hands every captured
// picture here, as a QImage over the frame's own memory (bgr0 is
// Format_RGB32 on little-endian machines), so nothing is copied.
//
// Thread contract: called on the video capture thread; needs a
// QGuiApplication to exist (the offscreen platform is enough).

#include "recording/engine/OverlaySettings.h"

#include <QDateTime>
#include <QImage>

namespace mirabend {

// Draws the stamps that `settings` shows onto `frame`.
void paintOverlay(QImage& frame, const OverlaySettings& settings, const QDateTime& now);

// False when no QGuiApplication exists, so text cannot be drawn.
bool overlayPossible();

} // namespace mirabend
