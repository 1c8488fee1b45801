// The text and the date/time stamp as they land on a frame.
#include "FrameProbe.h"
#include "recording/overlay/HatchPatterns.h"
#include "recording/overlay/OverlayChoices.h"
#include "recording/overlay/OverlayRendering.h"

#include <QFontMetrics>
#include <gtest/gtest.h>
#include <vector>

namespace mirabend::test {
namespace {

const QColor kBlue(0, 0, 255);
const QString kBlock = QString(QChar(0x2588)); // a full block: solid ink inside its box

// The inside of the painted ink, away from antialiased edges.
QRect inside(const Ink& ink) {
    return ink.box.adjusted(3, 3, -3, -3);
}

TEST(OverlayText, TextLandsAtItsPositionInItsColourAndOnlyWhenShown) {
    const Ink at = inkOf(paintedWith(textSettings("Hello", 100, 50), kBlue), kBlue);
    ASSERT_GT(at.count, 50);
    // The glyphs start right of and below the line box's corner, within a
    // few pixels of side bearing and the space above capitals.
    EXPECT_GE(at.box.left(), 99);
    EXPECT_LE(at.box.left(), 104);
    EXPECT_GE(at.box.top(), 50);
    EXPECT_LE(at.box.top(), 50 + 12);
    const Ink moved = inkOf(paintedWith(textSettings("Hello", 130, 70), kBlue), kBlue);
    EXPECT_EQ(moved.box, at.box.translated(30, 20));
    EXPECT_EQ(moved.count, at.count);

    const QImage block = paintedWith(textSettings(kBlock, 40, 40), kBlue);
    EXPECT_EQ(block.pixel(inside(inkOf(block, kBlue)).center()), qRgb(255, 0, 0));

    OverlaySettings hidden = textSettings("Hello", 10, 10);
    hidden.showText = false;
    OverlayPainter painter;
    EXPECT_TRUE(painter.apply(hidden).ok());
    EXPECT_FALSE(painter.active());
    QImage frame = blankFrame(kBlue);
    painter.paint(frame, fixedTime());
    EXPECT_EQ(inkOf(frame, kBlue).count, 0);
}

TEST(OverlayText, SecondLineSitsOneLineBelowTheFirst) {
    const Ink one = inkOf(paintedWith(textSettings("HH", 20, 20), kBlue), kBlue);
    const Ink two = inkOf(paintedWith(textSettings(composeOverlayText("HH", "HH"), 20, 20), kBlue), kBlue);
    const int lineSpacing =
        QFontMetrics(overlayFont("DejaVu Sans", 20, OverlayFontStyle::Regular)).lineSpacing();
    EXPECT_EQ(two.box.top(), one.box.top());
    EXPECT_NEAR(two.box.bottom() - one.box.bottom(), lineSpacing, 1);
    // Antialiased edges may differ by a few pixels between the two lines.
    EXPECT_NEAR(two.count, 2 * one.count, one.count / 10);
}

TEST(OverlayText, OutlineStylesStrokeTheEdgeAndFillOnlyWhenAsked) {
    OverlaySettings s = textSettings(kBlock, 40, 40);
    s.textFontSize = 48;
    s.outlineColor = QColor(0, 255, 0);
    s.outlineFillColor = QColor(255, 255, 0);

    s.textStyle = static_cast<int>(OverlayTextStyle::OutlineText);
    const QImage outlined = paintedWith(s, kBlue);
    const Ink ink = inkOf(outlined, kBlue);
    ASSERT_TRUE(inside(ink).isValid());
    EXPECT_EQ(outlined.pixel(ink.box.center()), kBlue.rgb()) << "outline text must stay hollow";
    const int midY = ink.box.center().y();
    bool greenEdge = false;
    for (int x = ink.box.left(); x < ink.box.left() + 4; ++x)
        greenEdge = greenEdge || outlined.pixel(x, midY) == qRgb(0, 255, 0);
    EXPECT_TRUE(greenEdge);

    s.textStyle = static_cast<int>(OverlayTextStyle::FilledOutline);
    const QImage filled = paintedWith(s, kBlue);
    EXPECT_EQ(filled.pixel(inkOf(filled, kBlue).box.center()), qRgb(255, 255, 0));
    EXPECT_EQ(inkOf(filled, kBlue).box, ink.box);
}

TEST(OverlayText, HatchPatternIsAnchoredAtTheFrameOrigin) {
    const QColor fore(255, 255, 255);
    const QColor back(0, 0, 0);
    for (int index : {0, 2, 12, 36, 40, 50}) {
        OverlaySettings s =
            textSettings(kBlock, 37, 21); // odd offsets: a pattern tied to the text would show
        s.textFontSize = 40;
        s.textStyle = static_cast<int>(OverlayTextStyle::HatchBrush);
        s.hatchStyle = index;
        s.hatchForeColor = fore;
        s.hatchBackColor = back;
        OverlayReport report;
        const QImage frame = paintedWith(s, kBlue, &report);
        EXPECT_TRUE(report.ok());
        const QRect core = inside(inkOf(frame, kBlue));
        ASSERT_GT(core.width(), 16);
        ASSERT_GT(core.height(), 16);
        const HatchCell cell = hatchCell(index);
        EXPECT_EQ(
            mismatches(frame, core, [&](int x, int y) { return (hatchBit(cell, x, y) ? fore : back).rgb(); }),
            0)
            << overlayHatchStyleNames().at(index).toStdString();
    }
}

TEST(OverlayText, OutOfRangeChoicesAreReportedAndFallBack) {
    OverlaySettings s = textSettings(kBlock, 40, 40);
    s.textStyle = 9;
    OverlayReport report;
    QImage frame = paintedWith(s, kBlue, &report);
    EXPECT_TRUE(hasFailure(report, OverlayError::TextStyleOutOfRange));
    EXPECT_EQ(frame.pixel(inside(inkOf(frame, kBlue)).center()), qRgb(255, 0, 0)) << "falls back to Normal";

    s.textStyle = static_cast<int>(OverlayTextStyle::HatchBrush);
    s.hatchStyle = 53; // "HatchStyleTotal ": the count, no pattern
    s.hatchForeColor = QColor(0, 255, 0);
    frame = paintedWith(s, kBlue, &report);
    EXPECT_TRUE(hasFailure(report, OverlayError::HatchStyleOutOfRange));
    EXPECT_EQ(frame.pixel(inside(inkOf(frame, kBlue)).center()), qRgb(0, 255, 0));

    s = textSettings("Hi", 10, 10);
    s.textFontStyle = 5;
    s.textFontSize = 0;
    s.dateFormat = 19;
    paintedWith(s, kBlue, &report);
    EXPECT_TRUE(hasFailure(report, OverlayError::FontStyleOutOfRange));
    EXPECT_TRUE(hasFailure(report, OverlayError::FontSizeOutOfRange));
    EXPECT_TRUE(hasFailure(report, OverlayError::DateFormatOutOfRange));
}

TEST(OverlayText, FontStylesChangeTheInk) {
    OverlaySettings s = textSettings("a a", 20, 20);
    // Each of the five styles draws a picture of its own.
    const QStringList names = overlayFontStyleNames();
    std::vector<QImage> styled;
    for (int style = 0; style < names.size(); ++style) {
        s.textFontStyle = style;
        styled.push_back(paintedWith(s, kBlue));
        for (int earlier = 0; earlier < style; ++earlier)
            EXPECT_NE(styled[std::size_t(style)], styled[std::size_t(earlier)])
                << names[style].toStdString() << " looks like " << names[earlier].toStdString();
    }

    s.textFontStyle = static_cast<int>(OverlayFontStyle::Regular);
    const Ink regular = inkOf(paintedWith(s, kBlue), kBlue);
    s.textFontStyle = static_cast<int>(OverlayFontStyle::Bold);
    EXPECT_GT(inkOf(paintedWith(s, kBlue), kBlue).count, regular.count * 11 / 10);

    // The underline runs unbroken under the blank between the two words.
    s.textFontStyle = static_cast<int>(OverlayFontStyle::Underline);
    const QImage underlined = paintedWith(s, kBlue);
    const Ink ink = inkOf(underlined, kBlue);
    EXPECT_GT(ink.box.bottom(), regular.box.bottom());
    int longestRun = 0;
    for (int y = ink.box.top(); y <= ink.box.bottom(); ++y) {
        int run = 0;
        for (int x = ink.box.left(); x <= ink.box.right(); ++x) {
            run = underlined.pixel(x, y) != kBlue.rgb() ? run + 1 : 0;
            longestRun = std::max(longestRun, run);
        }
    }
    EXPECT_GE(longestRun, regular.box.width() - 2);
}

TEST(OverlayText, MissingFontsFallBackToAnInstalledFamilyOfTheSameKind) {
    OverlaySettings s = textSettings("Hello", 20, 20);
    s.textFontName = QStringLiteral("Times New Roman");
    s.dateFontName = QStringLiteral("Arial");
    OverlayReport report;
    const QImage frame = paintedWith(s, kBlue, &report);
    EXPECT_TRUE(report.ok());
    EXPECT_GT(inkOf(frame, kBlue).count, 50);
    EXPECT_FALSE(report.textFontFamily.isEmpty());
    EXPECT_NE(report.textFontFamily, report.dateFontFamily) << "serif and sans serif must stay apart";
}

TEST(OverlayDateStamp, StampIsTheFormattedTimeAsTextAndFollowsClockAndSettings) {
    OverlaySettings date;
    date.showDateTime = true;
    date.dateFormat = 4;
    date.dateLeft = 12;
    date.dateTop = 140;
    date.dateColor = QColor(255, 255, 0);
    date.dateFontName = QStringLiteral("DejaVu Sans");
    date.dateFontSize = 16;
    date.dateFontStyle = static_cast<int>(OverlayFontStyle::Bold);
    // The same string drawn as plain text must give the same pixels.
    OverlaySettings text = textSettings(QStringLiteral("17:08:09"), 12, 140);
    text.textColor = date.dateColor;
    text.textFontSize = 16;
    text.textFontStyle = date.dateFontStyle;
    const QImage first = paintedWith(date, kBlue);
    EXPECT_GT(inkOf(first, kBlue).count, 50);
    EXPECT_EQ(first, paintedWith(text, kBlue));

    OverlayPainter painter;
    painter.apply(date);
    auto paintAt = [&painter](const QDateTime& time) {
        QImage frame = blankFrame(kBlue);
        painter.paint(frame, time);
        return frame;
    };
    EXPECT_EQ(paintAt(fixedTime()), first);
    EXPECT_NE(paintAt(fixedTime().addSecs(1)), first);
    // New settings are in force for the very next frame, even within the
    // same second.
    date.dateLeft = 62;
    painter.apply(date);
    EXPECT_EQ(inkOf(paintAt(fixedTime()), kBlue).box, inkOf(first, kBlue).box.translated(50, 0));
}

} // namespace
} // namespace mirabend::test
