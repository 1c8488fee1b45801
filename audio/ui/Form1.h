#pragma once
// The audio recorder window. The user picks an input device, a recording
// source and its volume, a sample rate and mono or stereo, effects and an
// output file; the Do button starts and stops a test recording. Every
// captured buffer is copied, run through the enabled effects in place,
// analysed for the displays and, while recording, encoded; the display timer
// redraws waveform, spectrum and level meters.
//
// Thread contract: UI thread only. Captured buffers reach clsRecorder_GotData
// on the UI thread through QtWaveInRecorder.

#include "audio/core/EncoderWAV.h"
#include "audio/core/GaplessFeed.h"
#include "audio/core/clsDSP.h"
#include "audio/core/clsSmooth.h"
#include "audio/ui/QtWaveInRecorder.h"
#include "audio/ui/clsDraw.h"

#include <QString>
#include <QWidget>
#include <array>
#include <memory>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;
class QTimer;
class QKeyEvent;

namespace mirabend {

class PictureBox;
class Prompts;

struct Form1Setup {
    Prompts* prompts = nullptr;       // message boxes and the file dialog; required
    FormatChooser* chooser = nullptr; // null: the window's own format dialog
    QString audioFile;                // empty: the program folder's "\textAudio"
};

class Form1 : public QWidget {
    Q_OBJECT
public:
    static constexpr int kDisplayIntervalMs = 50;
    static constexpr int kMeterSmoothing = 4; // values averaged by each level meter

    explicit Form1(const Form1Setup& setup, QWidget* parent = nullptr);
    ~Form1() override;

    // Handlers, named after their control and event.
    void cboDev_Click();
    void cboRecLine_Click();
    void sldVol_Change();
    void sldVol_Scroll() { sldVol_Change(); }
    // The sample-rate field's key rule; true when the key may pass.
    bool cboSamplerate_KeyPress(QKeyEvent* event) const;
    void cboSamplerate_Click();
    void chkStereo_Click();
    void chkFX_Click(int index);
    void cmdFXOpts_Click() {}
    void cmdSelFmt_Click();
    void cmdBrowse_Click();
    void cmdDo_Click();
    void close_cmd_Click();
    void tmrVis_Timer();
    void clsRecorder_GotData(std::vector<std::int16_t>& samples, int& bytesRecorded);

    QtWaveInRecorder& clsRecorder() { return *m_recorder; }
    EncoderWAV& encoder() { return m_encoder; }
    clsDSP& dsp() { return m_dsp; }
    clsDraw& draw() { return m_draw; }
    std::int64_t elapsedMs() const { return m_elapsedMs; }
    std::int32_t byteRate() const { return m_byteRate; }
    bool isLoaded() const { return m_loaded; }

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls(); // Form1Layout.cpp
    void connectControls();
    void Form_Load();
    void offerRepair();
    void EnableFrames(bool enabled);
    // The output-format action that a rate or channel change runs; it has
    // nothing to do in this version.
    void outputFormatChanged() {}
    void showFormat();
    void showMessage(const QString& text);
    void onCaptureFailed(const QString& detail);
    void startTest();
    void stopTest();
    void updateStatus();
    int sampleRate() const;
    std::int16_t channels() const;

    Prompts& m_prompts;
    std::unique_ptr<FormatChooser> m_ownChooser;
    FormatChooser* m_chooser;
    QString m_audioFile;

    QtWaveInRecorder* m_recorder;
    EncoderWAV m_encoder;
    clsDSP m_dsp;
    clsDraw m_draw;
    clsSmooth m_smoothL;
    clsSmooth m_smoothR;
    std::vector<std::int16_t> m_work;    // the current buffer after the effects
    GaplessFeed m_feed{m_encoder};       // keeps what a block format leaves for the next buffer
    std::vector<std::int16_t> m_display; // what the displays show
    int m_peakL = 0;                     // loudest sample since the last redraw
    int m_peakR = 0;
    std::int64_t m_elapsedMs = 0;
    std::int32_t m_byteRate = 0;
    bool m_loaded = false;
    bool m_writeFailed = false;

public:
    // Controls, by their designed names (also their Qt object names).
    QGroupBox* frmInp = nullptr;
    QGroupBox* frmOut = nullptr;
    QComboBox* cboDev = nullptr;
    QComboBox* cboRecLine = nullptr;
    QSlider* sldVol = nullptr;
    QLabel* lblVolPer = nullptr;
    QComboBox* cboSamplerate = nullptr;
    QCheckBox* chkStereo = nullptr;
    std::array<QCheckBox*, 4> chkFX{};
    QPushButton* cmdFXOpts = nullptr;
    QLineEdit* txtWAVFmt = nullptr;
    QPushButton* cmdSelFmt = nullptr;
    QLineEdit* txtFile = nullptr;
    QPushButton* cmdBrowse = nullptr;
    QPushButton* cmdDo = nullptr;
    QPushButton* close_cmd = nullptr;
    QTimer* tmrVis = nullptr;
    PictureBox* picAmpl = nullptr;
    PictureBox* picFreq = nullptr;
    PictureBox* picVUL = nullptr;
    PictureBox* picVUR = nullptr;
    QLabel* lblTime = nullptr;
    QLabel* lblSize = nullptr;
};

} // namespace mirabend
