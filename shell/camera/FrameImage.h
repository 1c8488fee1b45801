#pragma once
// Turns a camera frame into a picture of the size it is painted at, in one
// pass on the CPU: the common camera layouts (packed and planar YUV, 32-bit
// RGB) are sampled straight into the target size, so a preview costs about
// what a video sink's convert-and-scale costs. Other layouts go through
// QVideoFrame::toImage.
//
// Thread contract: any thread; no shared state.

#include <QImage>
#include <QVideoFrame>

namespace mirabend {

// `frame` scaled to `size` (nearest sample); a null image when the frame
// cannot be read. A `reuse` image of that size that nothing else shares
// (moved in) is written over instead of allocating a new one.
QImage frameImage(const QVideoFrame& frame, QSize size, QImage reuse = QImage());

} // namespace mirabend
