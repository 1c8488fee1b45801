#pragma once
// What the recorder stamps onto every captured frame: a date/time stamp, one
// or two lines of text in one of five text styles, and an image with a
// transparent colour. The options window fills one of these from its fields
// and hands it to the recorder, which hands it to its OverlayPainter.
//
// Indexes are kept as the options window's list indexes (date format, font
// style, text style, hatch style), so a value out of range can reach us; the
// painter reports it and falls back to the list's default.
//
// Thread contract: a plain value type; copy it freely between threads.

#include "util/core/Failure.h"

#include <QColor>
#include <QString>

namespace mirabend {

// Entries of the font style lists ("Regular", "Bold", ...), by list index.
enum class OverlayFontStyle { Regular = 0, Bold = 1, Italic = 2, BoldItalic = 3, Underline = 4 };

// Entries of the text style list ("Normal", "Outline Text", ...), by list index.
enum class OverlayTextStyle {
    Normal = 0,
    OutlineText = 1,
    FilledOutline = 2,
    HatchBrush = 3,
    TextureBrush = 4
};

struct OverlaySettings {
    // Date/time stamp.
    bool showDateTime = false;
    int dateFormat = 7; // index into overlayDateFormatNames()
    int dateLeft = 0;   // top-left corner of the stamp, frame pixels
    int dateTop = 0;
    QColor dateColor = QColor(0, 0, 0);
    QString dateFontName = QStringLiteral("Arial");
    int dateFontSize = 28; // points at 96 dpi
    int dateFontStyle = 0; // OverlayFontStyle as list index (cbodatefontstyle)

    // Text: first line, "\n\r", second line (see composeOverlayText()).
    bool showText = false;
    QString text;
    int textLeft = 0; // top-left corner of the first line, frame pixels
    int textTop = 0;
    QString textFontName = QStringLiteral("Arial");
    int textFontSize = 28;                           // points at 96 dpi
    int textFontStyle = 0;                           // OverlayFontStyle as list index (cbofontstyle)
    int textStyle = 0;                               // OverlayTextStyle as list index
    QColor textColor = QColor(0, 0, 0);              // "Normal"
    QColor outlineColor = QColor(0, 0, 0);           // "Outline Text", "Filled Outline": the border
    QColor outlineFillColor = QColor(255, 255, 255); // "Filled Outline": the inside
    int hatchStyle = 0;                              // index into overlayHatchStyleNames()
    QColor hatchForeColor = QColor(0, 0, 0);
    QColor hatchBackColor = QColor(255, 255, 255);
    QString textureFile; // "TextureBrush": image tiled from the frame's origin

    // Image stamp.
    bool showImage = false;
    QString imageFile;
    QColor imageTransparentColor = QColor(0, 0, 0); // pixels of exactly this colour are left out
    int imageLeft = 0;
    int imageTop = 0;
    int imageTransparency = 0; // 0 opaque .. 100 invisible; clamped

    friend bool operator==(const OverlaySettings& a, const OverlaySettings& b);
    friend bool operator!=(const OverlaySettings& a, const OverlaySettings& b) { return !(a == b); }
};

enum class OverlayError {
    None = 0,
    ImageFileMissing,    // the image stamp's file does not exist
    ImageFileUnreadable, // it exists but is no image we can decode
    TextureFileMissing,  // the texture brush's file does not exist (text falls back to textColor)
    TextureFileUnreadable,
    DateFormatOutOfRange, // index not in 0..18: the default format is used
    FontStyleOutOfRange,  // index not in 0..4: "Regular" is used
    FontSizeOutOfRange,   // not in 1..1000 points: clamped
    TextStyleOutOfRange,  // index not in 0..4: "Normal" is used
    HatchStyleOutOfRange, // not one of the 53 patterns: the inside is filled with hatchForeColor
};

using OverlayFailure = Failure<OverlayError>;

} // namespace mirabend
