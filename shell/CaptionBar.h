#pragma once
// The caption toolbar `Toolbar4` of the "Titles" bar: shows or hides the
// info bar and aligns both captions and both entry fields together.
//
// Thread contract: UI thread only.

#include "shell/KeyedToolbar.h"

namespace mirabend {

class Stage;
class TitlesPanel;

class CaptionBar : public KeyedToolbar {
    Q_OBJECT
public:
    CaptionBar(Stage& stage, TitlesPanel& titles, QWidget* parent = nullptr);

    // "show", "hide", "left", "center", "right"; any other key does nothing.
    void Toolbar4_ButtonClick(const QString& key);

    // A picture of text lines with this alignment (0 left, 1 right, 2 centre).
    static QIcon alignmentIcon(int alignment);

private:
    Stage& m_stage;
    TitlesPanel& m_titles;
};

} // namespace mirabend
