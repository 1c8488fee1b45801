#pragma once
// The pane switches "slides", "text", "draw", "web" (visibility per mode) and
// "cam" (the camera at full size, which ends in Single mode). After each, the
// task pane keeps only the chosen pane's bar open.
//
// Thread contract: UI thread only.

#include "shell/ShellContext.h"

namespace mirabend {

class PresentationModes;

class PaneSwitcher {
public:
    PaneSwitcher(ShellContext& context, PresentationModes& modes) : m_ctx(context), m_modes(modes) {}

    // "slides", "text", "draw" or "web"; any other key does nothing.
    void showPane(const QString& key);
    // "cam".
    void showCameraFullSize();
    // Opens the bar keyed `barKey` and collapses the other pane bars.
    void updateTaskPane(const QString& barKey);

    static const QStringList& paneBarKeys();

private:
    ShellContext& m_ctx;
    PresentationModes& m_modes;
};

} // namespace mirabend
