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

TEST(OverlayLists, HatchNamesKeepTheirTrailingBlankAndEndWithTheCount) {
    const QStringList& names = overlayHatchStyleNames();
    ASSERT_EQ(names.size(), 54);
    for (const QString& name : names) {
        EXPECT_TRUE(name.startsWith(QLatin1String("HatchStyle")) && name.endsWith(QLatin1Char(' ')) &&
                    !name.endsWith(QLatin1String("  ")))
            << '"' << name.toStdString() << '"';
    }
    EXPECT_EQ(names.at(53), QLatin1String("HatchStyleTotal "));
}

TEST(OverlayText, ComposedTextTrimsAndSplitsAtEveryBreak) {
    EXPECT_EQ(composeOverlayText(QStringLiteral("  Quarterly review "), QStringLiteral(" Ada ")),
              QStringLiteral("Quarterly review\n\rAda"));
    const std::pair<QString, QStringList> rows[] = {
        {composeOverlayText(" Review ", " Ada "), {"Review", "Ada"}},
        {composeOverlayText("Title", ""), {"Title"}},
        {composeOverlayText("", "Second"), {"", "Second"}},
        {composeOverlayText("", ""), {}},
        {"a\r\nb", {"a", "b"}},
        {"a\nb\rc", {"a", "b", "c"}},
        {"a\n\nb", {"a", "", "b"}}, // two equal characters are two breaks
    };
    for (const auto& [text, lines] : rows)
        EXPECT_EQ(overlayTextLines(text), lines) << text.toStdString();
}

} // namespace
} // namespace mirabend::test
