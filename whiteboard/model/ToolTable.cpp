#include "whiteboard/model/ToolTable.h"

#include "whiteboard/model/EditorState.h"

namespace mirabend {

namespace {

const ToolInfo kTools[ToolCount] = {
    {"Selection", nullptr, false, false, 'S'},        {"Colour picker", "\\pick.cur", false, false, 'I'},
    {"Eraser", "\\eraser.cur", true, false, 'E'},     {"Flood fill", "\\fill.cur", false, false, 'F'},
    {"Pencil", "\\draw.cur", true, false, 'P'},       {"Line", "\\cross.cur", true, false, 'L'},
    {"Rectangle", "\\cross.cur", true, true, 'R'},    {"Ellipse", "\\cross.cur", true, true, 'O'},
    {"Text", "\\text.cur", false, false, 'T'},        {"Arrow", "\\cross.cur", true, false, 'A'},
    {"Airbrush", "\\airbrush.cur", true, false, 'Y'}, {"Rounded rectangle", "\\cross.cur", true, true, 'U'},
    {"Polygon", "\\cross.cur", true, true, 'G'},      {"Bezier curve", nullptr, true, false, 'B'},
    {"Filter", "\\filter.cur", true, false, 'X'},     {"Zoom", "\\zoom.cur", false, false, 'Z'},
    {"Brush", "\\brush.cur", true, false, 'K'},       {"Hand", "\\handflat.cur", false, false, 'H'},
};

} // namespace

const ToolInfo& toolInfo(int tool) {
    return kTools[(tool >= 0 && tool < ToolCount) ? tool : ToolLine];
}

QString toolCursorFile(int tool) {
    if (tool == ToolSelect || tool == ToolBezier)
        return {};
    if (tool < 0 || tool >= ToolCount || !kTools[tool].cursorFile)
        return QStringLiteral("\\cross.cur");
    return QString::fromLatin1(kTools[tool].cursorFile);
}

int toolForKey(QChar key) {
    const QChar upper = key.toUpper();
    for (int i = 0; i < ToolCount; ++i) {
        if (upper == QLatin1Char(kTools[i].key))
            return i;
    }
    return -1;
}

const std::array<QRgb, kPaletteSize>& paletteColors() {
    // The classic paint palette: dark tones on the top row, light below.
    static const std::array<QRgb, kPaletteSize> colors = {
        qRgb(0, 0, 0),       qRgb(128, 128, 128), qRgb(128, 0, 0),     qRgb(128, 128, 0),
        qRgb(0, 128, 0),     qRgb(0, 128, 128),   qRgb(0, 0, 128),     qRgb(128, 0, 128),
        qRgb(128, 128, 64),  qRgb(0, 64, 64),     qRgb(0, 128, 255),   qRgb(0, 64, 128),
        qRgb(128, 0, 255),   qRgb(128, 64, 0),    qRgb(255, 255, 255), qRgb(192, 192, 192),
        qRgb(255, 0, 0),     qRgb(255, 255, 0),   qRgb(0, 255, 0),     qRgb(0, 255, 255),
        qRgb(0, 0, 255),     qRgb(255, 0, 255),   qRgb(255, 255, 128), qRgb(0, 255, 128),
        qRgb(128, 255, 255), qRgb(128, 128, 255), qRgb(255, 0, 128),   qRgb(255, 128, 64),
    };
    return colors;
}

} // namespace mirabend
