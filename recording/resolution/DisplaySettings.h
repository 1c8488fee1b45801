#pragma once
// The display modes of the primary output: list them in the order the output
// gives them, and change to one of them. The resolution dialog works on this
// interface; XRandrDisplaySettings is the real one.
//
// Thread contract: one thread at a time (the UI thread in the program).

#include <string>

namespace mirabend {

struct DisplayMode {
    int width = 0;
    int height = 0;
};

// The outcome of a change, numbered as display drivers report it.
enum class DisplayChange {
    Successful = 0,
    Restart = 1,  // the change needs the computer restarted
    Failed = -1,  // the display refused it
    BadMode = -2, // the display does not have that size
};

// How a change is made: for this session only, or also stored as the
// display's setting.
enum class DisplayChangeFlags { Temporary = 4, Store = 1 };

class DisplaySettings {
public:
    virtual ~DisplaySettings() = default;
    // Mode `modeNumber` of the primary output (0 is the first it lists, not
    // the current one); false past the last mode or without a display.
    virtual bool EnumDisplaySettings(int modeNumber, DisplayMode& mode) = 0;
    // Switches the primary output to a mode of the requested size.
    virtual DisplayChange ChangeDisplaySettings(const DisplayMode& mode, DisplayChangeFlags flags) = 0;
    // What went wrong in the last call that did not succeed.
    virtual std::string lastDetail() const = 0;
};

} // namespace mirabend
