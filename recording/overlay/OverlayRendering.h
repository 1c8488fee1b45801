#pragma once
// The expensive halves of the overlays, done once per change of settings:
// fonts with their fallbacks, text rendered through its brush into a small
// image, and the image stamp read from disk with its transparent colour and
// transparency applied. OverlayPainter only blends the results.
//
// Thread contract: every function may be called from any thread (QImage,
// QPainter on QImage and QFont only); a QGuiApplication must exist for text.

#include "recording/overlay/OverlaySettings.h"

#include <QBrush>
#include <QFont>
#include <QImage>
#include <QPen>
#include <QPoint>
#include <QStringList>
#include <optional>

namespace mirabend {

// A font for the overlay lists' name, size in points (drawn at 96 dpi) and
// font style index. A family that is not installed is replaced by the
// nearest installed one of the same kind (serif or sans serif).
QFont overlayFont(const QString& name, int points, OverlayFontStyle style);

// The family QFont actually resolves `font` to.
QString resolvedFamily(const QFont& font);

// How text is drawn: the inside filled with `fill` (no fill when its style is
// Qt::NoBrush), the glyph outlines stroked with `outline` (none when its
// style is Qt::NoPen).
struct TextLook {
    QBrush fill;
    QPen outline = QPen(Qt::NoPen);
};

// Text rendered for blending: the image (premultiplied alpha) and where its
// top-left pixel lands on the frame.
struct RenderedText {
    QImage image;
    QPoint position;
};

// Renders `lines` with the top-left corner of the first line's box at
// `origin` (frame pixels). Brush patterns are anchored at the frame's origin,
// so neighbouring stamps and repeated renders line up. Empty when there is
// nothing visible to draw.
RenderedText renderOverlayText(const QStringList& lines, const QFont& font, const TextLook& look,
                               QPoint origin);

// Reads an image file for stamping. Missing or undecodable files give a
// failure with `missing` or `unreadable` as its code.
std::optional<QImage> readOverlayImage(const QString& file, OverlayError missing, OverlayError unreadable,
                                       OverlayFailure* failure);

// The image stamp ready to blend: pixels of exactly `transparentColor` (alpha
// ignored) become fully transparent, the rest is faded by `transparency`
// percent (0 opaque .. 100 invisible, clamped). Premultiplied alpha.
QImage prepareStampImage(const QImage& source, const QColor& transparentColor, int transparency);

} // namespace mirabend
