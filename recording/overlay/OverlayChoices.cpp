#include "recording/overlay/OverlayChoices.h"

namespace mirabend {

namespace {

struct DateFormat {
    const char* name; // as the list shows it
    const char* qt;   // the same layout in QDateTime's notation
};

// In the list's notation "mm" is the month in a date part and the minutes
// next to "hh" or before "ss", and "hh" is the 24-hour clock. The last four
// formats really end in minutes and seconds after the date ("yyyy.mm:ss").
constexpr DateFormat kDateFormats[kOverlayDateFormatCount] = {
    {"mm/dd/yyyy", "MM/dd/yyyy"},
    {"dd/mm/yyyy", "dd/MM/yyyy"},
    {"mm.dd.yyyy", "MM.dd.yyyy"},
    {"dd.mm.yyyy", "dd.MM.yyyy"},
    {"hh:mm:ss", "HH:mm:ss"},
    {"hh:mm", "HH:mm"},
    {"mm:ss", "mm:ss"},
    {"mm/dd/yyyy hh:mm:ss", "MM/dd/yyyy HH:mm:ss"},
    {"dd/mm/yyyy hh:mm:ss", "dd/MM/yyyy HH:mm:ss"},
    {"mm.dd.yyyy hh:mm:ss", "MM.dd.yyyy HH:mm:ss"},
    {"dd.mm.yyyy hh:mm:ss", "dd.MM.yyyy HH:mm:ss"},
    {"mm/dd/yyyy hh:mm", "MM/dd/yyyy HH:mm"},
    {"dd/mm/yyyy hh:mm", "dd/MM/yyyy HH:mm"},
    {"mm.dd.yyyy hh:mm", "MM.dd.yyyy HH:mm"},
    {"dd.mm.yyyy hh:mm", "dd.MM.yyyy HH:mm"},
    {"mm/dd/yyyy.mm:ss", "MM/dd/yyyy.mm:ss"},
    {"dd/mm/yyyy.mm:ss", "dd/MM/yyyy.mm:ss"},
    {"mm.dd.yyyy.mm:ss", "MM.dd.yyyy.mm:ss"},
    {"dd.mm.yyyy.mm:ss", "dd.MM.yyyy.mm:ss"},
};

// The names of the hatch style enumeration; the list shows each with a
// trailing blank.
constexpr const char* kHatchNames[] = {
    "HatchStyleHorizontal",
    "HatchStyleVertical",
    "HatchStyleForwardDiagonal",
    "HatchStyleBackwardDiagonal",
    "HatchStyleCross",
    "HatchStyleDiagonalCross",
    "HatchStyle05Percent",
    "HatchStyle10Percent",
    "HatchStyle20Percent",
    "HatchStyle25Percent",
    "HatchStyle30Percent",
    "HatchStyle40Percent",
    "HatchStyle50Percent",
    "HatchStyle60Percent",
    "HatchStyle70Percent",
    "HatchStyle75Percent",
    "HatchStyle80Percent",
    "HatchStyle90Percent",
    "HatchStyleLightDownwardDiagonal",
    "HatchStyleLightUpwardDiagonal",
    "HatchStyleDarkDownwardDiagonal",
    "HatchStyleDarkUpwardDiagonal",
    "HatchStyleWideDownwardDiagonal",
    "HatchStyleWideUpwardDiagonal",
    "HatchStyleLightVertical",
    "HatchStyleLightHorizontal",
    "HatchStyleNarrowVertical",
    "HatchStyleNarrowHorizontal",
    "HatchStyleDarkVertical",
    "HatchStyleDarkHorizontal",
    "HatchStyleDashedDownwardDiagonal",
    "HatchStyleDashedUpwardDiagonal",
    "HatchStyleDashedHorizontal",
    "HatchStyleDashedVertical",
    "HatchStyleSmallConfetti",
    "HatchStyleLargeConfetti",
    "HatchStyleZigZag",
    "HatchStyleWave",
    "HatchStyleDiagonalBrick",
    "HatchStyleHorizontalBrick",
    "HatchStyleWeave",
    "HatchStylePlaid",
    "HatchStyleDivot",
    "HatchStyleDottedGrid",
    "HatchStyleDottedDiamond",
    "HatchStyleShingle",
    "HatchStyleTrellis",
    "HatchStyleSphere",
    "HatchStyleSmallGrid",
    "HatchStyleSmallCheckerBoard",
    "HatchStyleLargeCheckerBoard",
    "HatchStyleOutlinedDiamond",
    "HatchStyleSolidDiamond",
    "HatchStyleTotal",
};

QStringList listOf(std::initializer_list<const char*> names) {
    QStringList list;
    for (const char* name : names)
        list.append(QString::fromLatin1(name));
    return list;
}

} // namespace

const QStringList& overlayDateFormatNames() {
    static const QStringList names = [] {
        QStringList list;
        for (const DateFormat& format : kDateFormats)
            list.append(QString::fromLatin1(format.name));
        return list;
    }();
    return names;
}

QString formatOverlayDate(int index, const QDateTime& time) {
    if (index < 0 || index >= kOverlayDateFormatCount)
        index = kDefaultOverlayDateFormat;
    return time.toString(QString::fromLatin1(kDateFormats[index].qt));
}

const QStringList& overlayHatchStyleNames() {
    static const QStringList names = [] {
        QStringList list;
        for (const char* name : kHatchNames)
            list.append(QString::fromLatin1(name) + QLatin1Char(' '));
        return list;
    }();
    return names;
}

const QStringList& overlayTextStyleNames() {
    static const QStringList names =
        listOf({"Normal", "Outline Text", "Filled Outline", "Hatch Brush", "TextureBrush"});
    return names;
}

const QStringList& overlayFontStyleNames() {
    static const QStringList names = listOf({"Regular", "Bold", "Italic", "BoldItalic", "Underline"});
    return names;
}

const QStringList& overlayFontNames() {
    static const QStringList names = listOf({"Arial", "Arial Black", "Comic Sans MS", "Times New Roman"});
    return names;
}

const QList<int>& overlayFontSizes() {
    static const QList<int> sizes = [] {
        QList<int> list;
        for (int size = 8; size <= 60; size += 2)
            list.append(size);
        return list;
    }();
    return sizes;
}

QString overlayImageFileFilter() {
    return QStringLiteral("Bitmap File (*.bmp)|*.bmp|JPEG File (*.jpg)|*.jpg|Gif File (*.gif)|*.gif");
}

QString composeOverlayText(const QString& first, const QString& second) {
    return first.trimmed() + QChar(10) + QChar(13) + second.trimmed();
}

QStringList overlayTextLines(const QString& text) {
    QStringList lines;
    QString line;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c != QChar(10) && c != QChar(13)) {
            line.append(c);
            continue;
        }
        // A break is one character, or a pair of two different ones.
        if (i + 1 < text.size()) {
            const QChar next = text.at(i + 1);
            if ((next == QChar(10) || next == QChar(13)) && next != c)
                ++i;
        }
        lines.append(line);
        line.clear();
    }
    lines.append(line);
    while (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

} // namespace mirabend
