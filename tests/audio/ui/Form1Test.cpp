// The recorder window's rules and messages, over the mixer test devices.
// Recording itself is exercised against PulseAudio in Form1RecordingTest.
#include "audio/ui/Form1.h"

#include "SoundSandbox.h"
#include "audio/core/WavRepair.h"
#include "audio/ui/FormatChooserDialog.h"
#include "support/ScriptedPrompts.h"
#include "support/WavFile.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>

namespace mirabend {
namespace {

class ScriptedChooser final : public FormatChooser {
public:
    std::optional<std::size_t> choose(const std::vector<FormatChoice>& formats, const std::string&) override {
        offered = formats;
        if (wanted.empty())
            return std::nullopt;
        for (std::size_t i = 0; i < formats.size(); ++i) {
            if (formats[i].tagName == wanted)
                return i;
        }
        return std::nullopt;
    }
    std::string wanted;
    std::vector<FormatChoice> offered;
};

class Form1Test : public ::testing::Test {
protected:
    std::unique_ptr<Form1> open(const QString& file = {}) {
        Form1Setup setup;
        setup.prompts = &prompts;
        setup.chooser = &chooser;
        setup.audioFile = file.isEmpty() ? QString::fromStdString(sandbox.home() + "/take.wav") : file;
        return std::make_unique<Form1>(setup);
    }

    void choose(Form1& form, const QString& deviceName) {
        const int index = form.cboDev->findText(deviceName);
        ASSERT_GE(index, 0) << deviceName.toStdString();
        form.cboDev->setCurrentIndex(index);
        form.cboDev_Click();
    }

    QStringList messageTexts() const {
        QStringList texts;
        for (const MessageRequest& m : prompts.messages)
            texts << m.text;
        return texts;
    }

    test::SoundSandbox sandbox{MIXTEST_PLUGIN};
    test::ScriptedPrompts prompts;
    ScriptedChooser chooser;
};

TEST_F(Form1Test, LoadsWithTheDesignedDefaults) {
    auto form = open();
    EXPECT_EQ(form->txtWAVFmt->text(), "PCM - 44.1 kHz 16 Bit Stereo");
    EXPECT_EQ(form->dsp().samplerate(), 44100);
    EXPECT_EQ(form->dsp().Channels(), 2);
    EXPECT_GE(form->cboDev->findText("Test card with an input source"), 0); // cut to the 32-character field
    EXPECT_EQ(form->cboDev->currentIndex(), 0);

    Form1Setup plain;
    plain.prompts = &prompts;
    plain.chooser = &chooser;
    Form1 defaults(plain);
    EXPECT_TRUE(defaults.txtFile->text().endsWith("/textAudio")) << defaults.txtFile->text().toStdString();
}

TEST_F(Form1Test, SampleRateTakesAtMostFiveDigits) {
    auto form = open();
    form->show();
    QLineEdit* edit = form->cboSamplerate->lineEdit();
    edit->setFocus();
    edit->clear();
    QTest::keyClicks(edit, "2x2,0 5a0");
    EXPECT_EQ(form->cboSamplerate->currentText(), "22050");
    QTest::keyClick(edit, Qt::Key_1);
    EXPECT_EQ(form->cboSamplerate->currentText(), "22050");
    QTest::keyClick(edit, Qt::Key_Backspace);
    EXPECT_EQ(form->cboSamplerate->currentText(), "2205");
    QTest::keyClicks(edit, "99");
    EXPECT_EQ(form->cboSamplerate->currentText(), "22059");
}

TEST_F(Form1Test, DeviceChoiceShowsTheMixersSourceAndVolume) {
    auto form = open();
    choose(*form, "Test card with capture switches");
    ASSERT_EQ(form->cboRecLine->count(), 3);
    EXPECT_EQ(form->cboRecLine->currentText(), "Line");
    EXPECT_EQ(form->sldVol->maximum(), 31);
    EXPECT_EQ(form->sldVol->value(), 11);
    EXPECT_EQ(form->lblVolPer->text(), "35%");

    form->cboRecLine->setCurrentIndex(form->cboRecLine->findText("Mic"));
    form->cboRecLine_Click();
    EXPECT_EQ(sandbox.saved("switches", "Capture Source"), "0 0");
    EXPECT_EQ(form->sldVol->value(), 10);

    form->sldVol->setValue(31);
    EXPECT_EQ(sandbox.saved("switches", "Mic Capture Volume"), "31 31");
    EXPECT_EQ(form->lblVolPer->text(), "100%");
    EXPECT_EQ(sandbox.saved("switches", "Line Capture Volume"), "11 11");

    choose(*form, "Test sound server");
    EXPECT_EQ(form->cboRecLine->count(), 1);
    EXPECT_EQ(form->sldVol->maximum(), 65536);
    form->sldVol->setValue(32768);
    EXPECT_EQ(form->lblVolPer->text(), "50%");
    EXPECT_EQ(sandbox.saved("server", "Capture Volume"), "32768 32768");

    // A refused device is reported and leaves no sources.
    prompts.messages.clear();
    choose(*form, "Test card without mixer");
    ASSERT_EQ(prompts.messages.size(), 1);
    EXPECT_EQ(prompts.messages[0].text, "Couldn't select device!");
    EXPECT_EQ(prompts.messages[0].title, "Mirabend 1.0");
    EXPECT_EQ(prompts.messages[0].icon, PromptIcon::Exclamation);
    EXPECT_EQ(form->cboRecLine->count(), 0);
    EXPECT_FALSE(form->sldVol->isEnabled());
}

TEST_F(Form1Test, DoButtonMessagesWhenRecordingCannotStart) {
    auto form = open();
    prompts.messages.clear();

    form->txtFile->clear();
    QTest::mouseClick(form->cmdDo, Qt::LeftButton);
    EXPECT_TRUE(prompts.messages.isEmpty()); // no file: nothing happens

    form->txtFile->setText(QString::fromStdString(sandbox.home() + "/take.wav"));
    form->cboDev->setCurrentIndex(-1);
    QTest::mouseClick(form->cmdDo, Qt::LeftButton);
    EXPECT_EQ(messageTexts(), QStringList{"No device selected!"});

    choose(*form, "Test card that fails");
    prompts.messages.clear();
    form->txtFile->setText(QString::fromStdString(sandbox.home() + "/no/such/folder/take.wav"));
    QTest::mouseClick(form->cmdDo, Qt::LeftButton);
    EXPECT_EQ(messageTexts(), QStringList{"Could not init the encoder!"});

    prompts.messages.clear();
    form->txtFile->setText(QString::fromStdString(sandbox.home() + "/take.wav"));
    QTest::mouseClick(form->cmdDo, Qt::LeftButton);
    EXPECT_EQ(messageTexts(), QStringList{"Could not start recording!"});
    EXPECT_EQ(form->cmdDo->text(), "Start Test");
    EXPECT_TRUE(form->frmInp->isEnabled());
    EXPECT_TRUE(form->frmOut->isEnabled());
    EXPECT_FALSE(form->clsRecorder().recorder().IsRecording());
    EXPECT_FALSE(form->encoder().isOpen());

    prompts.messages.clear();
    form->cboSamplerate->setCurrentText("");
    QTest::mouseClick(form->cmdDo, Qt::LeftButton);
    EXPECT_EQ(messageTexts(), QStringList{"Could not init the encoder!"});
}

TEST_F(Form1Test, EffectBoxesAndFormatChoicesReachTheEffects) {
    auto form = open();
    for (const auto& [box, effects] : {std::pair{2, 4}, {0, 5}, {2, 1}, {3, 9}}) {
        form->chkFX[box]->click();
        EXPECT_EQ(form->dsp().EffectsUsed(), effects) << "after box " << box;
    }
    form->cboSamplerate->setCurrentText("22050");
    Q_EMIT form->cboSamplerate->textActivated("22050");
    EXPECT_EQ(form->dsp().samplerate(), 22050);
    form->chkStereo->click();
    EXPECT_EQ(form->dsp().Channels(), 1);
    EXPECT_EQ(form->txtWAVFmt->text(), "PCM - 44.1 kHz 16 Bit Stereo"); // the format button's action is empty
}

TEST_F(Form1Test, FormatChooserAndBrowseSetTheOutputOrKeepItWhenCancelled) {
    auto form = open();
    form->cmdSelFmt->click();
    EXPECT_FALSE(chooser.offered.empty());
    EXPECT_EQ(form->txtWAVFmt->text(), "PCM - 44.1 kHz 16 Bit Stereo");

    chooser.wanted = "IMA ADPCM";
    form->cmdSelFmt->click();
    EXPECT_TRUE(form->txtWAVFmt->text().startsWith("IMA ADPCM - ")) << form->txtWAVFmt->text().toStdString();
    EXPECT_EQ(form->encoder().FormatTag(), "IMA ADPCM");

    // Browsing offers wave files and takes the answer; cancelled, the name stays.
    prompts.answerFile("/tmp/elsewhere.wav");
    form->cmdBrowse->click();
    form->cmdBrowse->click();
    ASSERT_EQ(prompts.saveRequests.size(), 2);
    EXPECT_EQ(prompts.saveRequests[0].filter, "Wave ACM Encoder (*.wav)|*.wav");
    EXPECT_EQ(prompts.saveRequests[0].defaultExtension, ".wav");
    EXPECT_EQ(form->txtFile->text(), "/tmp/elsewhere.wav");
}

TEST_F(Form1Test, OffersToRepairAnUnfinishedRecording) {
    const std::string file = sandbox.home() + "/unfinished.wav";
    std::ofstream(file, std::ios::binary) << std::string(46, '\0') << std::string(4000, '\x11');
    // The first device may complain at load (a sound server that is not
    // running); its message takes the first answer.
    open();
    const bool loadComplains = !prompts.messages.isEmpty();
    for (const PromptAnswer answer : {PromptAnswer::No, PromptAnswer::Yes, PromptAnswer::Ok}) {
        prompts.messages.clear();
        if (loadComplains)
            prompts.answerMessage(PromptAnswer::Ok);
        prompts.answerMessage(answer);
        open(QString::fromStdString(file));
        const auto questions =
            std::count_if(prompts.messages.begin(), prompts.messages.end(),
                          [](const MessageRequest& m) { return m.buttons == PromptButtons::YesNo; });
        // Asked until repaired; a complete file asks nothing.
        EXPECT_EQ(questions, answer == PromptAnswer::Ok ? 0 : 1) << int(answer);
        EXPECT_EQ(hasReservedHeader(file), answer == PromptAnswer::No) << int(answer);
    }
    EXPECT_TRUE(test::readWav(file).consistent());
}

TEST(FormatChooserDialogTest, CancellingAnswers11) {
    EncoderWAV encoder;
    QWidget owner;
    QtFormatChooser chooser(&owner);
    QTimer::singleShot(0, [] {
        auto* dialog = qobject_cast<FormatChooserDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        EXPECT_GT(dialog->list()->topLevelItemCount(), 3);
        EXPECT_EQ(dialog->windowTitle(), "Pick one");
        dialog->reject();
    });
    EXPECT_EQ(encoder.SelectFormat(44100, 2, chooser, "Pick one"), 11);
    EXPECT_EQ(encoder.FormatTag(), "PCM");

    QTimer::singleShot(0, [] {
        auto* dialog = qobject_cast<FormatChooserDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        QTreeWidget* list = dialog->list();
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            if (list->topLevelItem(i)->text(0) == "CCITT A-Law")
                list->setCurrentItem(list->topLevelItem(i));
        }
        dialog->accept();
    });
    EXPECT_EQ(encoder.SelectFormat(44100, 2, chooser, "Pick one"), 0);
    EXPECT_EQ(encoder.FormatTag(), "CCITT A-Law");
}

} // namespace
} // namespace mirabend
