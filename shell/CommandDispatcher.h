#pragma once
// Dispatch of the main toolbar's button keys and the task pane's item keys.
// Keys are compared exactly (case-sensitive); an unknown key does nothing.
//
// Thread contract: UI thread only.

#include "shell/ShellContext.h"

#include <QHash>
#include <functional>

class QUrl;

namespace mirabend {

class PresentationModes;
class PaneSwitcher;
class PaneRotation;
class RecordingCommands;
class ExplorerBarItem;
class WaitCursor;

class CommandDispatcher {
public:
    CommandDispatcher(ShellContext& context, PresentationModes& modes, PaneSwitcher& panes,
                      PaneRotation& rotation, RecordingCommands& recording);

    void Toolbar1_ButtonClick(const QString& key);
    void ebDemo_ItemClick(const QString& key);
    void ebDemo_ItemClick(ExplorerBarItem* item);

    // Performs a key exactly as a click would: toolbar keys first, then task
    // pane keys. Returns false for a key neither knows.
    bool perform(const QString& key);

    bool isToolbarKey(const QString& key) const { return m_toolbar.contains(key); }
    bool isItemKey(const QString& key) const { return m_items.contains(key); }

    // How the system's "open" action is reached (tests replace it).
    std::function<bool(const QUrl&)> openUrl;
    // The about box (not built yet).
    std::function<void()> showAbout = [] {};
    // The screen resolution dialog (set by the wiring).
    std::function<void()> showResolution = [] {};

    void open();
    void exit();
    void help();

private:
    void rotate(const QString& key);

    ShellContext& m_ctx;
    PaneSwitcher* m_panes;
    PaneRotation* m_rotation;
    QHash<QString, std::function<void()>> m_toolbar;
    QHash<QString, std::function<void()>> m_items;
    WaitCursor* m_waitCursor = nullptr; // owned by the slide pane
};

} // namespace mirabend
