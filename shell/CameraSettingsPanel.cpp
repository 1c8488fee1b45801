#include "shell/CameraSettingsPanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace mirabend {

const QStringList& CameraSettingsPanel::videoStandards()
{
    static const QStringList standards = {
        QStringLiteral("Digital sensor"),
        QStringLiteral("NTSC (M) standard, 7.5 IRE black"),
        QStringLiteral("NTSC (M) standard, 0 IRE black (Japan)"),
        QStringLiteral("NTSC-433"),
        QStringLiteral("PAL -B standard"),
        QStringLiteral("PAL (D) standard"),
        QStringLiteral("PAL (H) standard"),
        QStringLiteral("PAL (I) standard"),
        QStringLiteral("PAL (M) standard"),
        QStringLiteral("PAL (N) standard"),
        QStringLiteral("PAL-60 standard"),
        QStringLiteral("SECAM (B) standard"),
        QStringLiteral("SECAM (D) standard"),
        QStringLiteral("SECAM (G) standard"),
        QStringLiteral("SECAM (H) standard"),
        QStringLiteral("SECAM (K) standard"),
        QStringLiteral("SECAM (K1) standard"),
        QStringLiteral("SECAM (L) standard"),
        QStringLiteral("SECAM (L1) standard"),
        QStringLiteral("Combination (N) PAL standard (Argentina) "),
    };
    return standards;
}

CameraSettingsPanel::CameraSettingsPanel(QWidget* parent)
    : QWidget(parent)
    , m_device(new QComboBox(this))
    , m_format(new QComboBox(this))
    , m_standard(new QComboBox(this))
    , m_aspect(new QCheckBox(tr("Keep aspect ratio"), this))
    , m_tvMute(new QCheckBox(tr("Mute TV sound"), this))
    , m_apply(new QPushButton(tr("Apply"), this))
    , m_captureTest(new QPushButton(tr("Capture test"), this))
{
    setObjectName(QStringLiteral("cameraSettings"));
    m_device->setObjectName(QStringLiteral("cboDevice"));
    m_format->setObjectName(QStringLiteral("cboVideoFormat"));
    m_standard->setObjectName(QStringLiteral("cbovideostand"));
    m_aspect->setObjectName(QStringLiteral("chkaspectratio"));
    m_tvMute->setObjectName(QStringLiteral("ChkTVMute"));
    m_apply->setObjectName(QStringLiteral("Command1"));
    m_captureTest->setObjectName(QStringLiteral("Command12"));
    for (QComboBox* list : {m_device, m_format, m_standard}) {
        list->setMinimumContentsLength(10);
        list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    }

    auto* form = new QFormLayout;
    m_form = form;
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(tr("Device"), m_device);
    form->addRow(tr("Format"), m_format);
    form->addRow(tr("Standard"), m_standard);

    auto* corners = new QGridLayout;
    corners->setSpacing(3);
    const char* names[4] = {"Label12", "Label13", "Label15", "Label16"};
    const char* tips[4] = {QT_TR_NOOP("Top right"), QT_TR_NOOP("Bottom right"), QT_TR_NOOP("Top left"),
                           QT_TR_NOOP("Bottom left")};
    const int rows[4] = {0, 1, 0, 1};
    const int cols[4] = {1, 1, 0, 0};
    for (int i = 0; i < 4; ++i) {
        auto* label = new QLabel(this);
        label->setObjectName(QString::fromLatin1(names[i]));
        label->setToolTip(tr(tips[i]));
        label->setFixedSize(34, 24);
        label->setFrameShape(QFrame::Box);
        label->setAutoFillBackground(true);
        label->setCursor(Qt::PointingHandCursor);
        label->installEventFilter(this);
        corners->addWidget(label, rows[i], cols[i]);
        m_corners[static_cast<std::size_t>(i)] = label;
    }
    markCorner(0);

    auto* cornerRow = new QHBoxLayout;
    cornerRow->addWidget(new QLabel(tr("Camera corner"), this));
    cornerRow->addStretch(1);
    cornerRow->addLayout(corners);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_apply);
    buttons->addWidget(m_captureTest);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(form);
    layout->addWidget(m_aspect);
    layout->addWidget(m_tvMute);
    layout->addLayout(cornerRow);
    layout->addLayout(buttons);

    connect(m_apply, &QPushButton::clicked, this, &CameraSettingsPanel::applyClicked);
}

QLabel* CameraSettingsPanel::cornerLabel(int corner) const
{
    if (corner < 0 || corner > 3)
        return nullptr;
    return m_corners[static_cast<std::size_t>(corner)];
}

void CameraSettingsPanel::markCorner(int corner)
{
    for (int i = 0; i < 4; ++i) {
        QPalette palette = m_corners[static_cast<std::size_t>(i)]->palette();
        palette.setColor(QPalette::Window, i == corner ? QColor(99, 99, 200) : QColor(255, 255, 255));
        m_corners[static_cast<std::size_t>(i)]->setPalette(palette);
    }
}

void CameraSettingsPanel::fillList(QComboBox* list, const QStringList& names)
{
    list->clear();
    list->addItems(names);
    list->setCurrentIndex(names.isEmpty() ? -1 : 0);
}

void CameraSettingsPanel::addRow(const QString& label, QWidget* field) { m_form->addRow(label, field); }

void CameraSettingsPanel::fillStandards() { fillList(m_standard, videoStandards()); }

bool CameraSettingsPanel::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        for (int i = 0; i < 4; ++i) {
            if (watched == m_corners[static_cast<std::size_t>(i)]) {
                Q_EMIT cornerClicked(i);
                return true;
            }
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace mirabend
