#pragma once
// What each of the eighteen tools shows: its name, its cursor file (loaded
// from the program folder), which option pickers it needs, and its key.
// Also the 28 colours of the palette.
//
// Thread contract: any thread (constant data).

#include <QRgb>
#include <QString>
#include <array>

namespace mirabend {

struct ToolInfo {
    const char* name;       // shown in the tool button's tooltip
    const char* cursorFile; // "\pick.cur"; nullptr: the default arrow
    bool widthPicker;       // `fraOptDot` visible while current
    bool fillPicker;        // `fraOptFill` visible while current
    char key;               // single-key shortcut on the canvas
};

const ToolInfo& toolInfo(int tool);

// The cursor file of a tool as designed ("\cross.cur" for any tool without
// one of its own); empty for the tools that show the default arrow.
QString toolCursorFile(int tool);

// The tool whose shortcut is `key` (a letter, any case), or -1.
int toolForKey(QChar key);

// The cursor the hand tool shows while it drags.
inline const char* const kGrabCursorFile = "\\handgrab.cur";
// The zoom tool's cursor while Shift is held: a click then zooms out.
inline const char* const kZoomOutCursorFile = "\\zoomout.cur";

// The palette's swatches, in order: two rows of fourteen.
constexpr int kPaletteSize = 28;
const std::array<QRgb, kPaletteSize>& paletteColors();

} // namespace mirabend
