#pragma once
// The tool palette `optTools`: eighteen tool buttons, index = tool number,
// each with its key in the tooltip. A press finishes the pending shape and
// chooses the tool; the click that follows sets up pickers, cursor and focus.
//
// Thread contract: UI thread only.

#include <QWidget>
#include <vector>

class QToolButton;

namespace mirabend {

class ToolPalette : public QWidget {
    Q_OBJECT
public:
    explicit ToolPalette(QWidget* parent = nullptr);

    QToolButton* button(int tool) const { return m_buttons[static_cast<std::size_t>(tool)]; }
    // Shows `tool` as the chosen one.
    void showTool(int tool);

Q_SIGNALS:
    void toolPressed(int tool);
    void toolClicked(int tool);
    void hovered();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::vector<QToolButton*> m_buttons;
};

} // namespace mirabend
