#pragma once
// The settings page of a video compressor, opened by the "Setting" button:
// one row per setting the compressor really has (quality, speed, bit rate,
// key frames), filled with the values in force.
//
// Thread contract: UI thread only.

#include "recording/engine/CompressorCatalog.h"

#include <QDialog>

namespace mirabend {

class CompressorSettingsDialog : public QDialog {
    Q_OBJECT
public:
    CompressorSettingsDialog(const QString& compressor, std::vector<CompressorSetting> settings,
                             const CompressorSettingValues& current, QWidget* parent = nullptr);

    // What the rows show now, by setting key.
    CompressorSettingValues values() const;

private:
    std::vector<CompressorSetting> m_settings;
    std::vector<QWidget*> m_fields; // a QSpinBox or a QComboBox per setting
};

} // namespace mirabend
