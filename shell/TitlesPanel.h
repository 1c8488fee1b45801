#pragma once
// The task pane's "Titles" panel: the title and presenter fields, copied to
// the info bar's captions on every change, and the caption alignment.
//
// Thread contract: UI thread only.

#include <QWidget>

class QLineEdit;

namespace mirabend {

class Stage;
class CaptionBar;

class TitlesPanel : public QWidget {
    Q_OBJECT
public:
    explicit TitlesPanel(Stage& stage, QWidget* parent = nullptr);
    QLineEdit* title_txt() const { return m_title; }
    QLineEdit* presenter_txt() const { return m_presenter; }
    CaptionBar* Toolbar4() const { return m_toolbar4; }

    // Alignment values of a text field: 0 left, 1 right, 2 centre.
    void applyAlignment(int alignment);

private:
    void refreshCaptions();
    Stage& m_stage;
    QLineEdit* m_title;
    QLineEdit* m_presenter;
    CaptionBar* m_toolbar4 = nullptr;
};

} // namespace mirabend
