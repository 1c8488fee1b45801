#pragma once
// The whiteboard as the main window hosts it: the one editor (state,
// surface, history), the canvas `picPaint` with its twin `picProg`, the text
// box, and the Draw bar's panel. The main window owns it (as a child
// object); the wiring puts the canvas into `parentPic` and the panel into
// the task pane's "draw" bar.
//
// Thread contract: UI thread only.

#include "whiteboard/model/CanvasEditor.h"
#include "whiteboard/ui/CanvasView.h"
#include "whiteboard/ui/CursorLibrary.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

namespace mirabend {

class CanvasTextBox;
class DrawPanel;
class Prompts;

// One entry of the Draw bar's filter list.
struct FilterChoice {
    int number;
    QString name;
    QString toolTip;
};

class Whiteboard : public QObject {
    Q_OBJECT
public:
    explicit Whiteboard(Prompts& prompts, QObject* parent = nullptr);
    ~Whiteboard() override;

    CanvasEditor& editor() { return *m_editor; }
    CanvasView* picPaint() const { return m_picPaint; }
    CanvasView* picProg() const { return m_picProg; }
    CanvasTextBox* textBox() const { return m_textBox; }
    DrawPanel* panel() const { return m_panel; }

    // Puts the canvas (filling the pane) and its hidden twin into `parentPic`.
    void attachCanvas(QWidget* parentPic);
    // The Draw bar's content; the caller's bar takes ownership.
    QWidget* createDrawPanel();
    // The filter operation and its list, when the filters are built in.
    void setFilters(FilterOperation operation, std::vector<FilterChoice> choices);
    const std::vector<FilterChoice>& filterChoices() const { return m_filters; }

    // `optTools`: the press chooses the tool, the click sets pickers,
    // cursor and focus. chooseTool does both (keys, tests).
    void optTools_MouseDown(int tool);
    void optTools_Click(int tool);
    void chooseTool(int tool);
    void lblForeColor_DblClick();
    void lblFillColor_DblClick();

    // Board commands.
    void undo();
    void redo();
    void paste();
    void clearBoard();
    void saveBoardAs();
    void chooseTextFont(const QFont& font);

    // Pages: several boards, each with its own history.
    int pageCount() const { return static_cast<int>(m_pages.size()); }
    int currentPage() const { return m_page; }
    void nextPage();
    void previousPage();

    // Makes the whiteboard pane visible when it is hidden (set by the wiring).
    std::function<void()> revealPane;

Q_SIGNALS:
    // Tool, colours, view or page changed: the Draw bar follows.
    void stateChanged();

protected:
    // The whiteboard pane coming into view hands the keys to the canvas, so
    // tool keys work at once after "draw".
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void onCanvasChanged(const QRect& area);
    void onStateChanged();
    void switchToPage(int page);

    Prompts& m_prompts;
    std::unique_ptr<CanvasEditor> m_editor;
    CursorLibrary m_cursors;
    QPointer<CanvasView> m_picPaint;
    QPointer<CanvasView> m_picProg;
    CanvasTextBox* m_textBox = nullptr;
    DrawPanel* m_panel = nullptr;
    std::vector<FilterChoice> m_filters;
    // Each page keeps its picture and its history; the current one lives in
    // the editor.
    struct Page {
        QImage image;
        ImageHistory history;
    };
    std::vector<Page> m_pages;
    int m_page = 0;
};

} // namespace mirabend
