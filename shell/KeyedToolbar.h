#pragma once
// A toolbar whose buttons carry command keys and are addressed by 1-based
// position, separators counted, as the command code expects ("button 12 is
// the record button"). A click reports the button's key.
//
// Thread contract: UI thread only.

#include <QToolBar>
#include <vector>

class QAction;

namespace mirabend {

class KeyedToolbar : public QToolBar {
    Q_OBJECT
public:
    explicit KeyedToolbar(const QString& objectName, const QString& title, QWidget* parent = nullptr);

    // Appends a button; returns its position.
    int addButton(const QString& key, const QString& caption, int imageIndex, const QString& toolTip = {},
                  const QKeySequence& shortcut = {});
    int addSeparatorItem();

    int buttonCount() const { return static_cast<int>(m_buttons.size()); }
    QAction* button(int position) const;
    QString key(int position) const;
    int position(const QString& key) const; // 0 when absent

    QString caption(int position) const;
    void setCaption(int position, const QString& caption);
    int image(int position) const;
    void setImage(int position, int imageIndex);
    bool isButtonEnabled(int position) const;
    void setButtonEnabled(int position, bool enabled);
    bool isButtonVisible(int position) const;
    void setButtonVisible(int position, bool visible);

    // Clicks the button as the user would (only when it is enabled).
    void click(int position);

Q_SIGNALS:
    void ButtonClick(const QString& key);

private:
    struct Button {
        QString key;
        QAction* action = nullptr;
        int image = 0;
    };
    const Button* at(int position) const;
    std::vector<Button> m_buttons;
};

} // namespace mirabend
