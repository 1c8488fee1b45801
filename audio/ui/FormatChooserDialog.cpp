#include "audio/ui/FormatChooserDialog.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace mirabend {

FormatChooserDialog::FormatChooserDialog(const std::vector<FormatChoice>& formats, const QString& title,
                                         QWidget* parent)
    : QDialog(parent)
    , m_list(new QTreeWidget(this))
{
    setObjectName("frmFormatChooser");
    setWindowTitle(title);
    auto* layout = new QVBoxLayout(this);
    auto* hint = new QLabel(tr("Choose the format the recording is written in:"), this);
    layout->addWidget(hint);

    m_list->setObjectName("lstFormats");
    m_list->setColumnCount(2);
    m_list->setHeaderLabels({tr("Format"), tr("Attributes")});
    m_list->setRootIsDecorated(false);
    m_list->setAlternatingRowColors(true);
    m_list->setUniformRowHeights(true);
    for (const FormatChoice& format : formats) {
        auto* item = new QTreeWidgetItem(m_list);
        item->setText(0, QString::fromStdString(format.tagName));
        item->setText(1, QString::fromStdString(format.description));
    }
    m_list->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    if (!formats.empty())
        m_list->setCurrentItem(m_list->topLevelItem(0));
    layout->addWidget(m_list);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setEnabled(!formats.empty());
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, &QDialog::accept);
    layout->addWidget(buttons);
    resize(420, 360);
}

std::optional<std::size_t> FormatChooserDialog::chosen() const
{
    const int row = m_list->indexOfTopLevelItem(m_list->currentItem());
    if (row < 0)
        return std::nullopt;
    return static_cast<std::size_t>(row);
}

std::optional<std::size_t> QtFormatChooser::choose(const std::vector<FormatChoice>& formats,
                                                   const std::string& title)
{
    FormatChooserDialog dialog(formats, QString::fromStdString(title), m_owner);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.chosen();
}

} // namespace mirabend
