#pragma once
// The choices the options window offers for the overlays, kept here so the
// names live in one place: the window fills its lists from these, the painter
// interprets the indexes the window hands back.
//
// Positions are not a list: the window takes left and top as pixel numbers.
//
// Thread contract: every function may be called from any thread; the lists
// are built once and never change.

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

namespace mirabend {

// The 19 date/time formats, list order, as the window shows them
// ("mm/dd/yyyy", ..., "dd.mm.yyyy.mm:ss").
const QStringList& overlayDateFormatNames();
constexpr int kOverlayDateFormatCount = 19;
constexpr int kDefaultOverlayDateFormat = 7; // "mm/dd/yyyy hh:mm:ss"

// The stamp's text for `time` in format `index` (24-hour clock). An index out
// of range formats with the default format.
QString formatOverlayDate(int index, const QDateTime& time);

// The hatch style list: "HatchStyleHorizontal " ... "HatchStyleSolidDiamond ",
// "HatchStyleTotal ", each with its trailing blank. The first 53 entries are
// patterns (see HatchPatterns.h); the last one, the enumeration's count,
// draws no pattern.
const QStringList& overlayHatchStyleNames();
constexpr int kDefaultOverlayHatchStyle = 0;

// "Normal", "Outline Text", "Filled Outline", "Hatch Brush", "TextureBrush".
const QStringList& overlayTextStyleNames();
constexpr int kDefaultOverlayTextStyle = 0;

// "Regular", "Bold", "Italic", "BoldItalic", "Underline".
const QStringList& overlayFontStyleNames();
constexpr int kDefaultOverlayFontStyle = 0;

// "Arial", "Arial Black", "Comic Sans MS", "Times New Roman". A name that is
// not installed is drawn with the nearest installed family.
const QStringList& overlayFontNames();
constexpr int kDefaultOverlayFontName = 0;

// The even sizes 8, 10, ..., 60; entry 10 (28) is the default.
const QList<int>& overlayFontSizes();
constexpr int kDefaultOverlayFontSizeIndex = 10;

// Filter of the image and texture file dialogs.
QString overlayImageFileFilter();

// The text the window hands over: the trimmed first line, the characters 10
// and 13 in that order, the trimmed second line.
QString composeOverlayText(const QString& first, const QString& second);

// Splits an overlay text back into the lines to draw. Any of "\n\r", "\r\n",
// "\n" or "\r" ends a line; trailing empty lines are dropped, an empty first
// line keeps its place.
QStringList overlayTextLines(const QString& text);

} // namespace mirabend
