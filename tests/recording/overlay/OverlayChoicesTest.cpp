#include "recording/overlay/OverlayChoices.h"

#include <gtest/gtest.h>

namespace mirabend::test {
namespace {

// 17:08:09 on 4 March 2026: every field differs, and the hour shows whether
// the 24-hour clock is used.
const QDateTime kTime(QDate(2026, 3, 4), QTime(17, 8, 9));

TEST(OverlayDateFormats, EachFormatRendersTheFixedTime) {
    const char* expected[kOverlayDateFormatCount] = {
        "03/04/2026",
        "04/03/2026",
        "03.04.2026",
        "04.03.2026",
        "17:08:09",
        "17:08",
        "08:09",
        "03/04/2026 17:08:09",
        "04/03/2026 17:08:09",
        "03.04.2026 17:08:09",
        "04.03.2026 17:08:09",
        "03/04/2026 17:08",
        "04/03/2026 17:08",
        "03.04.2026 17:08",
        "04.03.2026 17:08",
        "03/04/2026.08:09",
        "04/03/2026.08:09",
        "03.04.2026.08:09",
        "04.03.2026.08:09",
    };
    for (int i = 0; i < kOverlayDateFormatCount; ++i)
        EXPECT_EQ(formatOverlayDate(i, kTime), QLatin1String(expected[i])) << "format " << i;
    EXPECT_EQ(formatOverlayDate(-1, kTime), QLatin1String(expected[kDefaultOverlayDateFormat]));
    EXPECT_EQ(formatOverlayDate(kOverlayDateFormatCount, kTime),
              QLatin1String(expected[kDefaultOverlayDateFormat]));
}

TEST(OverlayDateFormats, NamesAreTheListTextsAndTheDefaultIsEntrySeven) {
    const QStringList& names = overlayDateFormatNames();
    ASSERT_EQ(names.size(), kOverlayDateFormatCount);
    EXPECT_EQ(names.first(), QLatin1String("mm/dd/yyyy"));
    EXPECT_EQ(names.at(6), QLatin1String("mm:ss"));
    EXPECT_EQ(names.at(kDefaultOverlayDateFormat), QLatin1String("mm/dd/yyyy hh:mm:ss"));
    EXPECT_EQ(names.last(), QLatin1String("dd.mm.yyyy.mm:ss"));
}

TEST(OverlayLists, StyleFontAndSizeListsMatchTheOptionsWindow) {
    EXPECT_EQ(overlayTextStyleNames(),
              QStringList({"Normal", "Outline Text", "Filled Outline", "Hatch Brush", "TextureBrush"}));
    EXPECT_EQ(overlayFontStyleNames(), QStringList({"Regular", "Bold", "Italic", "BoldItalic", "Underline"}));
    EXPECT_EQ(overlayFontNames(), QStringList({"Arial", "Arial Black", "Comic Sans MS", "Times New Roman"}));

    const QList<int>& sizes = overlayFontSizes();
    ASSERT_EQ(sizes.size(), 27);
    EXPECT_EQ(sizes.first(), 8);
    EXPECT_EQ(sizes.last(), 60);
    EXPECT_EQ(sizes.at(kDefaultOverlayFontSizeIndex), 28);
    EXPECT_EQ(overlayImageFileFilter(),
              QLatin1String("Bitmap File (*.bmp)|*.bmp|JPEG File (*.jpg)|*.jpg|Gif File (*.gif)|*.gif"));
}

TEST(OverlayLists, HatchNamesKeepTheirTrailingBlankAndEnumerationOrder) {
    const QStringList& names = overlayHatchStyleNames();
    ASSERT_EQ(names.size(), 54);
    for (const QString& name : names) {
        EXPECT_TRUE(name.startsWith(QLatin1String("HatchStyle"))) << name.toStdString();
        EXPECT_TRUE(name.endsWith(QLatin1Char(' ')) && !name.endsWith(QLatin1String("  ")))
            << '"' << name.toStdString() << '"';
    }
    EXPECT_EQ(names.at(0), QLatin1String("HatchStyleHorizontal "));
    EXPECT_EQ(names.at(6), QLatin1String("HatchStyle05Percent "));
    EXPECT_EQ(names.at(18), QLatin1String("HatchStyleLightDownwardDiagonal "));
    EXPECT_EQ(names.at(36), QLatin1String("HatchStyleZigZag "));
    EXPECT_EQ(names.at(52), QLatin1String("HatchStyleSolidDiamond "));
    EXPECT_EQ(names.at(53), QLatin1String("HatchStyleTotal "));
}

TEST(OverlayText, ComposedTextTrimsBothLinesAndJoinsWithLineFeedCarriageReturn) {
    const QString text = composeOverlayText(QStringLiteral("  Quarterly review "), QStringLiteral(" Ada "));
    EXPECT_EQ(text, QStringLiteral("Quarterly review\n\rAda"));
    EXPECT_EQ(overlayTextLines(text), QStringList({"Quarterly review", "Ada"}));
}

TEST(OverlayText, LineSplittingHandlesEveryBreakAndKeepsAnEmptyFirstLine) {
    EXPECT_EQ(overlayTextLines(composeOverlayText("Title", "")), QStringList({"Title"}));
    EXPECT_EQ(overlayTextLines(composeOverlayText("", "Second")), QStringList({"", "Second"}));
    EXPECT_EQ(overlayTextLines(QStringLiteral("a\r\nb")), QStringList({"a", "b"}));
    EXPECT_EQ(overlayTextLines(QStringLiteral("a\nb\rc")), QStringList({"a", "b", "c"}));
    // Two equal characters are two breaks: the empty line between stays.
    EXPECT_EQ(overlayTextLines(QStringLiteral("a\n\nb")), QStringList({"a", "", "b"}));
    EXPECT_TRUE(overlayTextLines(composeOverlayText("", "")).isEmpty());
}

} // namespace
} // namespace mirabend::test
