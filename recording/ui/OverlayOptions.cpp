#include "recording/ui/OverlayOptions.h"

#include "recording/ui/NamedWidget.h"

#include "recording/ui/NumberField.h"
#include "recording/ui/OptionLists.h"
#include "recording/ui/RecorderControl.h"
#include "util/Prompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QVBoxLayout>

namespace mirabend {

namespace {

QLineEdit* posField(const char* name, const char* text, QWidget* parent) {
    auto* edit = named(new QLineEdit(QLatin1String(text), parent), name);
    edit->setMaximumWidth(60);
    return edit;
}

QLabel* label(const char* text, QWidget* parent) {
    return new QLabel(QLatin1String(text), parent);
}

constexpr int kReserved = 0;

enum TextStyleIndex { kNormal = 0, kOutline = 1, kFilledOutline = 2, kHatch = 3, kTexture = 4 };

} // namespace

OverlayOptions::OverlayOptions(RecorderControl& recorder, Prompts& prompts, QWidget* parent)
    : QWidget(parent)
    , m_recorder(recorder)
    , m_prompts(prompts) {
    setObjectName(QStringLiteral("overlayPage"));
    chkuseoverlay =
        named(new QCheckBox(QStringLiteral("Draw Overlay Text/Image or Date Time"), this), "chkuseoverlay");

    auto* dateBox = new QGroupBox(QStringLiteral("Date and time"), this);
    chkshowdatetime = named(new QCheckBox(QStringLiteral("Show Date Time"), dateBox), "chkshowdatetime");
    cboDateFormat = named(new QComboBox(dateBox), "cboDateFormat");
    txtdateleft = posField("txtdateleft", "10", dateBox);
    txtdatetop = posField("txtdatetop", "10", dateBox);
    cbodatefontname = named(new QComboBox(dateBox), "cbodatefontname");
    cbodatefontsize = named(new QComboBox(dateBox), "cbodatefontsize");
    cbodatefontstyle = named(new QComboBox(dateBox), "cbodatefontstyle");
    Command9 = named(new QPushButton(QStringLiteral("change"), dateBox), "Command9");
    Command11 = named(new QPushButton(QStringLiteral("Draw Time"), dateBox), "Command11");
    auto* dateGrid = new QGridLayout(dateBox);
    dateGrid->addWidget(chkshowdatetime, 0, 0, 1, 2);
    dateGrid->addWidget(label("Format:", dateBox), 1, 0);
    dateGrid->addWidget(cboDateFormat, 1, 1, 1, 3);
    dateGrid->addWidget(label("Left:", dateBox), 2, 0);
    dateGrid->addWidget(txtdateleft, 2, 1);
    dateGrid->addWidget(label("Top:", dateBox), 2, 2);
    dateGrid->addWidget(txtdatetop, 2, 3);
    dateGrid->addWidget(label("Font:", dateBox), 3, 0);
    dateGrid->addWidget(cbodatefontname, 3, 1);
    dateGrid->addWidget(cbodatefontsize, 3, 2);
    dateGrid->addWidget(cbodatefontstyle, 3, 3);
    dateGrid->addWidget(label("Colour:", dateBox), 4, 0);
    dateGrid->addWidget(Command9, 4, 1);
    dateGrid->addWidget(Command11, 4, 3);

    auto* textBox = new QGroupBox(QStringLiteral("Text"), this);
    chkshowtext = named(new QCheckBox(QStringLiteral("Show Text"), textBox), "chkshowtext");
    txtText = named(new QLineEdit(textBox), "txtText");
    txtText2 = named(new QLineEdit(textBox), "txtText2");
    txttextleft = posField("txttextleft", "10", textBox);
    txttexttop = posField("txttexttop", "60", textBox);
    cbofontname = named(new QComboBox(textBox), "cbofontname");
    cbofontsize = named(new QComboBox(textBox), "cbofontsize");
    cbofontstyle = named(new QComboBox(textBox), "cbofontstyle");
    cbotextstyle = named(new QComboBox(textBox), "cbotextstyle");
    cmdsolidfontcolor = named(new QPushButton(QStringLiteral("Text colour"), textBox), "cmdsolidfontcolor");
    cmdoutlineborder = named(new QPushButton(QStringLiteral("Outline"), textBox), "cmdoutlineborder");
    cmdoutlineback = named(new QPushButton(QStringLiteral("Fill"), textBox), "cmdoutlineback");
    cbohashbrushstyle = named(new QComboBox(textBox), "cbohashbrushstyle");
    cmdhashforecolor = named(new QPushButton(QStringLiteral("Fore"), textBox), "cmdhashforecolor");
    cmdhashbackcolor = named(new QPushButton(QStringLiteral("Back"), textBox), "cmdhashbackcolor");
    cmdtextureselimage = named(new QPushButton(QStringLiteral("Texture..."), textBox), "cmdtextureselimage");
    txttextureimage = named(new QLineEdit(textBox), "txttextureimage");
    Command10 = named(new QPushButton(QStringLiteral("Draw Text"), textBox), "Command10");
    auto* textGrid = new QGridLayout(textBox);
    textGrid->addWidget(chkshowtext, 0, 0, 1, 2);
    textGrid->addWidget(label("Line 1:", textBox), 1, 0);
    textGrid->addWidget(txtText, 1, 1, 1, 3);
    textGrid->addWidget(label("Line 2:", textBox), 2, 0);
    textGrid->addWidget(txtText2, 2, 1, 1, 3);
    textGrid->addWidget(label("Left:", textBox), 3, 0);
    textGrid->addWidget(txttextleft, 3, 1);
    textGrid->addWidget(label("Top:", textBox), 3, 2);
    textGrid->addWidget(txttexttop, 3, 3);
    textGrid->addWidget(label("Font:", textBox), 4, 0);
    textGrid->addWidget(cbofontname, 4, 1);
    textGrid->addWidget(cbofontsize, 4, 2);
    textGrid->addWidget(cbofontstyle, 4, 3);
    textGrid->addWidget(label("Style:", textBox), 5, 0);
    textGrid->addWidget(cbotextstyle, 5, 1);
    textGrid->addWidget(cmdsolidfontcolor, 5, 2);
    textGrid->addWidget(label("Outline:", textBox), 6, 0);
    textGrid->addWidget(cmdoutlineborder, 6, 1);
    textGrid->addWidget(cmdoutlineback, 6, 2);
    textGrid->addWidget(label("Hatch:", textBox), 7, 0);
    textGrid->addWidget(cbohashbrushstyle, 7, 1);
    textGrid->addWidget(cmdhashforecolor, 7, 2);
    textGrid->addWidget(cmdhashbackcolor, 7, 3);
    textGrid->addWidget(label("Texture:", textBox), 8, 0);
    textGrid->addWidget(txttextureimage, 8, 1, 1, 2);
    textGrid->addWidget(cmdtextureselimage, 8, 3);
    textGrid->addWidget(Command10, 9, 3);

    auto* imageBox = new QGroupBox(QStringLiteral("Image"), this);
    chkshowimage = named(new QCheckBox(QStringLiteral("Show Image"), imageBox), "chkshowimage");
    txtimage = named(new QLineEdit(imageBox), "txtimage");
    txtimageleft = posField("txtimageleft", "10", imageBox);
    txtimagetop = posField("txtimagetop", "120", imageBox);
    cmdimagetrancolor =
        named(new QPushButton(QStringLiteral("Transparent colour"), imageBox), "cmdimagetrancolor");
    Slider1 = named(new QSlider(Qt::Horizontal, imageBox), "Slider1");
    Slider1->setRange(0, 100);
    Command4 = named(new QPushButton(QStringLiteral("Select Image"), imageBox), "Command4");
    cmddrawimage = named(new QPushButton(QStringLiteral("Draw Image"), imageBox), "cmddrawimage");
    auto* imageGrid = new QGridLayout(imageBox);
    imageGrid->addWidget(chkshowimage, 0, 0, 1, 2);
    imageGrid->addWidget(label("File:", imageBox), 1, 0);
    imageGrid->addWidget(txtimage, 1, 1, 1, 2);
    imageGrid->addWidget(Command4, 1, 3);
    imageGrid->addWidget(label("Left:", imageBox), 2, 0);
    imageGrid->addWidget(txtimageleft, 2, 1);
    imageGrid->addWidget(label("Top:", imageBox), 2, 2);
    imageGrid->addWidget(txtimagetop, 2, 3);
    imageGrid->addWidget(label("Transparency:", imageBox), 3, 0);
    imageGrid->addWidget(Slider1, 3, 1, 1, 2);
    imageGrid->addWidget(cmdimagetrancolor, 4, 1, 1, 2);
    imageGrid->addWidget(cmddrawimage, 4, 3);

    auto* layout = new QGridLayout(this);
    layout->addWidget(chkuseoverlay, 0, 0, 1, 2);
    layout->addWidget(dateBox, 1, 0);
    layout->addWidget(imageBox, 2, 0);
    layout->addWidget(textBox, 1, 1, 2, 1);
    layout->setRowStretch(3, 1);

    swatch(Command9, m_dateColour);
    swatch(cmdsolidfontcolor, m_solidColour);
    swatch(cmdoutlineborder, m_outlineBorder);
    swatch(cmdoutlineback, m_outlineFill);
    swatch(cmdhashforecolor, m_hatchFore);
    swatch(cmdhashbackcolor, m_hatchBack);
    swatch(cmdimagetrancolor, m_imageTransparent);

    using Box = QComboBox;
    const auto onIndex = [this](Box* box, void (OverlayOptions::*handler)()) {
        connect(box, qOverload<int>(&Box::currentIndexChanged), this,
                [this, handler] { (this->*handler)(); });
    };
    const auto onClick = [this](QAbstractButton* button, void (OverlayOptions::*handler)()) {
        connect(button, &QAbstractButton::clicked, this, [this, handler] { (this->*handler)(); });
    };
    onClick(chkuseoverlay, &OverlayOptions::chkuseoverlay_Click);
    onClick(chkshowdatetime, &OverlayOptions::chkshowdatetime_Click);
    onIndex(cboDateFormat, &OverlayOptions::cboDateFormat_Click);
    onClick(Command11, &OverlayOptions::Command11_Click);
    onClick(Command9, &OverlayOptions::Command9_Click);
    onIndex(cbodatefontname, &OverlayOptions::cbodatefontname_Click);
    onIndex(cbodatefontsize, &OverlayOptions::cbodatefontsize_Click);
    onIndex(cbodatefontstyle, &OverlayOptions::cbodatefontstyle_Click);
    onClick(chkshowtext, &OverlayOptions::chkshowtext_Click);
    onClick(Command10, &OverlayOptions::Command10_Click);
    onIndex(cbofontname, &OverlayOptions::cbofontname_Click);
    onIndex(cbofontsize, &OverlayOptions::cbofontsize_Click);
    onIndex(cbofontstyle, &OverlayOptions::cbofontstyle_Click);
    onIndex(cbotextstyle, &OverlayOptions::cbotextstyle_Click);
    onClick(cmdsolidfontcolor, &OverlayOptions::cmdsolidfontcolor_Click);
    onClick(cmdoutlineborder, &OverlayOptions::cmdoutlineborder_Click);
    onClick(cmdoutlineback, &OverlayOptions::cmdoutlineback_Click);
    onIndex(cbohashbrushstyle, &OverlayOptions::cbohashbrushstyle_Click);
    onClick(cmdhashforecolor, &OverlayOptions::cmdhashforecolor_Click);
    onClick(cmdhashbackcolor, &OverlayOptions::cmdhashbackcolor_Click);
    onClick(cmdtextureselimage, &OverlayOptions::cmdtextureselimage_Click);
    onClick(chkshowimage, &OverlayOptions::chkshowimage_Click);
    onClick(Command4, &OverlayOptions::Command4_Click);
    onClick(cmdimagetrancolor, &OverlayOptions::cmdimagetrancolor_Click);
    onClick(cmddrawimage, &OverlayOptions::cmddrawimage_Click);
}

QList<QWidget*> OverlayOptions::overlayFields() const {
    return {chkshowdatetime, cboDateFormat,     txtdateleft,      txtdatetop,        cbodatefontname,
            cbodatefontsize, cbodatefontstyle,  Command9,         Command11,         chkshowtext,
            txtText,         txtText2,          txttextleft,      txttexttop,        cbofontname,
            cbofontsize,     cbofontstyle,      cbotextstyle,     cmdsolidfontcolor, cmdoutlineborder,
            cmdoutlineback,  cbohashbrushstyle, cmdhashforecolor, cmdhashbackcolor,  cmdtextureselimage,
            txttextureimage, Command10,         chkshowimage,     txtimage,          txtimageleft,
            txtimagetop,     cmdimagetrancolor, Slider1,          Command4,          cmddrawimage};
}

void OverlayOptions::fillTextLists() {
    cbotextstyle->clear();
    cbotextstyle->addItems(m_recorder.textStyleNames());
    cbotextstyle->setCurrentIndex(cbotextstyle->count() > 0 ? 0 : -1);
    cbohashbrushstyle->clear();
    cbohashbrushstyle->addItems(m_recorder.hatchStyleNames());
    cbohashbrushstyle->setCurrentIndex(cbohashbrushstyle->count() > 0 ? 0 : -1);
    cboDateFormat->clear();
    cboDateFormat->addItems(m_recorder.dateFormatNames());
}

void OverlayOptions::fillDateAndFontLists() {
    cboDateFormat->setCurrentIndex(cboDateFormat->count() > 7 ? 7 : cboDateFormat->count() - 1);
    for (QComboBox* sizes : {cbofontsize, cbodatefontsize}) {
        sizes->clear();
        sizes->addItems(options::fontSizes());
        sizes->setCurrentIndex(10);
    }
    for (QComboBox* styles : {cbofontstyle, cbodatefontstyle}) {
        styles->clear();
        styles->addItems(options::fontStyles());
        styles->setCurrentIndex(0);
    }
    for (QComboBox* names : {cbofontname, cbodatefontname}) {
        names->clear();
        names->addItems(options::fontNames());
        names->setCurrentIndex(0);
    }
}

void OverlayOptions::setImageTransparentColour(const QColor& colour) {
    m_imageTransparent = colour;
    swatch(cmdimagetrancolor, m_imageTransparent);
}

void OverlayOptions::handColours() {
    m_recorder.DateColor(m_dateColour.rgb());
    handTextColours();
    handHatch();
}

void OverlayOptions::swatch(QPushButton* button, const QColor& colour) {
    QPixmap chip(14, 14);
    chip.fill(colour);
    button->setIcon(QIcon(chip));
}

std::optional<QColor> OverlayOptions::askColour(const QColor& initial, const QString& title) {
    return m_prompts.chooseColor(initial, title);
}

void OverlayOptions::chkuseoverlay_Click() {
    const bool on = chkuseoverlay->isChecked();
    for (QWidget* w : overlayFields())
        w->setEnabled(on);
    // With the master switch off nothing may be drawn, whatever the three
    // show switches say; switching it on again restores what they say.
    m_recorder.ShowDateTime(on && chkshowdatetime->isChecked());
    m_recorder.ShowText(on && chkshowtext->isChecked());
    m_recorder.ShowImage(on && chkshowimage->isChecked());
}

void OverlayOptions::chkshowdatetime_Click() {
    m_recorder.ShowDateTime(chkshowdatetime->isChecked());
}

void OverlayOptions::cboDateFormat_Click() {
    if (cboDateFormat->currentIndex() < 0)
        return;
    Command11_Click();
}

void OverlayOptions::Command11_Click() {
    const auto left = readInteger(txtdateleft, QStringLiteral("date left position"), m_prompts);
    if (!left)
        return;
    const auto top = readInteger(txtdatetop, QStringLiteral("date top position"), m_prompts);
    if (!top)
        return;
    m_recorder.DateTimeLayout(cboDateFormat->currentIndex(), *left, *top);
}

void OverlayOptions::Command9_Click() {
    if (const auto colour = askColour(m_dateColour, QStringLiteral("Date colour"))) {
        m_dateColour = *colour;
        swatch(Command9, m_dateColour);
        m_recorder.DateColor(m_dateColour.rgb());
    }
}

void OverlayOptions::cbodatefontname_Click() {
    if (cbodatefontname->currentIndex() < 0 || cbodatefontsize->currentIndex() < 0)
        return;
    m_recorder.DateFontName(cbodatefontname->currentText());
    m_recorder.DateFontSize(cbodatefontsize->currentText().toInt());
}

// A size change hands the font name again, before the size.
void OverlayOptions::cbodatefontsize_Click() {
    cbodatefontname_Click();
}

void OverlayOptions::cbodatefontstyle_Click() {
    if (cbodatefontstyle->currentIndex() >= 0)
        m_recorder.DateFontStyle(cbodatefontstyle->currentIndex());
}

void OverlayOptions::chkshowtext_Click() {
    m_recorder.ShowText(chkshowtext->isChecked());
}

void OverlayOptions::Command10_Click() {
    const auto left = readInteger(txttextleft, QStringLiteral("text left position"), m_prompts);
    if (!left)
        return;
    const auto top = readInteger(txttexttop, QStringLiteral("text top position"), m_prompts);
    if (!top)
        return;
    const QString text = txtText->text().trimmed() + QChar(10) + QChar(13) + txtText2->text().trimmed();
    m_recorder.Text(text, *left, *top, kReserved);
}

void OverlayOptions::cbofontname_Click() {
    if (cbofontname->currentIndex() < 0 || cbofontsize->currentIndex() < 0)
        return;
    m_recorder.TextFontName(cbofontname->currentText(), std::max(0, cbofontstyle->currentIndex()));
    m_recorder.TextFontSize(cbofontsize->currentText().toInt(), kReserved);
}

void OverlayOptions::cbofontsize_Click() {
    if (cbofontsize->currentIndex() >= 0)
        m_recorder.TextFontSize(cbofontsize->currentText().toInt(), kReserved);
}

void OverlayOptions::cbofontstyle_Click() {
    if (cbofontname->currentIndex() >= 0 && cbofontstyle->currentIndex() >= 0)
        m_recorder.TextFontName(cbofontname->currentText(), cbofontstyle->currentIndex());
}

void OverlayOptions::cbotextstyle_Click() {
    const int style = cbotextstyle->currentIndex();
    if (style < 0)
        return;
    m_recorder.TextStyle(style, kReserved);
    applyStyleEnabling(style);
}

void OverlayOptions::applyStyleEnabling(int style) {
    const QList<QWidget*> hatch = {cbohashbrushstyle, cmdhashforecolor, cmdhashbackcolor};
    const QList<QWidget*> texture = {cmdtextureselimage, txttextureimage};
    const auto set = [](const QList<QWidget*>& widgets, bool on) {
        for (QWidget* w : widgets)
            w->setEnabled(on);
    };
    switch (style) {
    case kNormal:
        cmdsolidfontcolor->setEnabled(true);
        set(hatch, false);
        set(texture, false);
        set({cmdoutlineborder, cmdoutlineback}, false);
        break;
    case kOutline:
        cmdoutlineborder->setEnabled(true);
        set({cmdsolidfontcolor, cmdoutlineback}, false);
        set(hatch, false);
        set(texture, false);
        break;
    case kFilledOutline:
        set({cmdoutlineborder, cmdoutlineback}, true);
        cmdsolidfontcolor->setEnabled(false);
        set(hatch, false);
        set(texture, false);
        break;
    case kHatch:
        set(hatch, true);
        cmdsolidfontcolor->setEnabled(false);
        set(texture, false);
        set({cmdoutlineborder, cmdoutlineback}, false);
        break;
    case kTexture:
        // The outline buttons keep whatever state they had.
        set(texture, true);
        cmdsolidfontcolor->setEnabled(false);
        set(hatch, false);
        break;
    default:
        break;
    }
}

void OverlayOptions::handTextColours() {
    m_recorder.TextColors(m_solidColour.rgb(), m_outlineBorder.rgb(), m_outlineFill.rgb());
}

void OverlayOptions::cmdsolidfontcolor_Click() {
    if (const auto colour = askColour(m_solidColour, QStringLiteral("Text colour"))) {
        m_solidColour = *colour;
        swatch(cmdsolidfontcolor, m_solidColour);
        handTextColours();
    }
}

void OverlayOptions::cmdoutlineborder_Click() {
    if (const auto colour = askColour(m_outlineBorder, QStringLiteral("Outline colour"))) {
        m_outlineBorder = *colour;
        swatch(cmdoutlineborder, m_outlineBorder);
        handTextColours();
    }
}

void OverlayOptions::cmdoutlineback_Click() {
    if (const auto colour = askColour(m_outlineFill, QStringLiteral("Outline fill colour"))) {
        m_outlineFill = *colour;
        swatch(cmdoutlineback, m_outlineFill);
        handTextColours();
    }
}

void OverlayOptions::handHatch() {
    if (cbohashbrushstyle->currentIndex() >= 0)
        m_recorder.HatchBrush(m_hatchFore.rgb(), m_hatchBack.rgb(), cbohashbrushstyle->currentIndex(),
                              kReserved);
}

void OverlayOptions::cbohashbrushstyle_Click() {
    handHatch();
}

void OverlayOptions::cmdhashforecolor_Click() {
    if (const auto colour = askColour(m_hatchFore, QStringLiteral("Hatch colour"))) {
        m_hatchFore = *colour;
        swatch(cmdhashforecolor, m_hatchFore);
        handHatch();
    }
}

void OverlayOptions::cmdhashbackcolor_Click() {
    if (const auto colour = askColour(m_hatchBack, QStringLiteral("Hatch background colour"))) {
        m_hatchBack = *colour;
        swatch(cmdhashbackcolor, m_hatchBack);
        handHatch();
    }
}

void OverlayOptions::cmdtextureselimage_Click() {
    FileRequest request;
    request.title = QStringLiteral("Select Texture Image");
    request.filter = QString::fromLatin1(options::kImageFilter);
    const FileAnswer answer = m_prompts.openFile(request);
    if (!answer.accepted())
        return;
    txttextureimage->setText(answer.fileName);
    m_recorder.TextureImage(answer.fileName, kReserved);
}

void OverlayOptions::chkshowimage_Click() {
    m_recorder.ShowImage(chkshowimage->isChecked());
}

void OverlayOptions::Command4_Click() {
    FileRequest request;
    request.title = QStringLiteral("Select Image");
    request.filter = QString::fromLatin1(options::kImageFilter);
    const FileAnswer answer = m_prompts.openFile(request);
    if (!answer.accepted())
        return;
    txtimage->setText(answer.fileName);
    cmddrawimage_Click();
}

void OverlayOptions::cmdimagetrancolor_Click() {
    if (const auto colour = askColour(m_imageTransparent, QStringLiteral("Transparent colour"))) {
        setImageTransparentColour(*colour);
        cmddrawimage_Click();
    }
}

void OverlayOptions::cmddrawimage_Click() {
    const auto left = readInteger(txtimageleft, QStringLiteral("image left position"), m_prompts);
    if (!left)
        return;
    const auto top = readInteger(txtimagetop, QStringLiteral("image top position"), m_prompts);
    if (!top)
        return;
    m_recorder.Image(txtimage->text(), m_imageTransparent.rgb(), *left, *top, Slider1->value(), kReserved);
}

} // namespace mirabend
