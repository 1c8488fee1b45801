#pragma once
// The font picker: every font family installed, sorted by name, in one combo
// box with the same small picture beside each; "Times New Roman" is chosen at
// start when it is installed, else the first family. The owner reads
// `curfont` when `Click` tells it the user picked an entry.
//
// Thread contract: UI thread only.

#include <QStringList>
#include <QWidget>

class QComboBox;
class QListWidget;

namespace mirabend {

class FontComboControl : public QWidget {
    Q_OBJECT
public:
    // The families of the font database.
    explicit FontComboControl(QWidget* parent = nullptr);
    // The given families, as if they were the installed ones.
    FontComboControl(const QStringList& screenFonts, QWidget* parent);

    // The chosen font: the text of the combo's selected item.
    QString curfont() const;
    // Shows `name` in the combo's edit field without searching the list.
    void TheFont(const QString& name);

    QListWidget* List1() const { return m_list; }
    QComboBox* FontCombo() const { return m_combo; }
    QSize sizeHint() const override;

Q_SIGNALS:
    // The user picked an entry (the control's only event).
    void Click();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void UserControl_Initialize(const QStringList& screenFonts);

    QListWidget* m_list;
    QComboBox* m_combo;
};

} // namespace mirabend
