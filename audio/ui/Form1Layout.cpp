// The recorder window's controls and their arrangement: input and output
// frames on the left, the live displays on the right, the Do and Close
// buttons underneath.
#include "audio/ui/Form1.h"
#include "audio/ui/PictureBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTimer>
#include <QVBoxLayout>

namespace mirabend {
namespace {

template <typename T>
T* named(T* widget, const char* name)
{
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

QLabel* caption(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    return label;
}

// A display with a thin sunken border, titled above.
QWidget* displayPanel(const QString& title, QWidget* display, QWidget* parent)
{
    auto* panel = new QWidget(parent);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    auto* label = new QLabel(title, panel);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    font.setBold(true);
    label->setFont(font);
    label->setStyleSheet("color: palette(mid);");
    layout->addWidget(label);
    auto* frame = new QFrame(panel);
    frame->setFrameShape(QFrame::StyledPanel);
    frame->setFrameShadow(QFrame::Sunken);
    auto* inner = new QVBoxLayout(frame);
    inner->setContentsMargins(1, 1, 1, 1);
    inner->addWidget(display);
    layout->addWidget(frame);
    return panel;
}

} // namespace

void Form1::buildControls()
{
    setObjectName("Form1");
    setWindowTitle(tr("Audio Recorder"));

    // Input frame.
    frmInp = named(new QGroupBox(tr("Input"), this), "frmInp");
    cboDev = named(new QComboBox(frmInp), "cboDev");
    cboDev->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cboDev->setMinimumContentsLength(24);
    cboRecLine = named(new QComboBox(frmInp), "cboRecLine");
    sldVol = named(new QSlider(Qt::Horizontal, frmInp), "sldVol");
    sldVol->setRange(0, 65535);
    lblVolPer = named(new QLabel("0%", frmInp), "lblVolPer");
    lblVolPer->setMinimumWidth(lblVolPer->fontMetrics().horizontalAdvance("100%") + 4);
    lblVolPer->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    cboSamplerate = named(new QComboBox(frmInp), "cboSamplerate");
    cboSamplerate->setEditable(true);
    cboSamplerate->setInsertPolicy(QComboBox::NoInsert);
    for (const char* rate : {"8000", "11025", "16000", "22050", "32000", "44100", "48000"})
        cboSamplerate->addItem(QString::fromLatin1(rate));
    chkStereo = named(new QCheckBox(tr("Stereo"), frmInp), "chkStereo");

    auto* effects = new QWidget(frmInp);
    auto* effectsLayout = new QGridLayout(effects);
    effectsLayout->setContentsMargins(0, 0, 0, 0);
    const QString names[4] = {tr("Echo"), tr("Phase Shifter"), tr("Amplify"), tr("Equalizer")};
    for (int i = 0; i < 4; ++i) {
        chkFX[static_cast<std::size_t>(i)] = named(new QCheckBox(names[i], effects), "chkFX");
        chkFX[static_cast<std::size_t>(i)]->setProperty("Index", i);
        effectsLayout->addWidget(chkFX[static_cast<std::size_t>(i)], i / 2, i % 2);
    }
    cmdFXOpts = named(new QPushButton(tr("Options..."), frmInp), "cmdFXOpts");
    effectsLayout->addWidget(cmdFXOpts, 0, 2, 2, 1, Qt::AlignTop);

    auto* inp = new QGridLayout(frmInp);
    inp->addWidget(caption(tr("Device:"), frmInp), 0, 0);
    inp->addWidget(cboDev, 0, 1, 1, 2);
    inp->addWidget(caption(tr("Source:"), frmInp), 1, 0);
    inp->addWidget(cboRecLine, 1, 1, 1, 2);
    inp->addWidget(caption(tr("Volume:"), frmInp), 2, 0);
    inp->addWidget(sldVol, 2, 1);
    inp->addWidget(lblVolPer, 2, 2);
    inp->addWidget(caption(tr("Sample rate:"), frmInp), 3, 0);
    auto* rateRow = new QHBoxLayout;
    rateRow->addWidget(cboSamplerate);
    rateRow->addWidget(caption(tr("Hz"), frmInp));
    rateRow->addSpacing(12);
    rateRow->addWidget(chkStereo);
    rateRow->addStretch();
    inp->addLayout(rateRow, 3, 1, 1, 2);
    inp->addWidget(caption(tr("Effects:"), frmInp), 4, 0, Qt::AlignTop);
    inp->addWidget(effects, 4, 1, 1, 2);
    inp->setColumnStretch(1, 1);

    // Output frame.
    frmOut = named(new QGroupBox(tr("Output"), this), "frmOut");
    txtWAVFmt = named(new QLineEdit(frmOut), "txtWAVFmt");
    txtWAVFmt->setReadOnly(true);
    cmdSelFmt = named(new QPushButton(tr("Format..."), frmOut), "cmdSelFmt");
    txtFile = named(new QLineEdit(frmOut), "txtFile");
    cmdBrowse = named(new QPushButton(tr("Browse..."), frmOut), "cmdBrowse");
    auto* out = new QGridLayout(frmOut);
    out->addWidget(caption(tr("Format:"), frmOut), 0, 0);
    out->addWidget(txtWAVFmt, 0, 1);
    out->addWidget(cmdSelFmt, 0, 2);
    out->addWidget(caption(tr("File:"), frmOut), 1, 0);
    out->addWidget(txtFile, 1, 1);
    out->addWidget(cmdBrowse, 1, 2);
    out->setColumnStretch(1, 1);

    // Displays.
    picAmpl = named(new PictureBox(this, Qt::black), "picAmpl");
    picAmpl->setMinimumSize(280, 96);
    picFreq = named(new PictureBox(this), "picFreq");
    picFreq->setFixedSize(4 * clsDraw::kBars + 8, 96); // the bars keep a fixed 4-pixel pitch
    picVUL = named(new PictureBox(this), "picVUL");
    picVUR = named(new PictureBox(this), "picVUR");
    for (PictureBox* meter : {picVUL, picVUR}) {
        meter->setMinimumWidth(200);
        meter->setFixedHeight(12);
    }
    auto* meters = new QWidget(this);
    auto* metersLayout = new QGridLayout(meters);
    metersLayout->setContentsMargins(0, 0, 0, 0);
    metersLayout->setVerticalSpacing(3);
    metersLayout->addWidget(caption("L", meters), 0, 0);
    metersLayout->addWidget(picVUL, 0, 1);
    metersLayout->addWidget(caption("R", meters), 1, 0);
    metersLayout->addWidget(picVUR, 1, 1);
    metersLayout->setColumnStretch(1, 1);

    lblTime = named(new QLabel("0:00", this), "lblTime");
    lblSize = named(new QLabel("0 bytes", this), "lblSize");
    QFont big = lblTime->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setBold(true);
    lblTime->setFont(big);
    lblTime->setMinimumWidth(lblTime->fontMetrics().horizontalAdvance("00:00") + 8);

    auto* displayRow = new QHBoxLayout;
    displayRow->addWidget(displayPanel(tr("Waveform"), picAmpl, this), 1);
    displayRow->addWidget(displayPanel(tr("Spectrum"), picFreq, this));
    auto* statusRow = new QHBoxLayout;
    statusRow->addWidget(displayPanel(tr("Level"), meters, this), 1);
    auto* counters = new QVBoxLayout;
    counters->addWidget(lblTime, 0, Qt::AlignRight);
    counters->addWidget(lblSize, 0, Qt::AlignRight);
    statusRow->addLayout(counters);

    auto* right = new QVBoxLayout;
    right->addLayout(displayRow);
    right->addLayout(statusRow);
    right->addStretch();

    auto* left = new QVBoxLayout;
    left->addWidget(frmInp);
    left->addWidget(frmOut);
    left->addStretch();

    cmdDo = named(new QPushButton(tr("Start Test"), this), "cmdDo");
    cmdDo->setDefault(true);
    cmdDo->setMinimumWidth(110);
    close_cmd = named(new QPushButton(tr("Close"), this), "close_cmd");
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdDo);
    buttons->addWidget(close_cmd);

    auto* columns = new QHBoxLayout;
    columns->addLayout(left, 3);
    columns->addLayout(right, 4);
    auto* root = new QVBoxLayout(this);
    root->addLayout(columns);
    root->addLayout(buttons);

    tmrVis = named(new QTimer(this), "tmrVis");
    tmrVis->setInterval(kDisplayIntervalMs);
}

} // namespace mirabend
