#include "whiteboard/filters/ImageFilters.h"

#include "whiteboard/filters/FilterKernels.h"

#include <algorithm>
#include <iterator>

namespace mirabend {
namespace {

using namespace filterkernels;

struct FilterEntry {
    ImageFilterNumber number;
    const char* name;
    const char* toolTip;
    FilterKernel kernel;
};

// The one list of filters: numbers, names, what each does.
constexpr FilterEntry kFilters[] = {
    {ImageFilterNumber::Grey, "Grey", "Shades of grey", filterGrey},
    {ImageFilterNumber::Invert, "Invert", "Every colour turned into its opposite", filterInvert},
    {ImageFilterNumber::Sepia, "Sepia", "The brown tones of an old photograph", filterSepia},
    {ImageFilterNumber::Brighter, "Brighter", "Every colour a little lighter", filterBrighter},
    {ImageFilterNumber::Darker, "Darker", "Every colour a little darker", filterDarker},
    {ImageFilterNumber::MoreContrast, "More contrast", "Colours pushed away from mid grey",
     filterMoreContrast},
    {ImageFilterNumber::LessContrast, "Less contrast", "Colours pulled towards mid grey", filterLessContrast},
    {ImageFilterNumber::Blur, "Blur", "Softened: each pixel averaged with its neighbours", filterBlur},
    {ImageFilterNumber::Sharpen, "Sharpen", "Crisper outlines", filterSharpen},
    {ImageFilterNumber::TwoColours, "Two colours",
     "Dark pixels take the fore colour, light pixels the fill colour", filterTwoColours},
    {ImageFilterNumber::Emboss, "Emboss", "A grey relief of the picture", filterEmboss},
    {ImageFilterNumber::Edges, "Edges", "Outlines drawn dark on white", filterEdges},
    {ImageFilterNumber::Posterise, "Posterise", "Four levels per colour channel", filterPosterise},
    {ImageFilterNumber::Noise, "Noise", "A fine grain, the same every time", filterNoise},
    {ImageFilterNumber::Mosaic, "Mosaic", "Blocks of 8 x 8 pixels", filterMosaic},
    {ImageFilterNumber::Mirror, "Mirror", "Left and right swapped", filterMirror},
    {ImageFilterNumber::Flip, "Flip", "Upside down", filterFlip},
};

const FilterEntry* findEntry(int number) {
    const auto it = std::find_if(std::begin(kFilters), std::end(kFilters), [number](const FilterEntry& e) {
        return static_cast<int>(e.number) == number;
    });
    return it == std::end(kFilters) ? nullptr : &*it;
}

bool filtersInPlace(QImage::Format format) {
    return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32;
}

} // namespace

const std::vector<ImageFilter>& imageFilters() {
    static const std::vector<ImageFilter> filters = [] {
        std::vector<ImageFilter> list;
        for (const FilterEntry& e : kFilters)
            list.push_back(
                {static_cast<int>(e.number), QString::fromUtf8(e.name), QString::fromUtf8(e.toolTip)});
        return list;
    }();
    return filters;
}

const ImageFilter* findImageFilter(int number) {
    const auto& filters = imageFilters();
    const auto it = std::find_if(filters.begin(), filters.end(),
                                 [number](const ImageFilter& f) { return f.number == number; });
    return it == filters.end() ? nullptr : &*it;
}

bool applyFilter(QImage& image, int number, QRgb fore, QRgb fill, const QRect& area) {
    const FilterEntry* entry = findEntry(number);
    if (!entry || image.isNull())
        return false;
    const QRect target = area.isEmpty() ? image.rect() : area & image.rect();
    if (target.isEmpty())
        return true;
    const FilterColours colours{fore, fill};
    if (filtersInPlace(image.format())) {
        entry->kernel(image, target, colours);
        return true;
    }
    // Premultiplied colours would be filtered wrongly, and 8/16/24-bit
    // formats have no QRgb lines: work on ARGB32 and convert back.
    const QImage::Format original = image.format();
    QImage work = image.convertToFormat(QImage::Format_ARGB32);
    entry->kernel(work, target, colours);
    image = work.convertToFormat(original);
    return true;
}

QRect filterBrushRect(QPoint centre, int size) {
    const int side = std::max(size, 1);
    return QRect(centre.x() - side / 2, centre.y() - side / 2, side, side);
}

int filterBrushSize(int penWidth) {
    return std::clamp(penWidth, 1, 8) * 8;
}

bool applyFilterAt(QImage& image, int number, QPoint centre, int size, QRgb fore, QRgb fill) {
    if (!findEntry(number) || image.isNull())
        return false;
    const QRect square = filterBrushRect(centre, size) & image.rect();
    return square.isEmpty() || applyFilter(image, number, fore, fill, square);
}

} // namespace mirabend
