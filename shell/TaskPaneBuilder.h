#pragma once
// `AddExpBar`: builds the task pane `ebDemo` — the recording group, the seven
// designed bars in their order, and the layout group — with their items and
// hosted panels.
//
// Thread contract: UI thread only.

class QWidget;

namespace mirabend {

class ExplorerBar;
class CameraSettingsPanel;
class Stage;

struct TaskPanePanels {
    CameraSettingsPanel* camera = nullptr;
    QWidget* titles = nullptr;
};

class TaskPaneBuilder {
public:
    static TaskPanePanels AddExpBar(ExplorerBar& bar, Stage& stage);
};

} // namespace mirabend
