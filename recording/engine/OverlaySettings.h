#pragma once
// The stamps the recorder draws onto every frame: date/time, a text of one
// or two lines in one of five styles, and an image with a transparent colour.
// The options window changes them at any time; the capture thread takes a
// snapshot for each frame.
//
// Thread contract: OverlayBoard::set()/update() from the UI thread,
// snapshot() from the capture thread.

#include <QRgb>
#include <QString>
#include <mutex>

namespace mirabend {

struct OverlaySettings {
    bool showDateTime = false;
    int dateFormatIndex = 7; // "mm/dd/yyyy hh:mm:ss"
    int dateLeft = 0;
    int dateTop = 0;
    QRgb dateColor = 0xffffffu;
    QString dateFontName = QStringLiteral("Arial");
    int dateFontSize = 28;
    int dateFontStyle = 0; // Regular, Bold, Italic, BoldItalic, Underline

    bool showText = false;
    QString text; // line 1, "\n\r" as given, line 2
    int textLeft = 0;
    int textTop = 0;
    QString textFontName = QStringLiteral("Arial");
    int textFontSize = 28;
    int textStyle = 0; // Normal, Outline Text, Filled Outline, Hatch Brush, TextureBrush
    QRgb textColor = 0xffffffu;
    QRgb outlineColor = 0x000000u;
    QRgb outlineFill = 0xffffffu;
    int hatchIndex = 0;
    QRgb hatchFore = 0x000000u;
    QRgb hatchBack = 0xffffffu;
    QString textureFile;

    bool showImage = false;
    QString imageFile;
    QRgb imageTransparent = 0x000000u;
    int imageLeft = 0;
    int imageTop = 0;
    int imageTransparency = 0;

    bool anyShown() const { return showDateTime || showText || showImage; }
};

class OverlayBoard {
public:
    template <typename Change>
    void update(Change change)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        change(m_settings);
    }
    OverlaySettings snapshot() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_settings;
    }

private:
    mutable std::mutex m_mutex;
    OverlaySettings m_settings;
};

} // namespace mirabend
