#include "shell/CaptionBar.h"

#include "shell/Stage.h"
#include "shell/TitlesPanel.h"

#include <QPainter>
#include <QPixmap>
#include <QToolButton>

namespace mirabend {

CaptionBar::CaptionBar(Stage& stage, TitlesPanel& titles, QWidget* parent)
    : KeyedToolbar(QStringLiteral("Toolbar4"), tr("Captions"), parent)
    , m_stage(stage)
    , m_titles(titles) {
    // Words for showing and hiding, pictures for the alignments: all five
    // fit the task pane's width.
    setToolButtonStyle(Qt::ToolButtonIconOnly);
    setIconSize(QSize(16, 16));
    addButton(QStringLiteral("show"), tr("Show"), -1, tr("Show the caption bar on the stage"));
    addButton(QStringLiteral("hide"), tr("Hide"), -1, tr("Hide the caption bar"));
    addSeparatorItem();
    addButton(QStringLiteral("left"), tr("Left"), -1, tr("Align the captions left"));
    addButton(QStringLiteral("center"), tr("Center"), -1, tr("Centre the captions"));
    addButton(QStringLiteral("right"), tr("Right"), -1, tr("Align the captions right"));
    const int alignments[] = {0, 2, 1};
    for (int i = 0; i < 3; ++i)
        button(position(
                   QStringList{QStringLiteral("left"), QStringLiteral("center"), QStringLiteral("right")}[i]))
            ->setIcon(alignmentIcon(alignments[i]));
    // Buttons without a picture show their caption.
    for (const char* key : {"show", "hide"}) {
        if (QWidget* widget = widgetForAction(button(position(QLatin1String(key)))))
            static_cast<QToolButton*>(widget)->setToolButtonStyle(Qt::ToolButtonTextOnly);
    }
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

QIcon CaptionBar::alignmentIcon(int alignment) {
    QPixmap picture(16, 16);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setPen(QPen(QColor(0x1f, 0x3b, 0x6f), 2));
    const int lengths[] = {14, 9, 12, 7};
    for (int line = 0; line < 4; ++line) {
        const int length = lengths[line];
        const int left = alignment == 0 ? 1 : alignment == 1 ? 15 - length : (16 - length) / 2;
        painter.drawLine(left, 2 + line * 4, left + length - 1, 2 + line * 4);
    }
    return QIcon(picture);
}

} // namespace mirabend
