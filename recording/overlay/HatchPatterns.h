#pragma once
// The 53 hatch patterns of the text style "Hatch Brush", each an 8 x 8 cell
// repeated from the frame's origin. Row 0 is the top row; in each row byte
// the most significant bit is the leftmost pixel; a set bit is drawn in the
// foreground colour, a clear bit in the background colour.
//
// Thread contract: every function may be called from any thread.

#include <QColor>
#include <QImage>
#include <array>
#include <cstdint>

namespace mirabend {

constexpr int kHatchPatternCount = 53; // indexes 0..52; 53 ("HatchStyleTotal ") is no pattern

using HatchCell = std::array<std::uint8_t, 8>;

// The cell of pattern `index`; an index out of 0..52 gives an all-set cell
// (a solid foreground fill).
HatchCell hatchCell(int index);

bool hatchBit(const HatchCell& cell, int x, int y);

// Number of set bits, 0..64.
int hatchBitCount(const HatchCell& cell);

// An 8 x 8 opaque image of the cell in the two colours, for a texture brush.
QImage hatchTile(int index, const QColor& fore, const QColor& back);

} // namespace mirabend
