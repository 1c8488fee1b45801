#pragma once
// The output-format chooser: lists what the converter can make from the
// captured PCM (tag and attributes) and returns the chosen entry. Cancelling
// chooses nothing, which the encoder answers with result 11.
//
// Thread contract: UI thread only.

#include "audio/core/FormatCatalog.h"

#include <QDialog>
#include <optional>

class QTreeWidget;

namespace mirabend {

class FormatChooserDialog : public QDialog {
    Q_OBJECT
public:
    FormatChooserDialog(const std::vector<FormatChoice>& formats, const QString& title, QWidget* parent = nullptr);
    // The highlighted entry; nothing when none is.
    std::optional<std::size_t> chosen() const;
    QTreeWidget* list() const { return m_list; }

private:
    QTreeWidget* m_list;
};

// The chooser the recorder window uses: a modal FormatChooserDialog.
class QtFormatChooser final : public FormatChooser {
public:
    explicit QtFormatChooser(QWidget* owner) : m_owner(owner) {}
    std::optional<std::size_t> choose(const std::vector<FormatChoice>& formats, const std::string& title) override;

private:
    QWidget* m_owner;
};

} // namespace mirabend
