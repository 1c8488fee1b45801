#include "shell/CaptionBar.h"

#include "shell/Stage.h"
#include "shell/TitlesPanel.h"

namespace mirabend {

CaptionBar::CaptionBar(Stage& stage, TitlesPanel& titles, QWidget* parent)
    : KeyedToolbar(QStringLiteral("Toolbar4"), tr("Captions"), parent)
    , m_stage(stage)
    , m_titles(titles) {
    setToolButtonStyle(Qt::ToolButtonTextOnly);
    addButton(QStringLiteral("show"), tr("Show"), -1, tr("Show the caption bar on the stage"));
    addButton(QStringLiteral("hide"), tr("Hide"), -1, tr("Hide the caption bar"));
    addSeparatorItem();
    addButton(QStringLiteral("left"), tr("Left"), -1, tr("Align the captions left"));
    addButton(QStringLiteral("center"), tr("Center"), -1, tr("Centre the captions"));
    addButton(QStringLiteral("right"), tr("Right"), -1, tr("Align the captions right"));
    connect(this, &KeyedToolbar::ButtonClick, this, &CaptionBar::Toolbar4_ButtonClick);
}

void CaptionBar::Toolbar4_ButtonClick(const QString& key) {
    // Text field alignment values: 0 left, 1 right, 2 centre.
    if (key == QLatin1String("show"))
        m_stage.infobar_pic()->show();
    else if (key == QLatin1String("hide"))
        m_stage.infobar_pic()->hide();
    else if (key == QLatin1String("left"))
        m_titles.applyAlignment(0);
    else if (key == QLatin1String("center"))
        m_titles.applyAlignment(2);
    else if (key == QLatin1String("right"))
        m_titles.applyAlignment(1);
}

} // namespace mirabend
