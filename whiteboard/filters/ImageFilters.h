#pragma once
// The whiteboard's numbered image filters. Each works pixel by pixel on a
// QImage, on the whole picture or on a rectangle of it; the canvas calls them
// for its filter operation (whole canvas or floating selection) and for the
// filter tool (a square under the pointer on press and on every move).
//
// Thread contract: every function may be called from any thread; an image is
// only touched by the call that is given it.

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>
#include <vector>

namespace mirabend {

// The filter numbers. They are what the filter operation is handed, so they
// never change meaning; new filters get new numbers at the end.
enum class ImageFilterNumber : int {
    Grey = 1,
    Invert = 2,
    Sepia = 3,
    Brighter = 4,
    Darker = 5,
    MoreContrast = 6,
    LessContrast = 7,
    Blur = 8,
    Sharpen = 9,
    TwoColours = 10, // dark pixels take the fore colour, light ones the fill colour
    Emboss = 11,
    Edges = 12,
    Posterise = 13,
    Noise = 14,
    Mosaic = 15,
    Mirror = 16,
    Flip = 17,
};

struct ImageFilter {
    int number;
    QString name;    // short, for the Draw bar's filter list ("Grey", "Invert", ...)
    QString toolTip; // one sentence saying what the filter does
};

// Every filter, in number order.
const std::vector<ImageFilter>& imageFilters();

// The filter with this number, or nullptr.
const ImageFilter* findImageFilter(int number);

// Filters `area` of `image` in place with filter `number`; an empty or invalid
// area means the whole image, and an area reaching past the image is clipped
// to it. `fore` and `fill` are the two colours of the two-colour filter; the
// others ignore them. Alpha is kept. Neighbourhood filters read the pixels as
// they were before the call (pixels just outside the area included), so the
// result never depends on the order pixels are visited in, and filtering a
// part gives the same pixels there as filtering the whole image. Mirror and
// flip turn the area itself over. RGB32 and ARGB32 images are filtered in
// place; other formats are converted there and back (slower; lossy for
// indexed images).
// Returns false, changing nothing, when `number` is no filter or the image is
// null; true otherwise (also when the area misses the image).
bool applyFilter(QImage& image, int number, QRgb fore, QRgb fill, const QRect& area = QRect());

// The square of side `size` (at least 1) centred on `centre` that the filter
// tool works on, not yet clipped to any image.
QRect filterBrushRect(QPoint centre, int size);

// The filter tool's brush side for the current pen width (1..8 pixels).
int filterBrushSize(int penWidth);

// The filter tool at the pointer: applyFilter() on filterBrushRect(centre,
// size) clipped to the image. A square wholly outside the image changes
// nothing (it never falls back to the whole image).
bool applyFilterAt(QImage& image, int number, QPoint centre, int size, QRgb fore, QRgb fill);

} // namespace mirabend
