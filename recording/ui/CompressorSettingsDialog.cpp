#include "recording/ui/CompressorSettingsDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QSpinBox>
#include <QVBoxLayout>

namespace mirabend {

CompressorSettingsDialog::CompressorSettingsDialog(const QString& compressor,
                                                   std::vector<CompressorSetting> settings,
                                                   const CompressorSettingValues& current, QWidget* parent)
    : QDialog(parent)
    , m_settings(std::move(settings)) {
    setObjectName(QStringLiteral("compressorSettings"));
    setWindowTitle(QStringLiteral("%1 settings").arg(compressor));
    auto* form = new QFormLayout;
    for (const CompressorSetting& setting : m_settings) {
        const auto found = current.find(setting.key);
        const int value = found == current.end() ? setting.value : found->second;
        const QString name = QStringLiteral("setting_") + QString::fromStdString(setting.key);
        QWidget* field = nullptr;
        if (!setting.choices.isEmpty()) {
            auto* box = new QComboBox(this);
            box->addItems(setting.choices);
            box->setCurrentIndex(qBound(0, value, int(setting.choices.size()) - 1));
            field = box;
        } else {
            auto* spin = new QSpinBox(this);
            spin->setRange(setting.minimum, setting.maximum);
            if (!setting.automatic.isEmpty())
                spin->setSpecialValueText(setting.automatic);
            spin->setValue(value);
            field = spin;
        }
        field->setObjectName(name);
        form->addRow(setting.label + QLatin1Char(':'), field);
        m_fields.push_back(field);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

CompressorSettingValues CompressorSettingsDialog::values() const {
    CompressorSettingValues out;
    for (std::size_t i = 0; i < m_settings.size(); ++i) {
        if (const auto* box = qobject_cast<const QComboBox*>(m_fields[i]))
            out[m_settings[i].key] = box->currentIndex();
        else if (const auto* spin = qobject_cast<const QSpinBox*>(m_fields[i]))
            out[m_settings[i].key] = spin->value();
    }
    return out;
}

} // namespace mirabend
