#include "recording/ui/DeviceOptions.h"

#include "recording/ui/NamedWidget.h"

#include "recording/ui/NumberField.h"
#include "recording/ui/OptionLists.h"
#include "recording/ui/RecorderControl.h"
#include "util/ProgramFolder.h"
#include "util/Prompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QVBoxLayout>

namespace mirabend {

const char* const kHwAccelHelper = "\\mirabend-hwaccel";

namespace {

QLineEdit* smallField(const char* name, const char* text, QWidget* parent) {
    auto* edit = named(new QLineEdit(QLatin1String(text), parent), name);
    edit->setMaximumWidth(70);
    return edit;
}

void message(Prompts& prompts, const QString& text) {
    prompts.show(text, QString::fromLatin1(options::kMessageTitle), PromptIcon::Exclamation);
}

} // namespace

DeviceOptions::DeviceOptions(RecorderControl& recorder, Prompts& prompts, QWidget* parent)
    : QWidget(parent)
    , m_recorder(recorder)
    , m_prompts(prompts) {
    setObjectName(QStringLiteral("capturePage"));
    cboaudiodevice = named(new QComboBox(this), "cboaudiodevice");
    cboaudioinputpin = named(new QComboBox(this), "cboaudioinputpin");
    cboVideoCompressor = named(new QComboBox(this), "cboVideoCompressor");
    cboAudioCompressor = named(new QComboBox(this), "cboAudioCompressor");
    chkUseVideoComp = named(new QCheckBox(QStringLiteral("Use Video Compressor"), this), "chkUseVideoComp");
    chkuseAudioComp = named(new QCheckBox(QStringLiteral("Use Audio Compressor"), this), "chkuseAudioComp");
    cmdVideoCompSetting = named(new QPushButton(QStringLiteral("Setting"), this), "cmdVideoCompSetting");
    chkcapwindow = named(new QCheckBox(QStringLiteral("Capture specific window"), this), "chkcapwindow");
    txtwinhandle = named(new QLineEdit(QStringLiteral("0"), this), "txtwinhandle");
    txtwinhandle->setEnabled(false);
    txtwinhandle->setMaximumWidth(140);
    chkcapmousecursor =
        named(new QCheckBox(QStringLiteral("Record Mouse Pointer (check only if needed)"), this),
              "chkcapmousecursor");
    HWAc_opt = named(
        new QCheckBox(
            QStringLiteral("Use Mirabend Hardware Acceleration (requires high-performance hardware)"), this),
        "HWAc_opt");
    Command3 = named(new QPushButton(QStringLiteral("Turn on/off"), this), "Command3");
    txtzoomleft = smallField("txtzoomleft", "0", this);
    txtzoomtop = smallField("txtzoomtop", "0", this);
    txtzoomright = smallField("txtzoomright", "400", this);
    txtzoombottom = smallField("txtzoombottom", "300", this);
    cmdZoomIn = named(new QPushButton(QStringLiteral("Zoom in to specific area"), this), "cmdZoomIn");
    cmdZoomOut = named(new QPushButton(QStringLiteral("Zomm out to full screen"), this), "cmdZoomOut");

    auto* sound = new QGroupBox(QStringLiteral("Sound"), this);
    auto* soundForm = new QFormLayout(sound);
    soundForm->addRow(QStringLiteral("Audio device:"), cboaudiodevice);
    soundForm->addRow(QStringLiteral("Input:"), cboaudioinputpin);

    auto* compressors = new QGroupBox(QStringLiteral("Compressors (AVI)"), this);
    auto* compGrid = new QGridLayout(compressors);
    compGrid->addWidget(chkUseVideoComp, 0, 0);
    compGrid->addWidget(cboVideoCompressor, 0, 1);
    compGrid->addWidget(cmdVideoCompSetting, 0, 2);
    compGrid->addWidget(chkuseAudioComp, 1, 0);
    compGrid->addWidget(cboAudioCompressor, 1, 1);
    compGrid->setColumnStretch(1, 1);

    auto* source = new QGroupBox(QStringLiteral("What is recorded"), this);
    auto* sourceGrid = new QGridLayout(source);
    auto* windowRow = new QHBoxLayout;
    windowRow->addWidget(chkcapwindow);
    windowRow->addWidget(txtwinhandle);
    windowRow->addStretch();
    sourceGrid->addLayout(windowRow, 0, 0, 1, 2);
    sourceGrid->addWidget(chkcapmousecursor, 1, 0, 1, 2);
    sourceGrid->addWidget(HWAc_opt, 2, 0, 1, 2);
    sourceGrid->addWidget(Command3, 3, 0, Qt::AlignLeft);
    sourceGrid->setColumnStretch(2, 1);

    auto* zoom = new QGroupBox(QStringLiteral("Zoom"), this);
    auto* zoomGrid = new QGridLayout(zoom);
    zoomGrid->addWidget(new QLabel(QStringLiteral("Left"), zoom), 0, 0);
    zoomGrid->addWidget(txtzoomleft, 0, 1);
    zoomGrid->addWidget(new QLabel(QStringLiteral("Top"), zoom), 0, 2);
    zoomGrid->addWidget(txtzoomtop, 0, 3);
    zoomGrid->addWidget(new QLabel(QStringLiteral("Right"), zoom), 1, 0);
    zoomGrid->addWidget(txtzoomright, 1, 1);
    zoomGrid->addWidget(new QLabel(QStringLiteral("Bottom"), zoom), 1, 2);
    zoomGrid->addWidget(txtzoombottom, 1, 3);
    zoomGrid->setColumnStretch(4, 1);
    auto* zoomButtons = new QHBoxLayout;
    zoomButtons->addWidget(cmdZoomIn);
    zoomButtons->addWidget(cmdZoomOut);
    zoomButtons->addStretch();
    zoomGrid->addLayout(zoomButtons, 2, 0, 1, 5);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(sound);
    layout->addWidget(compressors);
    layout->addWidget(source);
    layout->addWidget(zoom);
    layout->addStretch();

    connect(cboaudiodevice, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this] { cboaudiodevice_Click(); });
    connect(cboAudioCompressor, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this] { cboAudioCompressor_Click(); });
    connect(chkUseVideoComp, &QCheckBox::clicked, this, [this] { chkUseVideoComp_Click(); });
    connect(chkuseAudioComp, &QCheckBox::clicked, this, [this] { chkuseAudioComp_Click(); });
    connect(cmdVideoCompSetting, &QPushButton::clicked, this, [this] { cmdVideoCompSetting_Click(); });
    connect(chkcapwindow, &QCheckBox::clicked, this, [this] { chkcapwindow_Click(); });
    connect(cmdZoomIn, &QPushButton::clicked, this, [this] { cmdZoomIn_Click(); });
    connect(cmdZoomOut, &QPushButton::clicked, this, [this] { cmdZoomOut_Click(); });
    connect(Command3, &QPushButton::clicked, this, [this] { Command3_Click(); });
}

void DeviceOptions::setMp3Fields(QList<QWidget*> fields) {
    m_mp3Fields = std::move(fields);
}

void DeviceOptions::fillCompressors() {
    const QSignalBlocker blockVideo(cboVideoCompressor);
    cboVideoCompressor->clear();
    cboVideoCompressor->addItems(m_recorder.videoCompressors());
    cboVideoCompressor->setCurrentIndex(cboVideoCompressor->findText(
        QString::fromLatin1(options::kDefaultVideoCompressor), Qt::MatchExactly | Qt::MatchCaseSensitive));

    {
        const QSignalBlocker blockAudio(cboAudioCompressor);
        cboAudioCompressor->clear();
        cboAudioCompressor->addItems(m_recorder.audioCompressors());
        cboAudioCompressor->setCurrentIndex(-1);
    }
    // Selecting the preferred entry acts like a click: it sets the MP3 fields.
    const int pcm = cboAudioCompressor->findText(QString::fromLatin1(options::kDefaultAudioCompressor),
                                                 Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (pcm >= 0)
        cboAudioCompressor->setCurrentIndex(pcm);
}

void DeviceOptions::fillAudioDevices() {
    {
        const QSignalBlocker block(cboaudiodevice);
        cboaudiodevice->clear();
        cboaudiodevice->addItems(m_recorder.audioDevices());
        cboaudiodevice->setCurrentIndex(-1);
    }
    if (cboaudiodevice->count() > 0)
        cboaudiodevice->setCurrentIndex(0);
}

void DeviceOptions::cboaudiodevice_Click() {
    const int index = cboaudiodevice->currentIndex();
    if (index < 0)
        return;
    m_recorder.SelectAudioDevice(index);
    cboaudioinputpin->clear();
    cboaudioinputpin->addItems(m_recorder.audioInputPins());
    cboaudioinputpin->setCurrentIndex(cboaudioinputpin->count() > 0 ? 0 : -1);
}

void DeviceOptions::cboAudioCompressor_Click() {
    const bool mp3 = cboAudioCompressor->currentText() == QLatin1String(options::kMp3Compressor);
    for (QWidget* w : m_mp3Fields)
        w->setEnabled(mp3);
}

void DeviceOptions::chkUseVideoComp_Click() {
    const bool on = chkUseVideoComp->isChecked();
    cboVideoCompressor->setEnabled(on);
    cmdVideoCompSetting->setEnabled(on);
}

void DeviceOptions::chkuseAudioComp_Click() {
    cboAudioCompressor->setEnabled(chkuseAudioComp->isChecked());
}

void DeviceOptions::cmdVideoCompSetting_Click() {
    const int index = m_recorder.findVideoCompressor(selectedVideoCompressor());
    if (index < 0 || !m_recorder.showVideoCompressorSettings(index))
        m_prompts.show(QStringLiteral("No property page"), QString::fromLatin1(options::kMessageTitle),
                       PromptIcon::Information);
}

void DeviceOptions::chkcapwindow_Click() {
    txtwinhandle->setEnabled(chkcapwindow->isChecked());
}

void DeviceOptions::cmdZoomIn_Click() {
    const auto left = readInteger(txtzoomleft, QStringLiteral("zoom left"), m_prompts);
    if (!left)
        return;
    const auto top = readInteger(txtzoomtop, QStringLiteral("zoom top"), m_prompts);
    if (!top)
        return;
    const auto right = readInteger(txtzoomright, QStringLiteral("zoom right"), m_prompts);
    if (!right)
        return;
    const auto bottom = readInteger(txtzoombottom, QStringLiteral("zoom bottom"), m_prompts);
    if (!bottom)
        return;
    m_recorder.ZoomRect(*left, *top, *right, *bottom);
}

void DeviceOptions::cmdZoomOut_Click() {
    m_recorder.ZoomRect(0, 0, m_recorder.ScreenWidth(), m_recorder.ScreenHeight());
}

void DeviceOptions::Command3_Click() {
    const QString helper = ProgramFolder::dataFile(QString::fromLatin1(kHwAccelHelper));
    if (helper.isEmpty()) {
        message(m_prompts,
                QStringLiteral("The hardware acceleration helper \"%1\" is not installed beside Mirabend.")
                    .arg(ProgramFolder::normalise(QString::fromLatin1(kHwAccelHelper))));
        return;
    }
    if (!QProcess::startDetached(helper, {QStringLiteral("--minimized")}))
        message(m_prompts,
                QStringLiteral("The hardware acceleration helper \"%1\" could not be started.").arg(helper));
}

QString DeviceOptions::selectedVideoCompressor() const {
    return cboVideoCompressor->currentIndex() >= 0 ? cboVideoCompressor->currentText() : QString();
}

QString DeviceOptions::selectedAudioCompressor() const {
    return cboAudioCompressor->currentIndex() >= 0 ? cboAudioCompressor->currentText() : QString();
}

} // namespace mirabend
