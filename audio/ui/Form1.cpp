#include "audio/ui/Form1.h"

#include "audio/core/AudioError.h"
#include "audio/core/BlockPeaks.h"
#include "audio/core/WavRepair.h"
#include "audio/ui/AudioText.h"
#include "audio/ui/FormatChooserDialog.h"
#include "audio/ui/LevelMeter.h"
#include "audio/ui/PictureBox.h"
#include "util/ProgramFolder.h"
#include "util/Prompts.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTimer>
#include <cmath>

namespace mirabend {
namespace {

const char* const kTitle = "Mirabend 1.0";

QString untilNul(const std::string& field)
{
    return QString::fromStdString(field.substr(0, field.find('\0')));
}

} // namespace

Form1::Form1(const Form1Setup& setup, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_prompts(*setup.prompts)
    , m_chooser(setup.chooser)
    , m_audioFile(setup.audioFile)
    , m_recorder(new QtWaveInRecorder(this))
{
    if (!m_chooser) {
        m_ownChooser = std::make_unique<QtFormatChooser>(this);
        m_chooser = m_ownChooser.get();
    }
    buildControls();
    Form_Load();
    connectControls();
    m_loaded = true;
}

Form1::~Form1()
{
    if (m_recorder->recorder().IsRecording())
        stopTest();
}

void Form1::connectControls()
{
    connect(m_recorder, &QtWaveInRecorder::GotData, this, &Form1::clsRecorder_GotData, Qt::DirectConnection);
    connect(m_recorder, &QtWaveInRecorder::captureFailed, this, &Form1::onCaptureFailed);
    connect(cboDev, qOverload<int>(&QComboBox::activated), this, [this] { cboDev_Click(); });
    connect(cboRecLine, qOverload<int>(&QComboBox::activated), this, [this] { cboRecLine_Click(); });
    connect(sldVol, &QSlider::valueChanged, this, [this] { sldVol_Change(); });
    connect(cboSamplerate, &QComboBox::textActivated, this, [this] { cboSamplerate_Click(); });
    cboSamplerate->lineEdit()->installEventFilter(this);
    connect(chkStereo, &QCheckBox::clicked, this, [this] { chkStereo_Click(); });
    for (int i = 0; i < 4; ++i)
        connect(chkFX[static_cast<std::size_t>(i)], &QCheckBox::clicked, this, [this, i] { chkFX_Click(i); });
    connect(cmdFXOpts, &QPushButton::clicked, this, [this] { cmdFXOpts_Click(); });
    connect(cmdSelFmt, &QPushButton::clicked, this, [this] { cmdSelFmt_Click(); });
    connect(cmdBrowse, &QPushButton::clicked, this, [this] { cmdBrowse_Click(); });
    connect(cmdDo, &QPushButton::clicked, this, [this] { cmdDo_Click(); });
    connect(close_cmd, &QPushButton::clicked, this, [this] { close_cmd_Click(); });
    connect(tmrVis, &QTimer::timeout, this, [this] { tmrVis_Timer(); });
    tmrVis->start();
}

void Form1::Form_Load()
{
    m_smoothL.SmoothNew(kMeterSmoothing);
    m_smoothR.SmoothNew(kMeterSmoothing);
    cboSamplerate->setCurrentText("44100");
    chkStereo->setChecked(true);
    m_work.assign(1024, 0);
    showFormat();

    WaveInRecorder& rec = m_recorder->recorder();
    const int devices = rec.DeviceCount();
    for (int i = 0; i < devices; ++i) {
        cboDev->addItem(untilNul(rec.DeviceName(i)));
        cboDev->setItemData(i, QString::fromStdString(rec.devices()[static_cast<std::size_t>(i)].name),
                            Qt::ToolTipRole);
    }
    try {
        m_dsp.samplerate(sampleRate());
        m_dsp.Channels(channels());
    } catch (const AudioError&) {
        // The field starts at 44100 stereo, which the effects always accept.
    }
    if (cboDev->count() > 0) {
        cboDev->setCurrentIndex(0);
        cboDev_Click();
    }
    txtFile->setText(m_audioFile.isEmpty() ? ProgramFolder::writableFile("\\textAudio") : m_audioFile);
    offerRepair();
}

// A recording that was never stopped (the program was killed, the machine
// went down) has only the reserved zero header: offer to write the real one.
void Form1::offerRepair()
{
    const QString file = txtFile->text();
    if (!QFileInfo(file).isFile() || !hasReservedHeader(file.toStdString()))
        return;
    const PromptAnswer answer = m_prompts.message(
        {tr("The recording \"%1\" was not finished and has no WAV header.\nRepair it now?").arg(file),
         kTitle, PromptButtons::YesNo, PromptIcon::Question});
    if (answer != PromptAnswer::Yes)
        return;
    WavRepairOutcome outcome{};
    const Failure<WavRepairError> failure = repairWav(file.toStdString(), outcome);
    if (failure)
        showMessage(tr("Could not repair \"%1\": %2").arg(file, QString::fromStdString(failure.detail)));
}

void Form1::showFormat()
{
    txtWAVFmt->setText(QString::fromStdString(m_encoder.FormatTag() + " - " + m_encoder.FormatID()));
}

void Form1::showMessage(const QString& text)
{
    m_prompts.show(text, kTitle, PromptIcon::Exclamation);
}

int Form1::sampleRate() const
{
    bool ok = false;
    const int rate = cboSamplerate->currentText().trimmed().toInt(&ok);
    return ok ? rate : 0;
}

std::int16_t Form1::channels() const
{
    return chkStereo->isChecked() ? 2 : 1;
}

void Form1::cboDev_Click()
{
    WaveInRecorder& rec = m_recorder->recorder();
    cboRecLine->clear();
    if (!rec.SelectDevice(cboDev->currentIndex()))
        showMessage("Couldn't select device!");
    const int lines = rec.MixerLineCount();
    for (int i = 0; i < lines; ++i)
        cboRecLine->addItem(untilNul(rec.MixerLineName(i)));
    if (lines > 0) {
        cboRecLine->setCurrentIndex(rec.SelectedMixerLine());
        cboRecLine_Click();
    } else {
        // Nothing to set a volume on.
        sldVol->setEnabled(false);
        lblVolPer->setText("0%");
    }
}

void Form1::cboRecLine_Click()
{
    WaveInRecorder& rec = m_recorder->recorder();
    if (!rec.SelectMixerLine(cboRecLine->currentIndex()))
        showMessage("Couldn't select mixer line!");
    rec.MixerLineType(-1);
    const VolumeRange range = rec.MixerLineVolumeRange();
    const int volume = rec.MixerLineVolume();
    sldVol->setEnabled(range.max > range.min);
    {
        const QSignalBlocker quiet(sldVol);
        if (range.max > range.min)
            sldVol->setRange(static_cast<int>(range.min), static_cast<int>(range.max));
        sldVol->setValue(volume);
    }
    sldVol_Change();
}

void Form1::sldVol_Change()
{
    m_recorder->recorder().MixerLineVolume(sldVol->value());
    const double percent = sldVol->maximum() > 0 ? 100.0 * sldVol->value() / sldVol->maximum() : 0.0;
    lblVolPer->setText(QString::number(std::lround(percent)) + "%");
}

bool Form1::cboSamplerate_KeyPress(QKeyEvent* event) const
{
    if (event->key() == Qt::Key_Backspace)
        return true;
    const QString text = event->text();
    // Keys without a character (arrows, Delete, Tab ...) are no key presses
    // for this rule.
    if (text.isEmpty() || !text.at(0).isPrint())
        return true;
    return text.size() == 1 && text.at(0) >= '0' && text.at(0) <= '9' && cboSamplerate->currentText().size() < 5;
}

bool Form1::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == cboSamplerate->lineEdit() && event->type() == QEvent::KeyPress)
        return !cboSamplerate_KeyPress(static_cast<QKeyEvent*>(event));
    return QWidget::eventFilter(watched, event);
}

void Form1::cboSamplerate_Click()
{
    if (!m_loaded)
        return;
    outputFormatChanged();
    try {
        m_dsp.samplerate(sampleRate());
    } catch (const AudioError&) {
        // Checked again, with a message, when a recording starts.
    }
}

void Form1::chkStereo_Click()
{
    if (!m_loaded)
        return;
    outputFormatChanged();
    m_dsp.Channels(channels());
}

void Form1::chkFX_Click(int index)
{
    const std::int32_t bit = 1 << index;
    const std::int32_t used = m_dsp.EffectsUsed();
    m_dsp.EffectsUsed(chkFX[static_cast<std::size_t>(index)]->isChecked() ? (used | bit) : (used & ~bit));
}

void Form1::cmdSelFmt_Click()
{
    if (m_encoder.SelectFormat(sampleRate(), channels(), *m_chooser, "Select Format") == encoder_result::kOk)
        showFormat();
}

void Form1::cmdBrowse_Click()
{
    const QString extension = QString::fromStdString(m_encoder.Encoder_Extension());
    FileRequest request;
    request.title = tr("Save Recording As");
    request.filter = QString::fromStdString(m_encoder.Encoder_Description()) + " (*." + extension + ")|*." + extension;
    request.defaultExtension = "." + extension;
    request.initialFileName = txtFile->text();
    const FileAnswer answer = m_prompts.saveFile(request);
    if (answer.accepted())
        txtFile->setText(answer.fileName);
}

void Form1::EnableFrames(bool enabled)
{
    frmInp->setEnabled(enabled);
    frmOut->setEnabled(enabled);
}

void Form1::cmdDo_Click()
{
    if (m_recorder->recorder().IsRecording())
        stopTest();
    else
        startTest();
}

void Form1::startTest()
{
    if (txtFile->text().isEmpty())
        return;
    if (cboDev->currentIndex() < 0) {
        showMessage("No device selected!");
        return;
    }
    const int rate = sampleRate();
    const std::int16_t ch = channels();
    m_byteRate = rate * ch * 2;
    if (m_encoder.Encoder_EncoderInit(rate, ch, txtFile->text().toStdString()) != encoder_result::kOk) {
        showMessage("Could not init the encoder!");
        return;
    }
    try {
        m_dsp.samplerate(rate);
        m_dsp.Channels(ch);
    } catch (const AudioError& error) {
        m_encoder.Encoder_EncoderClose();
        showMessage(QString::fromStdString(error.what()));
        return;
    }
    m_writeFailed = false;
    m_feed.reset();
    if (!m_recorder->recorder().StartRecord(rate, ch)) {
        m_encoder.Encoder_EncoderClose();
        showMessage("Could not start recording!");
        return;
    }
    cmdDo->setText("Stop Test");
    EnableFrames(false);
}

void Form1::stopTest()
{
    if (!m_recorder->recorder().StopRecord())
        showMessage("Could not stop testing!");
    m_encoder.Encoder_EncoderClose();
    updateStatus();
    m_elapsedMs = 0;
    m_byteRate = 0;
    cmdDo->setText("Start Test");
    EnableFrames(true);
}

void Form1::close_cmd_Click()
{
    close();
}

void Form1::closeEvent(QCloseEvent* event)
{
    if (m_recorder->recorder().IsRecording())
        cmdDo_Click();
    event->accept();
}

void Form1::onCaptureFailed(const QString& detail)
{
    if (!m_recorder->recorder().IsRecording())
        return;
    cmdDo_Click();
    showMessage(tr("The recording stopped: the input device is no longer available (%1).").arg(detail));
}

void Form1::clsRecorder_GotData(std::vector<std::int16_t>& samples, int& bytesRecorded)
{
    m_work = samples;
    m_dsp.ProcessSamples(m_work);

    // Analysis for the displays: the block itself and the loudest sample of
    // each channel since the last redraw.
    m_display = m_work;
    const std::size_t count = std::min(m_work.size(), static_cast<std::size_t>(bytesRecorded / 2));
    const ChannelPeaks peaks = blockPeaks(m_work.data(), count, channels());
    m_peakL = std::max(m_peakL, static_cast<int>(peaks.left));
    m_peakR = std::max(m_peakR, static_cast<int>(peaks.right));

    if (!m_recorder->recorder().IsRecording() || m_writeFailed)
        return;
    if (m_byteRate > 0)
        m_elapsedMs += std::llround(static_cast<double>(bytesRecorded) / m_byteRate * 1000.0);
    if (m_feed.feed(m_work.data(), bytesRecorded) == encoder_result::kWriteFailed) {
        m_writeFailed = true;
        cmdDo_Click();
        showMessage("Write error (no disk space left?)!");
    }
}

void Form1::tmrVis_Timer()
{
    if (!m_recorder->recorder().IsRecording())
        return;
    m_draw.DrawAmplitudes(m_display, *picAmpl);
    m_draw.DrawFrequencies(m_display, *picFreq);
    m_smoothL.SmoothAdd(static_cast<float>(m_peakL) / 32768.0f);
    m_smoothR.SmoothAdd(static_cast<float>(m_peakR) / 32768.0f);
    m_peakL = m_peakR = 0;
    drawLevelMeter(*picVUL, m_smoothL.SmoothGetMax(), m_smoothL.LargestAverage());
    drawLevelMeter(*picVUR, m_smoothR.SmoothGetMax(), m_smoothR.LargestAverage());
    updateStatus();
}

void Form1::updateStatus()
{
    lblTime->setText(QString::fromStdString(elapsedText(m_elapsedMs)));
    lblSize->setText(QString::fromStdString(sizeText(QFileInfo(txtFile->text()).size())));
}

} // namespace mirabend
