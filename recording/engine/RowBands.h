#pragma once
// Changed rows of a picture as full-width bands. A band handed to the
// converter carries kRowMargin rows of context above and below what
// changed (clamped at the picture's edges), so that a scaler whose filters
// reach across rows (4:2:0 chroma, ordered dither) converts the inner rows
// exactly as it would the whole picture; band edges sit on multiples of
// kRowAlign rows for the same reason.
//
// Thread contract: plain values and functions.

#include <vector>

namespace mirabend {

struct RowBand {
    int top = 0;
    int height = 0;
    int bottom() const { return top + height; }
    bool operator==(const RowBand& o) const { return top == o.top && height == o.height; }
};

constexpr int kRowAlign = 8;
constexpr int kRowMargin = 8;

// Bands covering `changed` (any order, may overlap), aligned, widened by
// the margin, clamped to [0, pictureHeight) and merged where they touch or
// lie closer than `joinGap` rows, top to bottom.
std::vector<RowBand> padBands(std::vector<RowBand> changed, int pictureHeight, int joinGap = 32);

// Bands merged where they overlap or lie closer than `joinGap` rows, top
// to bottom; empty ones dropped.
std::vector<RowBand> joinBands(std::vector<RowBand> bands, int joinGap = 32);

// The rows of a padded band that the converter writes back: the band less
// its margins, except at the picture's top and bottom.
RowBand innerRows(const RowBand& band, int pictureHeight);

} // namespace mirabend
