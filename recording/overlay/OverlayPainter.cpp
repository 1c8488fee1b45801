#include "recording/overlay/OverlayPainter.h"

#include "recording/overlay/HatchPatterns.h"
#include "recording/overlay/OverlayChoices.h"
#include "recording/overlay/OverlayRendering.h"

#include <QPainter>
#include <algorithm>
#include <atomic>
#include <string>

namespace mirabend {

namespace {

constexpr int kMaxFontPoints = 1000;
constexpr double kOutlineWidth = 2.0;

std::uint64_t nextGeneration() {
    static std::atomic<std::uint64_t> counter{0};
    return ++counter;
}

int checkedIndex(int index, int count, int fallback, OverlayError code, const char* what,
                 std::vector<OverlayFailure>& failures) {
    if (index >= 0 && index < count)
        return index;
    failures.emplace_back(code, std::string(what) + " " + std::to_string(index) + " is not in 0.." +
                                    std::to_string(count - 1));
    return fallback;
}

int checkedPoints(int points, const char* what, std::vector<OverlayFailure>& failures) {
    if (points >= 1 && points <= kMaxFontPoints)
        return points;
    failures.emplace_back(OverlayError::FontSizeOutOfRange, std::string(what) + " " + std::to_string(points) +
                                                                " is not in 1.." +
                                                                std::to_string(kMaxFontPoints));
    return std::clamp(points, 1, kMaxFontPoints);
}

QBrush solid(const QColor& color) {
    return QBrush(color.toRgb(), Qt::SolidPattern);
}

} // namespace

struct OverlayPainter::Prepared {
    std::uint64_t generation = 0;
    OverlaySettings settings;

    bool showDate = false;
    int dateFormat = kDefaultOverlayDateFormat;
    QFont dateFont;
    QPoint dateOrigin;

    RenderedText text;
    QImage image;
    QPoint imagePosition;

    bool active() const { return showDate || !text.image.isNull() || !image.isNull(); }
};

OverlayPainter::OverlayPainter() = default;
OverlayPainter::~OverlayPainter() = default;

OverlayReport OverlayPainter::apply(const OverlaySettings& settings) {
    OverlayReport report;
    auto& failures = report.failures;
    auto prepared = std::make_shared<Prepared>();
    prepared->generation = nextGeneration();
    prepared->settings = settings;

    // Date/time stamp: only the font is prepared here; the text changes with
    // the clock and is rendered by paint().
    prepared->dateFormat =
        checkedIndex(settings.dateFormat, kOverlayDateFormatCount, kDefaultOverlayDateFormat,
                     OverlayError::DateFormatOutOfRange, "date format", failures);
    const int dateStyle =
        checkedIndex(settings.dateFontStyle, overlayFontStyleNames().size(), kDefaultOverlayFontStyle,
                     OverlayError::FontStyleOutOfRange, "date font style", failures);
    prepared->dateFont =
        overlayFont(settings.dateFontName, checkedPoints(settings.dateFontSize, "date font size", failures),
                    static_cast<OverlayFontStyle>(dateStyle));
    prepared->dateOrigin = QPoint(settings.dateLeft, settings.dateTop);
    prepared->showDate = settings.showDateTime;
    report.dateFontFamily = resolvedFamily(prepared->dateFont);

    // Text: rendered once through its brush.
    const int textFontStyle =
        checkedIndex(settings.textFontStyle, overlayFontStyleNames().size(), kDefaultOverlayFontStyle,
                     OverlayError::FontStyleOutOfRange, "text font style", failures);
    const QFont textFont =
        overlayFont(settings.textFontName, checkedPoints(settings.textFontSize, "text font size", failures),
                    static_cast<OverlayFontStyle>(textFontStyle));
    report.textFontFamily = resolvedFamily(textFont);
    const auto textStyle = static_cast<OverlayTextStyle>(
        checkedIndex(settings.textStyle, overlayTextStyleNames().size(), kDefaultOverlayTextStyle,
                     OverlayError::TextStyleOutOfRange, "text style", failures));

    TextLook look;
    switch (textStyle) {
    case OverlayTextStyle::Normal:
        look.fill = solid(settings.textColor);
        break;
    case OverlayTextStyle::OutlineText:
        look.fill = QBrush(Qt::NoBrush);
        look.outline =
            QPen(settings.outlineColor.toRgb(), kOutlineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        break;
    case OverlayTextStyle::FilledOutline:
        look.fill = solid(settings.outlineFillColor);
        look.outline =
            QPen(settings.outlineColor.toRgb(), kOutlineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        break;
    case OverlayTextStyle::HatchBrush:
        if (settings.hatchStyle >= 0 && settings.hatchStyle < kHatchPatternCount) {
            look.fill =
                QBrush(hatchTile(settings.hatchStyle, settings.hatchForeColor, settings.hatchBackColor));
        } else {
            failures.emplace_back(OverlayError::HatchStyleOutOfRange,
                                  "hatch style " + std::to_string(settings.hatchStyle) +
                                      " is no pattern (0.." + std::to_string(kHatchPatternCount - 1) + ")");
            look.fill = solid(settings.hatchForeColor);
        }
        break;
    case OverlayTextStyle::TextureBrush: {
        // Without a usable texture the caption still shows, in its plain colour.
        look.fill = solid(settings.textColor);
        if (settings.showText && !settings.textureFile.isEmpty()) {
            OverlayFailure failure;
            if (auto texture = readOverlayImage(settings.textureFile, OverlayError::TextureFileMissing,
                                                OverlayError::TextureFileUnreadable, &failure))
                look.fill = QBrush(texture->convertToFormat(QImage::Format_ARGB32_Premultiplied));
            else
                failures.push_back(failure);
        }
        break;
    }
    }
    if (settings.showText) {
        prepared->text = renderOverlayText(overlayTextLines(settings.text), textFont, look,
                                           QPoint(settings.textLeft, settings.textTop));
    }

    // Image stamp.
    if (settings.showImage && !settings.imageFile.isEmpty()) {
        OverlayFailure failure;
        if (auto source = readOverlayImage(settings.imageFile, OverlayError::ImageFileMissing,
                                           OverlayError::ImageFileUnreadable, &failure)) {
            prepared->image =
                prepareStampImage(*source, settings.imageTransparentColor, settings.imageTransparency);
            prepared->imagePosition = QPoint(settings.imageLeft, settings.imageTop);
        } else {
            failures.push_back(failure);
        }
    }

    std::lock_guard<std::mutex> lock(m_mutex);
    m_prepared = std::move(prepared);
    return report;
}

OverlaySettings OverlayPainter::settings() const {
    const auto prepared = current();
    return prepared ? prepared->settings : OverlaySettings{};
}

bool OverlayPainter::active() const {
    const auto prepared = current();
    return prepared && prepared->active();
}

std::shared_ptr<const OverlayPainter::Prepared> OverlayPainter::current() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_prepared;
}

void OverlayPainter::refreshDate(const Prepared& prepared, const QDateTime& now) {
    // The formats show whole seconds at most: within the same second the
    // text stays, and formatting it on every frame is not free.
    const qint64 second = now.toSecsSinceEpoch();
    if (m_dateGeneration == prepared.generation && second == m_dateSecond)
        return;
    m_dateSecond = second;
    const QString text = formatOverlayDate(prepared.dateFormat, now);
    if (m_dateGeneration == prepared.generation && text == m_dateText)
        return;
    TextLook look;
    look.fill = solid(prepared.settings.dateColor);
    RenderedText stamp = renderOverlayText({text}, prepared.dateFont, look, prepared.dateOrigin);
    m_dateImage = std::move(stamp.image);
    m_datePosition = stamp.position;
    m_dateText = text;
    m_dateGeneration = prepared.generation;
    ++m_dateSerial;
}

void OverlayPainter::paint(QImage& frame, const QDateTime& now, int top) {
    const auto prepared = current();
    if (!prepared || !prepared->active() || frame.isNull())
        return;

    std::lock_guard<std::mutex> lock(m_paintMutex);
    QPainter painter(&frame);
    painter.translate(0, -top);
    // Back to front: the image, the text, the date/time stamp.
    if (!prepared->image.isNull())
        painter.drawImage(prepared->imagePosition, prepared->image);
    if (!prepared->text.image.isNull())
        painter.drawImage(prepared->text.position, prepared->text.image);
    if (prepared->showDate) {
        refreshDate(*prepared, now);
        if (!m_dateImage.isNull())
            painter.drawImage(m_datePosition, m_dateImage);
    }
}

OverlayFootprint OverlayPainter::footprint(const QDateTime& now) {
    OverlayFootprint out;
    const auto prepared = current();
    if (!prepared || !prepared->active())
        return out;
    out.generation = prepared->generation;
    if (!prepared->image.isNull())
        out.area |= QRect(prepared->imagePosition, prepared->image.size());
    if (!prepared->text.image.isNull())
        out.area |= QRect(prepared->text.position, prepared->text.image.size());
    if (prepared->showDate) {
        std::lock_guard<std::mutex> lock(m_paintMutex);
        refreshDate(*prepared, now);
        out.dateSerial = m_dateSerial;
        if (!m_dateImage.isNull())
            out.area |= QRect(m_datePosition, m_dateImage.size());
    }
    return out;
}

} // namespace mirabend
