#pragma once
// A task pane of collapsible groups ("bars"), each with a caption, a key and
// either a list of clickable items or one hosted panel. Unlike QToolBox any
// number of groups may be open at once.
//
// Thread contract: UI thread only.

#include <QIcon>
#include <QScrollArea>
#include <QString>
#include <QPushButton>
#include <QToolButton>
#include <vector>

class QVBoxLayout;

namespace mirabend {

class ExplorerBarGroup;

// One clickable entry of a group. Its caption is shown as given, leading
// blanks included.
class ExplorerBarItem : public QPushButton {
    Q_OBJECT
public:
    ExplorerBarItem(ExplorerBarGroup* group, const QString& key, const QString& caption, const QIcon& icon);
    QString key() const { return m_key; }
    QString caption() const { return text(); }
    void setCaption(const QString& caption) { setText(caption); }
    ExplorerBarGroup* group() const { return m_group; }

private:
    ExplorerBarGroup* m_group;
    QString m_key;
};

class ExplorerBarGroup : public QWidget {
    Q_OBJECT
public:
    ExplorerBarGroup(const QString& caption, const QString& key, QWidget* parent = nullptr);

    QString key() const { return m_key; }
    QString caption() const;
    ExplorerBarItem* addItem(const QString& caption, const QString& key, const QIcon& icon = {});
    ExplorerBarItem* item(const QString& key) const;
    const std::vector<ExplorerBarItem*>& items() const { return m_items; }
    // Hosts a panel instead of (or below) the items; the group takes ownership.
    void setPanel(QWidget* panel);
    QWidget* panel() const { return m_panel; }

    bool isExpanded() const { return m_expanded; }
    void setExpanded(bool expanded);

Q_SIGNALS:
    void itemClicked(mirabend::ExplorerBarItem* item);
    void expandedChanged(bool expanded);

private:
    QString m_key;
    QToolButton* m_header;
    QWidget* m_body;
    QVBoxLayout* m_bodyLayout;
    QWidget* m_panel = nullptr;
    std::vector<ExplorerBarItem*> m_items;
    bool m_expanded = true;
};

class ExplorerBar : public QScrollArea {
    Q_OBJECT
public:
    explicit ExplorerBar(QWidget* parent = nullptr);

    ExplorerBarGroup* addGroup(const QString& caption, const QString& key);
    ExplorerBarGroup* group(const QString& key) const;
    const std::vector<ExplorerBarGroup*>& groups() const { return m_groups; }
    // The item with this key in the group with this key, or null.
    ExplorerBarItem* item(const QString& groupKey, const QString& itemKey) const;

    // Opens exactly the listed groups among `among`; groups not in `among`
    // keep their state.
    void showOnly(const QString& openKey, const QStringList& among);

    // Repaints every group (after item states changed).
    void redraw();

Q_SIGNALS:
    void itemClicked(mirabend::ExplorerBarItem* item);

private:
    QWidget* m_content;
    QVBoxLayout* m_layout;
    std::vector<ExplorerBarGroup*> m_groups;
};

} // namespace mirabend
