#pragma once
// The Draw bar of the task pane: the tool palette, the width and fill
// pickers, line and fill styles, the colour palette, the filter list, the
// canvas text font, and the board commands (undo, redo, clear, save, pages).
//
// Thread contract: UI thread only.

#include <QWidget>

class QComboBox;
class QFontComboBox;
class QLabel;
class QPushButton;
class QSpinBox;
class QToolButton;

namespace mirabend {

class ColorPalette;
class OptionPicker;
class ToolPalette;
class Whiteboard;

class DrawPanel : public QWidget {
    Q_OBJECT
public:
    explicit DrawPanel(Whiteboard& board, QWidget* parent = nullptr);

    ToolPalette* optTools() const { return m_tools; }
    OptionPicker* fraOptDot() const { return m_widths; }
    OptionPicker* fraOptFill() const { return m_fills; }
    ColorPalette* lblColor() const { return m_palette; }
    QComboBox* lineStyles() const { return m_lineStyle; }
    QComboBox* fillStyles() const { return m_fillStyle; }
    QComboBox* filters() const { return m_filter; }

public Q_SLOTS:
    // Shows the editor's state: tool, pickers, colours, styles, pages.
    void refresh();

private:
    QWidget* buildStyles();
    QWidget* buildFilterAndFont();
    QWidget* buildCommands();

    Whiteboard& m_board;
    ToolPalette* m_tools;
    OptionPicker* m_widths;
    OptionPicker* m_fills;
    ColorPalette* m_palette;
    QComboBox* m_lineStyle = nullptr;
    QComboBox* m_fillStyle = nullptr;
    QComboBox* m_filter = nullptr;
    QToolButton* m_applyFilter = nullptr;
    QFontComboBox* m_font = nullptr;
    QSpinBox* m_fontSize = nullptr;
    QLabel* m_pageLabel = nullptr;
    QToolButton* m_previousPage = nullptr;
    int m_filterCount = -1;
};

} // namespace mirabend
