#include "recording/overlay/HatchPatterns.h"

#include "recording/overlay/OverlayChoices.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace mirabend::test {
namespace {

int indexOf(const char* name) {
    const int index = overlayHatchStyleNames().indexOf(QLatin1String("HatchStyle") + QLatin1String(name) +
                                                       QLatin1Char(' '));
    EXPECT_GE(index, 0) << name;
    return index;
}

HatchCell cellOf(const char* name) {
    return hatchCell(indexOf(name));
}

bool bit(const HatchCell& cell, int x, int y) {
    return hatchBit(cell, (x + 8) % 8, (y + 8) % 8);
}

// The cell repeats when shifted by (dx, dy): lines run in that direction.
bool invariantUnder(const HatchCell& cell, int dx, int dy) {
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            if (bit(cell, x, y) != bit(cell, x + dx, y + dy))
                return false;
    return true;
}

int setRows(const HatchCell& cell) {
    int rows = 0;
    for (std::uint8_t row : cell)
        rows += row == 0xFF ? 1 : 0;
    return rows;
}

int setColumns(const HatchCell& cell) {
    int columns = 0;
    for (int x = 0; x < 8; ++x) {
        bool full = true;
        for (int y = 0; y < 8; ++y)
            full = full && hatchBit(cell, x, y);
        columns += full ? 1 : 0;
    }
    return columns;
}

HatchCell unite(const HatchCell& a, const HatchCell& b) {
    HatchCell out{};
    for (std::size_t i = 0; i < 8; ++i)
        out[i] = static_cast<std::uint8_t>(a[i] | b[i]);
    return out;
}

TEST(HatchPatterns, StraightLinesRunTheWayTheirNamesSay) {
    struct Case {
        const char* name;
        int rows;    // full rows in the cell
        int columns; // full columns
    };
    const Case cases[] = {
        {"Horizontal", 1, 0},     {"Vertical", 0, 1},         {"LightHorizontal", 2, 0},
        {"LightVertical", 0, 2},  {"NarrowHorizontal", 4, 0}, {"NarrowVertical", 0, 4},
        {"DarkHorizontal", 4, 0}, {"DarkVertical", 0, 4},
    };
    for (const Case& c : cases) {
        const HatchCell cell = cellOf(c.name);
        EXPECT_EQ(setRows(cell), c.rows) << c.name;
        EXPECT_EQ(setColumns(cell), c.columns) << c.name;
        // Nothing but the full lines is drawn.
        EXPECT_EQ(hatchBitCount(cell), 8 * (c.rows + c.columns)) << c.name;
    }
    // Dark lines are twice as thick as light ones at the same spacing: pairs.
    const HatchCell dark = cellOf("DarkHorizontal");
    EXPECT_TRUE(dark[0] == 0xFF && dark[1] == 0xFF && dark[2] == 0 && dark[3] == 0);
}

TEST(HatchPatterns, DiagonalsSlantTheWayTheirNamesSay) {
    // Downward and forward: top left to bottom right; upward and backward:
    // bottom left to top right. Wider variants draw more per row.
    struct Case {
        const char* name;
        bool downward;
        int period; // horizontal repeat
        int perRow; // pixels in one row of one repeat
    };
    const Case cases[] = {
        {"ForwardDiagonal", true, 8, 1},       {"BackwardDiagonal", false, 8, 1},
        {"LightDownwardDiagonal", true, 4, 1}, {"LightUpwardDiagonal", false, 4, 1},
        {"DarkDownwardDiagonal", true, 4, 2},  {"DarkUpwardDiagonal", false, 4, 2},
        {"WideDownwardDiagonal", true, 8, 3},  {"WideUpwardDiagonal", false, 8, 3},
    };
    for (const Case& c : cases) {
        const HatchCell cell = cellOf(c.name);
        EXPECT_TRUE(invariantUnder(cell, c.downward ? 1 : -1, 1)) << c.name;
        EXPECT_FALSE(invariantUnder(cell, c.downward ? -1 : 1, 1)) << c.name;
        EXPECT_TRUE(invariantUnder(cell, c.period, 0)) << c.name;
        if (c.period == 8) {
            EXPECT_FALSE(invariantUnder(cell, 4, 0)) << c.name;
        }
        EXPECT_EQ(hatchBitCount(cell), 8 * c.perRow * (8 / c.period)) << c.name;
    }
}

TEST(HatchPatterns, PercentPatternsHoldTheirShareOfPixelsAndGrowNested) {
    const int percents[] = {5, 10, 20, 25, 30, 40, 50, 60, 70, 75, 80, 90};
    HatchCell previous{};
    for (int percent : percents) {
        const std::string name = (percent < 10 ? "0" : "") + std::to_string(percent) + "Percent";
        const HatchCell cell = cellOf(name.c_str());
        const double share = hatchBitCount(cell) * 100.0 / 64.0;
        EXPECT_NEAR(share, percent, 100.0 / 64.0) << name;
        for (std::size_t row = 0; row < 8; ++row)
            EXPECT_EQ(cell[row] & previous[row], previous[row]) << name << " drops a pixel of the one below";
        previous = cell;
    }
    // Half is the even checkerboard: no two neighbours alike.
    const HatchCell half = cellOf("50Percent");
    EXPECT_EQ(hatchBitCount(half), 32);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_NE(bit(half, x, y), bit(half, x + 1, y));
}

TEST(HatchPatterns, CompositePatternsAreMadeOfTheirParts) {
    EXPECT_EQ(cellOf("Cross"), unite(cellOf("Horizontal"), cellOf("Vertical")));
    EXPECT_EQ(cellOf("DiagonalCross"), unite(cellOf("ForwardDiagonal"), cellOf("BackwardDiagonal")));
    for (const auto& [name, square] : {std::pair{"SmallCheckerBoard", 2}, std::pair{"LargeCheckerBoard", 4}})
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                ASSERT_EQ(bit(cellOf(name), x, y), ((x / square) + (y / square)) % 2 == 0) << name;
    const HatchCell grid = cellOf("SmallGrid");
    EXPECT_EQ(setRows(grid), 2);
    EXPECT_EQ(setColumns(grid), 2);
    EXPECT_TRUE(invariantUnder(grid, 4, 4));
    // Dashed diagonals are pieces of the light ones.
    for (const char* direction : {"Downward", "Upward"}) {
        const HatchCell dashed = cellOf((std::string("Dashed") + direction + "Diagonal").c_str());
        const HatchCell light = cellOf((std::string("Light") + direction + "Diagonal").c_str());
        EXPECT_EQ(unite(dashed, light), light) << direction;
        EXPECT_LT(hatchBitCount(dashed), hatchBitCount(light)) << direction;
    }
}

bool isOneRun(std::uint8_t row) {
    unsigned v = row;
    if (v == 0)
        return true;
    while ((v & 1u) == 0)
        v >>= 1;
    return (v & (v + 1)) == 0;
}

TEST(HatchPatterns, DiamondsAreMirrorSymmetricAndTheSolidOneIsFilled) {
    struct Case {
        const char* name;
        int mirror; // x maps to mirror - x
    };
    for (const Case& c : {Case{"OutlinedDiamond", 8}, Case{"SolidDiamond", 8}, Case{"DottedDiamond", 7}}) {
        const HatchCell cell = cellOf(c.name);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                EXPECT_EQ(bit(cell, x, y), bit(cell, c.mirror - x, y)) << c.name << " at " << x << "," << y;
    }
    // A solid diamond's rows are single runs, widest in the middle.
    const HatchCell solid = cellOf("SolidDiamond");
    int widest = 0;
    for (std::uint8_t row : solid) {
        EXPECT_TRUE(isOneRun(row)) << "row " << int(row) << " is not one run";
        widest = std::max(widest, hatchBitCount(HatchCell{{row, 0, 0, 0, 0, 0, 0, 0}}));
    }
    EXPECT_EQ(widest, 7);
    EXPECT_GT(hatchBitCount(solid), hatchBitCount(cellOf("OutlinedDiamond")));
}

TEST(HatchPatterns, AllPatternsDifferAndTheCountEntryIsNoPattern) {
    std::set<HatchCell> seen;
    for (int i = 0; i < kHatchPatternCount; ++i) {
        const HatchCell cell = hatchCell(i);
        EXPECT_GT(hatchBitCount(cell), 0) << i;
        EXPECT_LT(hatchBitCount(cell), 64) << i;
        EXPECT_TRUE(seen.insert(cell).second) << overlayHatchStyleNames().at(i).toStdString() << " repeats";
    }
    EXPECT_EQ(hatchBitCount(hatchCell(kHatchPatternCount)), 64);
    EXPECT_EQ(hatchBitCount(hatchCell(-1)), 64);
}

} // namespace
} // namespace mirabend::test
