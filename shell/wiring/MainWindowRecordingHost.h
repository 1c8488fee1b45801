#pragma once
// The main window as the recording session sees it: status panels, the
// elapsed-time label, the hidden state fields, the notice box, toolbar button
// 12, the task pane's "record" group, the top-most band and the stage that is
// recorded.
//
// Thread contract: UI thread only.

#include "recording/ui/RecordingHost.h"

namespace mirabend {

class Mirabend_frm;

class MainWindowRecordingHost final : public RecordingHost {
public:
    explicit MainWindowRecordingHost(Mirabend_frm& window) : m_window(window) {}

    QString statusPanel(int index) const override;
    void setStatusPanel(int index, const QString& text) override;
    void setElapsedLabel(const QString& text) override;
    QString recordingState() const override;
    void setRecordingState(const QString& text) override;
    QString Text4() const override;
    void setText4(const QString& text) override;
    void setNoticeVisible(bool visible) override;
    void setToolbarButtonEnabled(int position, bool enabled) override;
    void setRecordItemEnabled(const QString& itemKey, bool enabled) override;
    void redrawTaskPane() override;
    void setTopMost(bool topMost) override;
    int mainWindowWidth() const override;
    int mainWindowHeight() const override;
    std::uint32_t stageWindowHandle() const override;
    int stageWidth() const override;
    int stageHeight() const override;

private:
    Mirabend_frm& m_window;
};

} // namespace mirabend
