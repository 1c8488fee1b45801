#include "recording/ui/FormatOptions.h"

#include "recording/ui/NamedWidget.h"

#include "recording/ui/OptionLists.h"
#include "recording/ui/RecorderControl.h"
#include "util/Prompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

namespace mirabend {

namespace {

QLineEdit* field(const char* name, const char* text, QWidget* parent) {
    auto* edit = named(new QLineEdit(QLatin1String(text), parent), name);
    edit->setMaximumWidth(110);
    return edit;
}

void fill(QComboBox* box, const std::vector<options::SizeEntry>& table) {
    box->clear();
    for (const options::SizeEntry& entry : table)
        box->addItem(entry.entry);
}

} // namespace

FormatOptions::FormatOptions(RecorderControl& recorder, Prompts& prompts, QWidget* parent)
    : QWidget(parent)
    , m_recorder(recorder)
    , m_prompts(prompts) {
    setObjectName(QStringLiteral("formatPage"));
    txtfps = field("txtfps", "24", this);
    optdefaultprofile = named(new QRadioButton(QStringLiteral("Basic Profile"), this), "optdefaultprofile");
    optadvprofile = named(new QRadioButton(QStringLiteral("Advance Profile"), this), "optadvprofile");
    optdefaultprofile->setChecked(true);
    cboWMV = named(new QComboBox(this), "cboWMV");
    // Editable, because a chosen profile file is shown in it by name.
    cboWMV->setEditable(true);
    cbocustomprofile = named(new QComboBox(this), "cbocustomprofile");
    chkProfileFile =
        named(new QCheckBox(QStringLiteral("Use a profile file (*.prx)"), this), "chkProfileFile");

    aviSize_comb = named(new QComboBox(this), "aviSize_comb");
    txtavimp3bitrate = field("txtavimp3bitrate", "128", this);
    cboavimp3samplerate = named(new QComboBox(this), "cboavimp3samplerate");
    cboavimp3channel = named(new QComboBox(this), "cboavimp3channel");

    flvSize_comb = named(new QComboBox(this), "flvSize_comb");
    txtflvvideobitrate = field("txtflvvideobitrate", "3512000", this);
    txtflvaudiobitrate = field("txtflvaudiobitrate", "96000", this);
    txtflvaudiochannels = field("txtflvaudiochannels", "2", this);

    swfSize_comb = named(new QComboBox(this), "swfSize_comb");
    txtswfvideobitrate = field("txtswfvideobitrate", "3512000", this);
    txtswfaudiobitrate = field("txtswfaudiobitrate", "96000", this);
    txtswfaudiochannels = field("txtswfaudiochannels", "2", this);

    txtwidth = field("txtwidth", "", this);
    txtheight = field("txtheight", "", this);

    auto* general = new QGroupBox(QStringLiteral("General"), this);
    auto* generalForm = new QFormLayout(general);
    generalForm->addRow(QStringLiteral("Frames per second:"), txtfps);
    auto* area = new QHBoxLayout;
    area->addWidget(txtwidth);
    area->addWidget(new QLabel(QStringLiteral("x"), general));
    area->addWidget(txtheight);
    area->addStretch();
    generalForm->addRow(QStringLiteral("Recording area:"), area);

    auto* wmv = new QGroupBox(QStringLiteral("Windows Media Video"), this);
    auto* wmvGrid = new QGridLayout(wmv);
    wmvGrid->addWidget(optdefaultprofile, 0, 0);
    wmvGrid->addWidget(cboWMV, 0, 1);
    wmvGrid->addWidget(optadvprofile, 1, 0);
    wmvGrid->addWidget(cbocustomprofile, 1, 1);
    wmvGrid->addWidget(chkProfileFile, 2, 1);
    wmvGrid->setColumnStretch(1, 1);

    auto* avi = new QGroupBox(QStringLiteral("Audio Video Interleave"), this);
    auto* aviForm = new QFormLayout(avi);
    aviForm->addRow(QStringLiteral("Size:"), aviSize_comb);
    aviForm->addRow(QStringLiteral("MP3 bitrate (kbit/s):"), txtavimp3bitrate);
    aviForm->addRow(QStringLiteral("MP3 sample rate:"), cboavimp3samplerate);
    aviForm->addRow(QStringLiteral("MP3 channels:"), cboavimp3channel);

    auto* flv = new QGroupBox(QStringLiteral("Flash Video"), this);
    auto* flvForm = new QFormLayout(flv);
    flvForm->addRow(QStringLiteral("Size:"), flvSize_comb);
    flvForm->addRow(QStringLiteral("Video bitrate:"), txtflvvideobitrate);
    flvForm->addRow(QStringLiteral("Audio bitrate:"), txtflvaudiobitrate);
    flvForm->addRow(QStringLiteral("Audio channels:"), txtflvaudiochannels);

    auto* swf = new QGroupBox(QStringLiteral("Small Web Format"), this);
    auto* swfForm = new QFormLayout(swf);
    swfForm->addRow(QStringLiteral("Size:"), swfSize_comb);
    swfForm->addRow(QStringLiteral("Video bitrate:"), txtswfvideobitrate);
    swfForm->addRow(QStringLiteral("Audio bitrate:"), txtswfaudiobitrate);
    swfForm->addRow(QStringLiteral("Audio channels:"), txtswfaudiochannels);

    auto* grid = new QGridLayout(this);
    grid->addWidget(general, 0, 0);
    grid->addWidget(wmv, 0, 1);
    grid->addWidget(avi, 1, 0, 2, 1);
    grid->addWidget(flv, 1, 1);
    grid->addWidget(swf, 2, 1);
    grid->setRowStretch(3, 1);

    connect(chkProfileFile, &QCheckBox::clicked, this, [this] { chkProfileFile_Click(); });
}

void FormatOptions::fillLists() {
    fill(aviSize_comb, options::aviSizes());
    fill(swfSize_comb, options::swfSizes());
    fill(flvSize_comb, options::flvSizes());
    aviSize_comb->setCurrentIndex(1);
    swfSize_comb->setCurrentIndex(1);
    flvSize_comb->setCurrentIndex(1);

    cboavimp3samplerate->clear();
    cboavimp3samplerate->addItems(options::mp3SampleRates());
    cboavimp3samplerate->setCurrentIndex(2);
    cboavimp3channel->clear();
    cboavimp3channel->addItems(options::mp3Channels());
    cboavimp3channel->setCurrentIndex(1);

    txtwidth->setText(QString::number(m_recorder.ScreenWidth()));
    txtheight->setText(QString::number(m_recorder.ScreenHeight()));

    cbocustomprofile->clear();
    cbocustomprofile->addItems(options::customProfileNames());
    cbocustomprofile->setCurrentIndex(1);

    cboWMV->clear();
    cboWMV->addItems(m_recorder.wmvSystemProfiles());
    cboWMV->setCurrentIndex(cboWMV->count() > 0 ? 0 : -1);
}

void FormatOptions::chkProfileFile_Click() {
    if (chkProfileFile->isChecked()) {
        FileRequest request;
        request.title = QStringLiteral("Select a profile file");
        request.filter = QString::fromLatin1(options::kProfileFilter);
        const FileAnswer answer = m_prompts.openFile(request);
        if (!answer.accepted()) {
            chkProfileFile->setChecked(false);
            return;
        }
        m_recorder.WmvProfileFile(answer.fileName);
        cboWMV->setEditText(answer.fileName);
        return;
    }
    m_recorder.WmvProfileFile(QString());
    cboWMV->setEditText(QString());
}

} // namespace mirabend
