#include "util/ExplorerBar.h"

#include <QFrame>
#include <QStringList>
#include <QVBoxLayout>

namespace mirabend {

ExplorerBarItem::ExplorerBarItem(ExplorerBarGroup* group, const QString& key, const QString& caption,
                                 const QIcon& icon)
    : QPushButton(group)
    , m_group(group)
    , m_key(key)
{
    setText(caption);
    setIcon(icon);
    setFlat(true);
    setIconSize(QSize(16, 16));
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setStyleSheet(QStringLiteral("QPushButton { text-align: left; color: #1c3f78; padding: 3px 4px;"
                                 " border: none; background: transparent; }"
                                 "QPushButton:hover { text-decoration: underline; }"
                                 "QPushButton:disabled { color: #8a8f98; }"));
}

ExplorerBarGroup::ExplorerBarGroup(const QString& caption, const QString& key, QWidget* parent)
    : QWidget(parent)
    , m_key(key)
    , m_header(new QToolButton(this))
    , m_body(new QFrame(this))
    , m_bodyLayout(new QVBoxLayout(m_body))
{
    setObjectName(QStringLiteral("bar_") + key);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 6);
    layout->setSpacing(0);

    m_header->setText(caption);
    m_header->setCheckable(true);
    m_header->setChecked(true);
    m_header->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_header->setArrowType(Qt::DownArrow);
    m_header->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_header->setStyleSheet(QStringLiteral(
        "QToolButton { text-align: left; font-weight: bold; color: white; padding: 4px;"
        " border: none; border-top-left-radius: 5px; border-top-right-radius: 5px;"
        " background: qlineargradient(x1:0, y1:0, x2:1, y2:0, stop:0 #2f5da8, stop:1 #6f95d3); }"));
    connect(m_header, &QToolButton::clicked, this, [this](bool checked) { setExpanded(checked); });

    m_body->setObjectName(QStringLiteral("barBody"));
    m_body->setStyleSheet(QStringLiteral("QFrame#barBody { background: #f1f5fc; border: 1px solid #b9c9e6;"
                                         " border-top: none; }"));
    m_bodyLayout->setContentsMargins(6, 4, 6, 4);
    m_bodyLayout->setSpacing(1);
    layout->addWidget(m_header);
    layout->addWidget(m_body);
}

QString ExplorerBarGroup::caption() const { return m_header->text(); }

ExplorerBarItem* ExplorerBarGroup::addItem(const QString& caption, const QString& key, const QIcon& icon)
{
    auto* entry = new ExplorerBarItem(this, key, caption, icon);
    entry->setObjectName(QStringLiteral("item_") + m_key + QStringLiteral("_") + key);
    m_items.push_back(entry);
    const int at = m_panel ? m_bodyLayout->indexOf(m_panel) : m_bodyLayout->count();
    m_bodyLayout->insertWidget(at, entry);
    connect(entry, &QPushButton::clicked, this, [this, entry] { Q_EMIT itemClicked(entry); });
    return entry;
}

ExplorerBarItem* ExplorerBarGroup::item(const QString& key) const
{
    for (ExplorerBarItem* entry : m_items) {
        if (entry->key() == key)
            return entry;
    }
    return nullptr;
}

void ExplorerBarGroup::setPanel(QWidget* panel)
{
    if (m_panel)
        m_panel->deleteLater();
    m_panel = panel;
    if (panel)
        m_bodyLayout->addWidget(panel);
}

void ExplorerBarGroup::setExpanded(bool expanded)
{
    if (m_expanded == expanded)
        return;
    m_expanded = expanded;
    m_header->setChecked(expanded);
    m_header->setArrowType(expanded ? Qt::DownArrow : Qt::RightArrow);
    m_body->setVisible(expanded);
    Q_EMIT expandedChanged(expanded);
}

ExplorerBar::ExplorerBar(QWidget* parent)
    : QScrollArea(parent)
    , m_content(new QWidget(this))
    , m_layout(new QVBoxLayout(m_content))
{
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    m_content->setObjectName(QStringLiteral("explorerBarContent"));
    m_content->setStyleSheet(QStringLiteral("QWidget#explorerBarContent { background: qlineargradient("
                                            "x1:0, y1:0, x2:0, y2:1, stop:0 #7a9fd9, stop:1 #5678b8); }"));
    m_layout->setContentsMargins(10, 10, 10, 10);
    m_layout->setSpacing(4);
    m_layout->addStretch(1);
    setWidget(m_content);
}

ExplorerBarGroup* ExplorerBar::addGroup(const QString& caption, const QString& key)
{
    auto* bar = new ExplorerBarGroup(caption, key, m_content);
    m_groups.push_back(bar);
    m_layout->insertWidget(m_layout->count() - 1, bar);
    connect(bar, &ExplorerBarGroup::itemClicked, this, &ExplorerBar::itemClicked);
    return bar;
}

ExplorerBarGroup* ExplorerBar::group(const QString& key) const
{
    for (ExplorerBarGroup* bar : m_groups) {
        if (bar->key() == key)
            return bar;
    }
    return nullptr;
}

ExplorerBarItem* ExplorerBar::item(const QString& groupKey, const QString& itemKey) const
{
    ExplorerBarGroup* bar = group(groupKey);
    return bar ? bar->item(itemKey) : nullptr;
}

void ExplorerBar::showOnly(const QString& openKey, const QStringList& among)
{
    for (const QString& key : among) {
        if (ExplorerBarGroup* bar = group(key))
            bar->setExpanded(key == openKey);
    }
}

void ExplorerBar::redraw()
{
    m_content->update();
    for (ExplorerBarGroup* bar : m_groups)
        bar->update();
}

} // namespace mirabend
