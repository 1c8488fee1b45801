#pragma once
// Display modes through the X Resize and Rotate extension: the primary output
// (or the first connected one that shows a picture), its modes in the order
// it lists them, and a change of its mode with the screen resized to fit.
// X keeps a change for the session; "Store" applies it again, as there is no
// setting to write.
//
// Thread contract: one thread at a time; the backend has its own display
// connection.

#include "recording/resolution/DisplaySettings.h"

#include <memory>

typedef struct _XDisplay Display;

namespace mirabend {

class XRandrDisplaySettings final : public DisplaySettings {
public:
    // `displayName` empty: $DISPLAY.
    explicit XRandrDisplaySettings(const std::string& displayName = {});
    ~XRandrDisplaySettings() override;

    bool isOpen() const { return m_display != nullptr; }
    bool EnumDisplaySettings(int modeNumber, DisplayMode& mode) override;
    DisplayChange ChangeDisplaySettings(const DisplayMode& mode, DisplayChangeFlags flags) override;
    std::string lastDetail() const override { return m_detail; }
    // The size of the screen now.
    DisplayMode currentSize() const;

private:
    struct DisplayCloser {
        void operator()(Display* display) const;
    };
    std::unique_ptr<Display, DisplayCloser> m_display;
    std::string m_detail;
};

} // namespace mirabend
