#include "shell/KeyedToolbar.h"

#include "shell/ImageList.h"

#include <QAction>

namespace mirabend {

KeyedToolbar::KeyedToolbar(const QString& objectName, const QString& title, QWidget* parent)
    : QToolBar(title, parent)
{
    setObjectName(objectName);
    setMovable(false);
    setIconSize(QSize(28, 28));
    setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
}

int KeyedToolbar::addButton(const QString& key, const QString& caption, int imageIndex, const QString& toolTip,
                            const QKeySequence& shortcut)
{
    QAction* action = addAction(ImageList::icon(imageIndex), caption);
    action->setObjectName(objectName() + QStringLiteral("_") + key);
    if (!shortcut.isEmpty()) {
        action->setShortcut(shortcut);
        action->setShortcutContext(Qt::WindowShortcut);
    }
    const QString tip = toolTip.isEmpty() ? caption : toolTip;
    action->setToolTip(shortcut.isEmpty() ? tip
                                          : tip + QStringLiteral(" (") +
                                                shortcut.toString(QKeySequence::NativeText) + QStringLiteral(")"));
    m_buttons.push_back({key, action, imageIndex});
    connect(action, &QAction::triggered, this, [this, key] { Q_EMIT ButtonClick(key); });
    return buttonCount();
}

int KeyedToolbar::addSeparatorItem()
{
    m_buttons.push_back({QString(), addSeparator(), 0});
    return buttonCount();
}

const KeyedToolbar::Button* KeyedToolbar::at(int position) const
{
    if (position < 1 || position > buttonCount())
        return nullptr;
    return &m_buttons[static_cast<std::size_t>(position - 1)];
}

QAction* KeyedToolbar::button(int position) const
{
    const Button* b = at(position);
    return b ? b->action : nullptr;
}

QString KeyedToolbar::key(int position) const
{
    const Button* b = at(position);
    return b ? b->key : QString();
}

int KeyedToolbar::position(const QString& key) const
{
    for (int i = 0; i < buttonCount(); ++i) {
        if (!key.isEmpty() && m_buttons[static_cast<std::size_t>(i)].key == key)
            return i + 1;
    }
    return 0;
}

QString KeyedToolbar::caption(int position) const
{
    const Button* b = at(position);
    return b ? b->action->text() : QString();
}

void KeyedToolbar::setCaption(int position, const QString& caption)
{
    if (const Button* b = at(position))
        b->action->setText(caption);
}

int KeyedToolbar::image(int position) const
{
    const Button* b = at(position);
    return b ? b->image : 0;
}

void KeyedToolbar::setImage(int position, int imageIndex)
{
    if (position < 1 || position > buttonCount())
        return;
    Button& b = m_buttons[static_cast<std::size_t>(position - 1)];
    b.image = imageIndex;
    b.action->setIcon(ImageList::icon(imageIndex));
}

bool KeyedToolbar::isButtonEnabled(int position) const
{
    const Button* b = at(position);
    return b && b->action->isEnabled();
}

void KeyedToolbar::setButtonEnabled(int position, bool enabled)
{
    if (const Button* b = at(position))
        b->action->setEnabled(enabled);
}

bool KeyedToolbar::isButtonVisible(int position) const
{
    const Button* b = at(position);
    return b && b->action->isVisible();
}

void KeyedToolbar::setButtonVisible(int position, bool visible)
{
    if (const Button* b = at(position))
        b->action->setVisible(visible);
}

void KeyedToolbar::click(int position)
{
    if (const Button* b = at(position)) {
        if (b->action->isEnabled() && !b->key.isEmpty())
            b->action->trigger();
    }
}

} // namespace mirabend
