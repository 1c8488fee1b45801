#pragma once
// The "Capture" page of the options window: sound source, compressors, the
// window to record, the mouse pointer, hardware acceleration and the zoom
// rectangle. Device and zoom choices reach the recorder at once; the rest is
// read by the session when a recording starts.
//
// Thread contract: UI thread only.

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;

namespace mirabend {

class Prompts;
class RecorderControl;

class DeviceOptions : public QWidget {
    Q_OBJECT
public:
    DeviceOptions(RecorderControl& recorder, Prompts& prompts, QWidget* parent = nullptr);

    // Compressor and device lists from the recorder, with their first choices.
    void fillCompressors();
    void fillAudioDevices();

    void cboaudiodevice_Click();
    void cboAudioCompressor_Click();
    void chkUseVideoComp_Click();
    void chkuseAudioComp_Click();
    void cmdVideoCompSetting_Click();
    void chkcapwindow_Click();
    void cmdZoomIn_Click();
    void cmdZoomOut_Click();
    // Starts the acceleration helper beside the program, without waiting.
    void Command3_Click();

    // The name shown in a compressor list, empty when nothing is selected.
    QString selectedVideoCompressor() const;
    QString selectedAudioCompressor() const;

    QComboBox* cboaudiodevice;
    QComboBox* cboaudioinputpin;
    QComboBox* cboVideoCompressor;
    QComboBox* cboAudioCompressor;
    QCheckBox* chkUseVideoComp;
    QCheckBox* chkuseAudioComp;
    QPushButton* cmdVideoCompSetting;
    QCheckBox* chkcapwindow;
    QLineEdit* txtwinhandle;
    QCheckBox* chkcapmousecursor;
    QCheckBox* HWAc_opt;
    QPushButton* Command3;
    QLineEdit* txtzoomleft;
    QLineEdit* txtzoomtop;
    QLineEdit* txtzoomright;
    QLineEdit* txtzoombottom;
    QPushButton* cmdZoomIn;
    QPushButton* cmdZoomOut;

    // The AVI MP3 fields live on the format page; this page switches them
    // on and off with the audio compressor.
    void setMp3Fields(QList<QWidget*> fields);

private:
    RecorderControl& m_recorder;
    Prompts& m_prompts;
    QList<QWidget*> m_mp3Fields;
};

// The file name of the acceleration helper in the program folder.
extern const char* const kHwAccelHelper;

} // namespace mirabend
