#include "recording/overlay/OverlaySettings.h"

#include <tuple>

namespace mirabend {

namespace {

auto fields(const OverlaySettings& s) {
    return std::tie(s.showDateTime, s.dateFormat, s.dateLeft, s.dateTop, s.dateColor, s.dateFontName,
                    s.dateFontSize, s.dateFontStyle, s.showText, s.text, s.textLeft, s.textTop,
                    s.textFontName, s.textFontSize, s.textFontStyle, s.textStyle, s.textColor, s.outlineColor,
                    s.outlineFillColor, s.hatchStyle, s.hatchForeColor, s.hatchBackColor, s.textureFile,
                    s.showImage, s.imageFile, s.imageTransparentColor, s.imageLeft, s.imageTop,
                    s.imageTransparency);
}

} // namespace

bool operator==(const OverlaySettings& a, const OverlaySettings& b) {
    return fields(a) == fields(b);
}

} // namespace mirabend
