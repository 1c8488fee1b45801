#pragma once
// The "Overlay" page of the options window: a date/time stamp, a one- or
// two-line text in five styles and an image, all drawn by the recorder onto
// every frame. Each change is handed to the recorder from the handler of the
// field that changed, so what the page shows is what is drawn.
//
// Thread contract: UI thread only.

#include <QColor>
#include <QWidget>
#include <optional>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;
class QSlider;

namespace mirabend {

class Prompts;
class RecorderControl;

class OverlayOptions : public QWidget {
    Q_OBJECT
public:
    OverlayOptions(RecorderControl& recorder, Prompts& prompts, QWidget* parent = nullptr);

    // The style and pattern lists, the date formats, the fonts, with their
    // first choices; the image's transparent colour becomes black.
    void fillTextLists();
    void fillDateAndFontLists();
    void setImageTransparentColour(const QColor& colour);
    // Hands every colour the swatches show to the recorder.
    void handColours();

    void chkuseoverlay_Click();
    void chkshowdatetime_Click();
    void cboDateFormat_Click();
    void Command11_Click();
    void Command9_Click();
    void cbodatefontname_Click();
    void cbodatefontsize_Click();
    void cbodatefontstyle_Click();
    void chkshowtext_Click();
    void Command10_Click();
    void cbofontname_Click();
    void cbofontsize_Click();
    void cbofontstyle_Click();
    void cbotextstyle_Click();
    void cmdsolidfontcolor_Click();
    void cmdoutlineborder_Click();
    void cmdoutlineback_Click();
    void cbohashbrushstyle_Click();
    void cmdhashforecolor_Click();
    void cmdhashbackcolor_Click();
    void cmdtextureselimage_Click();
    void chkshowimage_Click();
    void Command4_Click();
    void cmdimagetrancolor_Click();
    void cmddrawimage_Click();

    // Every field the master switch turns on and off.
    QList<QWidget*> overlayFields() const;

    QCheckBox* chkuseoverlay;
    QCheckBox* chkshowdatetime;
    QComboBox* cboDateFormat;
    QLineEdit* txtdateleft;
    QLineEdit* txtdatetop;
    QComboBox* cbodatefontname;
    QComboBox* cbodatefontsize;
    QComboBox* cbodatefontstyle;
    QPushButton* Command9;
    QPushButton* Command11;

    QCheckBox* chkshowtext;
    QLineEdit* txtText;
    QLineEdit* txtText2;
    QLineEdit* txttextleft;
    QLineEdit* txttexttop;
    QComboBox* cbofontname;
    QComboBox* cbofontsize;
    QComboBox* cbofontstyle;
    QComboBox* cbotextstyle;
    QPushButton* cmdsolidfontcolor;
    QPushButton* cmdoutlineborder;
    QPushButton* cmdoutlineback;
    QComboBox* cbohashbrushstyle;
    QPushButton* cmdhashforecolor;
    QPushButton* cmdhashbackcolor;
    QPushButton* cmdtextureselimage;
    QLineEdit* txttextureimage;
    QPushButton* Command10;

    QCheckBox* chkshowimage;
    QLineEdit* txtimage;
    QLineEdit* txtimageleft;
    QLineEdit* txtimagetop;
    QPushButton* cmdimagetrancolor;
    QSlider* Slider1;
    QPushButton* Command4;
    QPushButton* cmddrawimage;

private:
    std::optional<QColor> askColour(const QColor& initial, const QString& title);
    void handHatch();
    void handTextColours();
    void applyStyleEnabling(int style);
    void swatch(QPushButton* button, const QColor& colour);

    RecorderControl& m_recorder;
    Prompts& m_prompts;
    // The swatches show these and setDevices hands them to the recorder, so
    // what the buttons show is what is drawn before any colour is picked.
    QColor m_dateColour = Qt::black;
    QColor m_solidColour = Qt::black;
    QColor m_outlineBorder = Qt::black;
    QColor m_outlineFill = Qt::white;
    QColor m_hatchFore = Qt::black;
    QColor m_hatchBack = Qt::white;
    QColor m_imageTransparent = Qt::black;
};

} // namespace mirabend
