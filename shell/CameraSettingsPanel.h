#pragma once
// The task pane's "Camera Settings" panel: device, format and standard lists,
// the aspect and TV-mute switches, apply and capture-test buttons, and the
// four corner labels that place the camera inset in Mixed mode.
//
// Thread contract: UI thread only.

#include <QWidget>
#include <array>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QPushButton;

namespace mirabend {

class CameraSettingsPanel : public QWidget {
    Q_OBJECT
public:
    static const QStringList& videoStandards();

    explicit CameraSettingsPanel(QWidget* parent = nullptr);

    QComboBox* cboDevice() const { return m_device; }
    QComboBox* cboVideoFormat() const { return m_format; }
    QComboBox* cbovideostand() const { return m_standard; }
    QCheckBox* chkaspectratio() const { return m_aspect; }
    QCheckBox* ChkTVMute() const { return m_tvMute; }
    QPushButton* Command1() const { return m_apply; }
    QPushButton* Command12() const { return m_captureTest; }
    // 0 Label12 top right, 1 Label13 bottom right, 2 Label15 top left, 3 Label16 bottom left.
    QLabel* cornerLabel(int corner) const;

    // Marks the chosen corner (RGB 99, 99, 200) and whitens the other three.
    void markCorner(int corner);

    // Fills a list with names and selects the first entry when there is one.
    static void fillList(QComboBox* list, const QStringList& names);
    void fillStandards();
    // Adds a labelled field under the lists (for settings a subsystem brings).
    void addRow(const QString& label, QWidget* field);

Q_SIGNALS:
    void cornerClicked(int corner);
    void applyClicked();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QComboBox* m_device;
    QComboBox* m_format;
    QComboBox* m_standard;
    QCheckBox* m_aspect;
    QCheckBox* m_tvMute;
    QPushButton* m_apply;
    QPushButton* m_captureTest;
    std::array<QLabel*, 4> m_corners{};
    QFormLayout* m_form = nullptr;
};

} // namespace mirabend
