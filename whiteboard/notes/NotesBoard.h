#pragma once
// The notes board: the rich-text box `textBoard_txt`, its formatting toolbar
// `tbEditor`, the font picker `FontComboControl1` and the timer `timEditor`
// that keeps the toggle buttons in step with the formatting at the caret.
// The board drives a text box it is given (the stage owns it); its tools
// live in `tools()`, which the task pane hosts.
//
// Thread contract: UI thread only.

#include "whiteboard/notes/PropertyBag.h"
#include "whiteboard/notes/rtf/RtfReader.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

class QAction;
class QTextEdit;
class QTimer;

namespace mirabend {

class FontComboControl;
class Prompts;

class NotesBoard : public QObject {
    Q_OBJECT
public:
    // The formatting operation's codes, in the order of the toolbar keys.
    enum FormatCode { Bold = 0, Italic, Underline, Bullets, AlignLeft, AlignCenter, AlignRight };
    static constexpr int kEditorIntervalMs = 200;
    static constexpr int kFontStep = 4;

    NotesBoard(QTextEdit* textBoard, Prompts& prompts, FontComboControl* picker = nullptr);
    ~NotesBoard() override;

    QTextEdit* textBoard_txt() const { return m_board; }
    // The toolbar: its buttons' actions carry the keys (two rows, so it
    // fits the task pane).
    QWidget* tbEditor() const { return m_toolbar; }
    FontComboControl* FontComboControl1() const { return m_picker; }
    QTimer* timEditor() const { return m_timer; }
    // The picker and the toolbar, laid out for the task pane.
    QWidget* tools() const { return m_tools; }
    // The toolbar button with this key (null for an unknown key).
    QAction* button(const QString& key) const;

    void tbEditor_ButtonClick(const QString& key);
    void applyFormat(int code);
    void timEditor_Timer();
    void FontComboControl1_Click();

    // The board's content under "Text" (plain) and "TextRTF" (rich).
    void WriteProperties(PropertyBag& bag) const;
    // "Text" first, then "TextRTF", so the rich text wins; a damaged RTF is
    // read as far as it goes and the result says what was left out.
    RtfReadResult ReadProperties(const PropertyBag& bag);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildToolbar();
    void toggleCharacter(int code);
    void toggleBullets();
    void stepFontSize(int points);
    void chooseTextColour();
    void clearText();
    bool selectionHas(int code) const;
    void followCaretFont();

    QTextEdit* m_board;
    Prompts& m_prompts;
    QPointer<QWidget> m_tools;
    FontComboControl* m_picker;
    QWidget* m_toolbar;
    QTimer* m_timer;
};

} // namespace mirabend
