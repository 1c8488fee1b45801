#include "recording/overlay/OverlayRendering.h"

#include <QFileInfo>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QImageReader>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace mirabend {

namespace {

// Sizes in the lists are points; video has no physical size, so they are
// drawn at the 96 dpi of the desktop the recording shows.
constexpr double kPixelsPerPoint = 96.0 / 72.0;

QFont::StyleHint hintFor(const QString& name) {
    if (name.contains(QLatin1String("Times"), Qt::CaseInsensitive) ||
        name.contains(QLatin1String("Serif"), Qt::CaseInsensitive) ||
        name.contains(QLatin1String("Roman"), Qt::CaseInsensitive))
        return QFont::Serif;
    return QFont::SansSerif;
}

} // namespace

QFont overlayFont(const QString& name, int points, OverlayFontStyle style) {
    QFont font(name);
    font.setStyleHint(hintFor(name), QFont::PreferDefault);
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(points * kPixelsPerPoint))));
    font.setBold(style == OverlayFontStyle::Bold || style == OverlayFontStyle::BoldItalic);
    font.setItalic(style == OverlayFontStyle::Italic || style == OverlayFontStyle::BoldItalic);
    font.setUnderline(style == OverlayFontStyle::Underline);

    // A family name that carries its weight ("Arial Black") keeps the weight
    // when the family itself has to be replaced.
    const bool substituted = resolvedFamily(font).compare(name, Qt::CaseInsensitive) != 0;
    if (substituted && name.contains(QLatin1String("Black"), Qt::CaseInsensitive))
        font.setWeight(QFont::Black);
    return font;
}

QString resolvedFamily(const QFont& font) {
    return QFontInfo(font).family();
}

RenderedText renderOverlayText(const QStringList& lines, const QFont& font, const TextLook& look,
                               QPoint origin) {
    const QFontMetricsF metrics(font);
    QPainterPath path;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const double baseline = metrics.ascent() + static_cast<double>(i) * metrics.lineSpacing();
        path.addText(QPointF(0.0, baseline), font, lines.at(i));
    }
    if (path.isEmpty())
        return {};

    const bool stroked = look.outline.style() != Qt::NoPen;
    const double margin = (stroked ? look.outline.widthF() : 0.0) + 2.0; // room for antialiased edges
    const QRect box = path.boundingRect().adjusted(-margin, -margin, margin, margin).toAlignedRect();

    RenderedText rendered;
    rendered.position = origin + box.topLeft();
    rendered.image = QImage(box.size(), QImage::Format_ARGB32_Premultiplied);
    rendered.image.fill(Qt::transparent);

    QPainter painter(&rendered.image);
    painter.setRenderHint(QPainter::Antialiasing);
    // The pattern of a hatch or texture brush belongs to the frame, not to
    // the text: frame pixel (0, 0) is pattern pixel (0, 0).
    painter.setBrushOrigin(-rendered.position);
    path.translate(-box.left(), -box.top());
    if (look.fill.style() != Qt::NoBrush)
        painter.fillPath(path, look.fill);
    if (stroked)
        painter.strokePath(path, look.outline);
    painter.end();
    return rendered;
}

std::optional<QImage> readOverlayImage(const QString& file, OverlayError missing, OverlayError unreadable,
                                       OverlayFailure* failure) {
    const QFileInfo info(file);
    if (!info.exists() || !info.isFile()) {
        if (failure)
            *failure = OverlayFailure(missing, file.toStdString());
        return std::nullopt;
    }
    QImageReader reader(file);
    reader.setAutoTransform(true);
    QImage image = reader.read();
    if (image.isNull()) {
        if (failure)
            *failure = OverlayFailure(
                unreadable, QString(file + QLatin1String(": ") + reader.errorString()).toStdString());
        return std::nullopt;
    }
    return image;
}

QImage prepareStampImage(const QImage& source, const QColor& transparentColor, int transparency) {
    if (source.isNull())
        return {};
    QImage image = source.convertToFormat(QImage::Format_ARGB32);
    const QRgb key = transparentColor.rgb() & RGB_MASK;
    const int opacity = 100 - std::clamp(transparency, 0, 100); // percent
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = line[x];
            if ((pixel & RGB_MASK) == key) {
                line[x] = 0;
                continue;
            }
            const int alpha = (qAlpha(pixel) * opacity + 50) / 100;
            line[x] = qRgba(qRed(pixel), qGreen(pixel), qBlue(pixel), alpha);
        }
    }
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace mirabend
