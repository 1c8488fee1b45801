#include "whiteboard/filters/ImageFilters.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <vector>

namespace mirabend::test {
namespace {

// The known picture: 16 x 8, a dark left half and a light right half meeting
// between x = 7 and x = 8, one red pixel in the top-left corner and one black
// pixel low in the light half.
constexpr QRgb kDark = 0xff285078;  // 40, 80, 120
constexpr QRgb kLight = 0xffdcc8b4; // 220, 200, 180
constexpr QRgb kRed = 0xffff0000;
constexpr QRgb kBlack = 0xff000000;
constexpr QRgb kFore = 0xff0000ff;
constexpr QRgb kFill = 0xffffff00;

QImage knownImage(QImage::Format format = QImage::Format_RGB32) {
    QImage image(16, 8, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, x < 8 ? kDark : kLight);
    image.setPixel(0, 0, kRed);
    image.setPixel(12, 6, kBlack);
    return image.convertToFormat(format);
}

QImage filtered(QImage image, ImageFilterNumber number, const QRect& area = QRect()) {
    EXPECT_TRUE(applyFilter(image, static_cast<int>(number), kFore, kFill, area));
    return image;
}

QRgb rgb(int r, int g, int b) {
    return qRgb(r, g, b);
}

// What one filter must give at the red corner, inside each half, on each side
// of the edge, and under the black pixel at the bottom (where the image's last
// rows meet).
struct FilterCase {
    ImageFilterNumber number;
    const char* name;
    QRgb corner, dark, light, darkEdge, lightEdge, belowMark;
    bool turnsAreaOver = false; // mirror and flip work relative to the area
};

void PrintTo(const FilterCase& c, std::ostream* os) {
    *os << c.name;
}

const FilterCase kCases[] = {
    {ImageFilterNumber::Grey, "Grey", rgb(77, 77, 77), rgb(73, 73, 73), rgb(204, 204, 204), rgb(73, 73, 73),
     rgb(204, 204, 204), rgb(204, 204, 204)},
    {ImageFilterNumber::Invert, "Invert", rgb(0, 255, 255), rgb(215, 175, 135), rgb(35, 55, 75),
     rgb(215, 175, 135), rgb(35, 55, 75), rgb(35, 55, 75)},
    {ImageFilterNumber::Sepia, "Sepia", rgb(100, 89, 69), rgb(100, 89, 69), rgb(255, 244, 190),
     rgb(100, 89, 69), rgb(255, 244, 190), rgb(255, 244, 190)},
    {ImageFilterNumber::Brighter, "Brighter", rgb(255, 32, 32), rgb(72, 112, 152), rgb(252, 232, 212),
     rgb(72, 112, 152), rgb(252, 232, 212), rgb(252, 232, 212)},
    {ImageFilterNumber::Darker, "Darker", rgb(223, 0, 0), rgb(8, 48, 88), rgb(188, 168, 148), rgb(8, 48, 88),
     rgb(188, 168, 148), rgb(188, 168, 148)},
    {ImageFilterNumber::MoreContrast, "More contrast", rgb(255, 0, 0), rgb(0, 56, 116), rgb(255, 236, 206),
     rgb(0, 56, 116), rgb(255, 236, 206), rgb(255, 236, 206)},
    {ImageFilterNumber::LessContrast, "Less contrast", rgb(192, 64, 64), rgb(84, 104, 124),
     rgb(174, 164, 154), rgb(84, 104, 124), rgb(174, 164, 154), rgb(174, 164, 154)},
    // The corner averages with copies of the edge pixels standing in outside.
    {ImageFilterNumber::Blur, "Blur", rgb(136, 44, 67), kDark, kLight, rgb(100, 120, 140), rgb(160, 160, 160),
     rgb(196, 178, 160)},
    {ImageFilterNumber::Sharpen, "Sharpen", kRed, kDark, kLight, rgb(0, 0, 60), rgb(255, 255, 240),
     rgb(255, 255, 255)},
    {ImageFilterNumber::TwoColours, "Two colours", kFore, kFore, kFill, kFore, kFill, kFill},
    {ImageFilterNumber::Emboss, "Emboss", rgb(126, 126, 126), rgb(128, 128, 128), rgb(128, 128, 128),
     rgb(193, 193, 193), rgb(193, 193, 193), rgb(128, 128, 128)},
    {ImageFilterNumber::Edges, "Edges", rgb(249, 249, 249), rgb(255, 255, 255), rgb(255, 255, 255),
     rgb(124, 124, 124), rgb(124, 124, 124), rgb(153, 153, 153)},
    {ImageFilterNumber::Posterise, "Posterise", kRed, rgb(0, 85, 85), rgb(255, 170, 170), rgb(0, 85, 85),
     rgb(255, 170, 170), rgb(255, 170, 170)},
    // Checked separately below: a grain, not one colour per half.
    {ImageFilterNumber::Noise, "Noise", 0, 0, 0, 0, 0, 0},
    // Each 8 x 8 block takes its average: the red and black pixels tint theirs.
    {ImageFilterNumber::Mosaic, "Mosaic", rgb(43, 79, 118), rgb(43, 79, 118), rgb(217, 197, 177),
     rgb(43, 79, 118), rgb(217, 197, 177), rgb(217, 197, 177)},
    {ImageFilterNumber::Mirror, "Mirror", kLight, kLight, kDark, kLight, kDark, kDark, true},
    {ImageFilterNumber::Flip, "Flip", kDark, kDark, kLight, kDark, kLight, kLight, true},
};

void expectGrain(const QImage& before, const QImage& after) {
    std::set<int> offsets;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x) {
            const QRgb b = before.pixel(x, y), a = after.pixel(x, y);
            if (b == kRed || b == kBlack)
                continue; // clipped channels
            const int d = qRed(a) - qRed(b);
            EXPECT_LE(std::abs(d), 24) << x << "," << y;
            EXPECT_EQ(qGreen(a) - qGreen(b), d) << x << "," << y;
            EXPECT_EQ(qBlue(a) - qBlue(b), d) << x << "," << y;
            offsets.insert(d);
        }
    }
    EXPECT_GE(offsets.size(), 10u) << "too few different offsets for a grain";
}

class FilterTable : public ::testing::TestWithParam<FilterCase> {};

TEST_P(FilterTable, GivesTheExpectedPixelsInEveryFormat) {
    const FilterCase& c = GetParam();
    const ImageFilter* filter = findImageFilter(static_cast<int>(c.number));
    ASSERT_NE(filter, nullptr);
    EXPECT_EQ(filter->name, QString::fromUtf8(c.name));

    const QImage source = knownImage();
    const QImage result = filtered(source, c.number); // on a copy sharing the source's pixels
    EXPECT_EQ(source, knownImage()) << "the shared source is left alone";
    if (c.number == ImageFilterNumber::Noise) {
        expectGrain(source, result);
    } else {
        const struct {
            QPoint at;
            QRgb expected;
        } probes[] = {{{0, 0}, c.corner},   {{2, 4}, c.dark},      {{12, 4}, c.light},
                      {{7, 4}, c.darkEdge}, {{8, 4}, c.lightEdge}, {{12, 7}, c.belowMark}};
        for (const auto& p : probes)
            EXPECT_EQ(result.pixel(p.at), p.expected)
                << "at " << p.at.x() << "," << p.at.y() << " got " << std::hex << result.pixel(p.at);
    }

    // Formats without QRgb lines are filtered through a conversion and keep
    // their format (the same pixels again: the filter is deterministic);
    // ARGB32 keeps every pixel's alpha.
    const QImage rgb888 = filtered(knownImage(QImage::Format_RGB888), c.number);
    EXPECT_EQ(rgb888.format(), QImage::Format_RGB888);
    EXPECT_EQ(rgb888.convertToFormat(QImage::Format_RGB32), result);

    QImage translucent = knownImage(QImage::Format_ARGB32);
    for (int y = 0; y < translucent.height(); ++y)
        for (int x = 0; x < translucent.width(); ++x)
            translucent.setPixel(x, y, (translucent.pixel(x, y) & 0x00ffffffu) | 0x80000000u);
    const QImage argb = filtered(translucent, c.number);
    for (int y = 0; y < argb.height(); ++y) {
        for (int x = 0; x < argb.width(); ++x) {
            ASSERT_EQ(qAlpha(argb.pixel(x, y)), 0x80) << x << "," << y;
            ASSERT_EQ(argb.pixel(x, y) & 0x00ffffffu, result.pixel(x, y) & 0x00ffffffu) << x << "," << y;
        }
    }
}

TEST_P(FilterTable, StaysInsideItsAreaAndBrushSquare) {
    const FilterCase& c = GetParam();
    const QImage source = knownImage();
    const QImage whole = filtered(source, c.number);

    // An area across the edge, one sticking out of the image, and the filter
    // tool's square at the corner (it reaches past the top-left).
    const QRect brush = filterBrushRect(QPoint(1, 1), 4);
    for (const QRect& area : {QRect(3, 2, 9, 4), QRect(10, 5, 20, 20), brush}) {
        QImage image = source;
        if (area == brush)
            ASSERT_TRUE(applyFilterAt(image, static_cast<int>(c.number), QPoint(1, 1), 4, kFore, kFill));
        else
            ASSERT_TRUE(applyFilter(image, static_cast<int>(c.number), kFore, kFill, area));
        const QRect inside = area & source.rect();
        // Mirror and flip turn the area over as if it were a picture of its own.
        const QImage expectedInside = c.turnsAreaOver ? filtered(source.copy(inside), c.number) : QImage();
        for (int y = 0; y < source.height(); ++y) {
            for (int x = 0; x < source.width(); ++x) {
                QRgb expected = source.pixel(x, y);
                if (inside.contains(x, y))
                    expected = c.turnsAreaOver ? expectedInside.pixel(x - inside.left(), y - inside.top())
                                               : whole.pixel(x, y);
                ASSERT_EQ(image.pixel(x, y), expected)
                    << "area " << area.x() << "," << area.y() << " " << area.width() << "x" << area.height()
                    << " at " << x << "," << y;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllFilters, FilterTable, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<FilterCase>& param) {
                             std::string name = param.param.name;
                             name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
                             return name;
                         });

TEST(ImageFilters, ListNumbersEveryFilterOnceAndRejectsOthers) {
    const auto& filters = imageFilters();
    ASSERT_EQ(filters.size(), std::size(kCases));
    std::set<QString> names;
    for (std::size_t i = 0; i < filters.size(); ++i) {
        EXPECT_EQ(filters[i].number, static_cast<int>(i) + 1);
        EXPECT_FALSE(filters[i].toolTip.isEmpty()) << filters[i].name.toStdString();
        names.insert(filters[i].name);
    }
    EXPECT_EQ(names.size(), filters.size());
    EXPECT_EQ(findImageFilter(static_cast<int>(ImageFilterNumber::TwoColours))->name,
              QStringLiteral("Two colours"));

    const QImage source = knownImage();
    for (int unknown : {0, -1, 18, 1000}) {
        QImage image = source;
        EXPECT_EQ(findImageFilter(unknown), nullptr);
        EXPECT_FALSE(applyFilter(image, unknown, kFore, kFill, QRect()));
        EXPECT_FALSE(applyFilterAt(image, unknown, QPoint(4, 4), 8, kFore, kFill));
        EXPECT_EQ(image, source);
    }
    QImage null;
    EXPECT_FALSE(applyFilter(null, static_cast<int>(ImageFilterNumber::Invert), kFore, kFill, QRect()));

    // A square or area that misses the image changes nothing: it never falls
    // back to the whole image.
    QImage image = source;
    EXPECT_TRUE(
        applyFilterAt(image, static_cast<int>(ImageFilterNumber::Invert), QPoint(-50, -50), 8, kFore, kFill));
    EXPECT_TRUE(
        applyFilter(image, static_cast<int>(ImageFilterNumber::Invert), kFore, kFill, QRect(100, 100, 5, 5)));
    EXPECT_EQ(image, source);

    EXPECT_EQ(filterBrushRect(QPoint(10, 10), 1), QRect(10, 10, 1, 1));
    EXPECT_EQ(filterBrushRect(QPoint(10, 10), 0), QRect(10, 10, 1, 1));
}

} // namespace
} // namespace mirabend::test
