#pragma once
// The "Format" page of the options window: frame rate, the WMV profile
// choice, and the size and bitrate fields of AVI, FLV and SWF. The fields are
// public so the format branches and the session read them as they stand.
//
// Thread contract: UI thread only.

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QRadioButton;

namespace mirabend {

class Prompts;
class RecorderControl;

class FormatOptions : public QWidget {
    Q_OBJECT
public:
    FormatOptions(RecorderControl& recorder, Prompts& prompts, QWidget* parent = nullptr);

    // Fills the lists and sets their first choices, the design values of the
    // text fields included.
    void fillLists();

    // The profile-file choice: asks for a ".prx" file when checked, else
    // clears the file and the text of cboWMV.
    void chkProfileFile_Click();

    QLineEdit* txtfps;
    QRadioButton* optdefaultprofile;
    QRadioButton* optadvprofile;
    QComboBox* cboWMV;
    QComboBox* cbocustomprofile;
    QCheckBox* chkProfileFile;

    QComboBox* aviSize_comb;
    QLineEdit* txtavimp3bitrate;
    QComboBox* cboavimp3samplerate;
    QComboBox* cboavimp3channel;

    QComboBox* flvSize_comb;
    QLineEdit* txtflvvideobitrate;
    QLineEdit* txtflvaudiobitrate;
    QLineEdit* txtflvaudiochannels;

    QComboBox* swfSize_comb;
    QLineEdit* txtswfvideobitrate;
    QLineEdit* txtswfaudiobitrate;
    QLineEdit* txtswfaudiochannels;

    // The default recording area (the screen, then the main window's size).
    QLineEdit* txtwidth;
    QLineEdit* txtheight;

private:
    RecorderControl& m_recorder;
    Prompts& m_prompts;
};

} // namespace mirabend
