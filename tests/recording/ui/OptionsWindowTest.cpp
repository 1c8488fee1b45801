// The options window as it first appears, its lists, and the rules by which
// its check boxes and lists switch other fields on and off.
#include "RecordingFakes.h"
#include "recording/ui/CaptureOptions_frm.h"
#include "recording/ui/DeviceOptions.h"
#include "recording/ui/FormatOptions.h"
#include "recording/ui/OverlayOptions.h"
#include "support/ChildProcess.h"
#include "support/FakeClock.h"
#include "support/ScriptedPrompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QThread>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sys/stat.h>

namespace mirabend::test {
namespace {

QStringList items(const QComboBox* box) {
    QStringList list;
    for (int i = 0; i < box->count(); ++i)
        list << box->itemText(i);
    return list;
}

class OptionsWindow : public ::testing::Test {
protected:
    void open() { form = std::make_unique<CaptureOptions_frm>(host, recorder, prompts, clock); }
    void SetUp() override { open(); }

    FakeRecorder recorder;
    FakeHost host;
    ScriptedPrompts prompts;
    FakeClock clock;
    std::unique_ptr<CaptureOptions_frm> form;
};

TEST_F(OptionsWindow, FormatPageStartsWithTheDesignedValues) {
    const FormatOptions& f = form->format();
    const QStringList sizes = {"320x240 Low Quality", "640x480 Hight Qaulity", "800x600 High Quality"};
    EXPECT_EQ(items(f.aviSize_comb), sizes + QStringList({"1024x768 HD", "1280x960 HD"}));
    EXPECT_EQ(items(f.flvSize_comb), sizes + QStringList({"1024x768 HD"}));
    EXPECT_EQ(items(f.swfSize_comb), sizes + QStringList({"1024x768 High Quality"}));
    for (const QComboBox* box : {f.aviSize_comb, f.flvSize_comb, f.swfSize_comb})
        EXPECT_EQ(box->currentIndex(), 1) << box->objectName().toStdString();
    EXPECT_EQ(f.cboavimp3samplerate->currentText(), "44100");
    EXPECT_EQ(f.cboavimp3channel->currentText(), "Stereo");
    EXPECT_EQ(f.txtavimp3bitrate->text(), "128");
    EXPECT_EQ(f.txtflvaudiochannels->text(), "2");
    EXPECT_EQ(f.cbocustomprofile->count(), 5);
    EXPECT_EQ(f.cbocustomprofile->currentText(), "Window Media Video/Audio 9 for 640x480");
    EXPECT_EQ(items(f.cboWMV), recorder.profiles);
    EXPECT_EQ(f.cboWMV->currentIndex(), 0);
    // The main window's size; filling the lists again shows the screen's.
    EXPECT_EQ(f.txtwidth->text(), "1024");
    EXPECT_EQ(f.txtheight->text(), "768");
    form->setDevices();
    EXPECT_EQ(f.txtwidth->text(), "1280");
    EXPECT_EQ(f.txtheight->text(), "1024");
    form->setDefaultArea(900, 700);
    EXPECT_EQ(f.txtwidth->text(), "900");
    EXPECT_EQ(f.txtheight->text(), "700");
}

TEST_F(OptionsWindow, CapturePageStartsWithTheRecordersListsAndPreferredCompressors) {
    const DeviceOptions& d = form->devices();
    EXPECT_EQ(d.txtwinhandle->text(), "4242");
    EXPECT_EQ(items(d.cboVideoCompressor), recorder.videoList);
    EXPECT_TRUE(d.chkUseVideoComp->isChecked());
    EXPECT_TRUE(d.chkuseAudioComp->isChecked());
    EXPECT_EQ(items(d.cboaudiodevice), recorder.devices);
    EXPECT_EQ(d.cboaudiodevice->currentIndex(), 0);
    EXPECT_EQ(items(d.cboaudioinputpin), QStringList({"Line"}));
    EXPECT_EQ(d.txtzoomright->text(), "400");
    EXPECT_EQ(d.txtzoombottom->text(), "300");
    EXPECT_EQ(d.cmdZoomOut->text(), "Zomm out to full screen");
    // PCM is selected, so the MP3 fields are off.
    EXPECT_FALSE(form->format().txtavimp3bitrate->isEnabled());
}

TEST_F(OptionsWindow, OverlayPageStartsWithItsListsAndEverythingSwitchedOff) {
    const OverlayOptions& o = form->overlay();
    EXPECT_EQ(items(o.cbotextstyle), recorder.textStyles);
    EXPECT_EQ(o.cbotextstyle->currentIndex(), 0);
    EXPECT_EQ(items(o.cbohashbrushstyle), recorder.hatchStyles);
    EXPECT_EQ(o.cboDateFormat->currentIndex(), 7);
    for (const QComboBox* sizes : {o.cbofontsize, o.cbodatefontsize}) {
        EXPECT_EQ(sizes->count(), 27);
        EXPECT_EQ(sizes->itemText(0), "8");
        EXPECT_EQ(sizes->itemText(26), "60");
        EXPECT_EQ(sizes->currentText(), "28");
    }
    EXPECT_EQ(items(o.cbofontstyle), QStringList({"Regular", "Bold", "Italic", "BoldItalic", "Underline"}));
    EXPECT_EQ(items(o.cbodatefontname),
              QStringList({"Arial", "Arial Black", "Comic Sans MS", "Times New Roman"}));
    EXPECT_EQ(o.cbofontname->currentIndex(), 0);
    EXPECT_FALSE(o.chkuseoverlay->isChecked());
    for (const QWidget* w : o.overlayFields())
        EXPECT_FALSE(w->isEnabled()) << w->objectName().toStdString();
}

TEST_F(OptionsWindow, ASecondWindowShowsTheDefaultsWhateverWasChosenBefore) {
    form->format().aviSize_comb->setCurrentIndex(4);
    form->format().txtfps->setText("10");
    form->devices().cboVideoCompressor->setCurrentIndex(0);
    open();
    EXPECT_EQ(form->format().aviSize_comb->currentIndex(), 1);
    EXPECT_EQ(form->format().txtfps->text(), "24");
    EXPECT_EQ(form->devices().cboVideoCompressor->currentText(), "Microsoft Video 1");
}

TEST_F(OptionsWindow, MissingDevicesAndCompressorsLeaveListsWithoutSelection) {
    recorder.devices.clear();
    recorder.videoList = {"Cinepak"};
    recorder.audioList = {"GSM 6.10"};
    recorder.clear();
    open();
    EXPECT_EQ(form->devices().cboaudiodevice->count(), 0);
    EXPECT_EQ(form->devices().cboaudiodevice->currentIndex(), -1);
    EXPECT_EQ(form->devices().cboaudioinputpin->count(), 0);
    EXPECT_EQ(form->devices().cboVideoCompressor->currentIndex(), -1);
    EXPECT_EQ(form->devices().cboAudioCompressor->currentIndex(), -1);
    EXPECT_FALSE(recorder.called("SelectAudioDevice(0)"));
}

TEST_F(OptionsWindow, ChoosingADeviceRefillsItsInputsAndADeviceWithoutInputsLeavesThemEmpty) {
    DeviceOptions& d = form->devices();
    d.cboaudiodevice->setCurrentIndex(1);
    EXPECT_TRUE(recorder.called("SelectAudioDevice(1)"));
    EXPECT_EQ(items(d.cboaudioinputpin), QStringList({"Mic", "Headset"}));
    EXPECT_EQ(d.cboaudioinputpin->currentIndex(), 0);
    recorder.pins.remove(0);
    d.cboaudiodevice->setCurrentIndex(0);
    EXPECT_EQ(d.cboaudioinputpin->count(), 0);
}

TEST_F(OptionsWindow, CompressorChoicesSwitchTheirFields) {
    DeviceOptions& d = form->devices();
    FormatOptions& f = form->format();
    d.cboAudioCompressor->setCurrentIndex(0); // "MPEG Layer-3"
    EXPECT_TRUE(f.txtavimp3bitrate->isEnabled());
    EXPECT_TRUE(f.cboavimp3samplerate->isEnabled());
    EXPECT_TRUE(f.cboavimp3channel->isEnabled());
    d.cboAudioCompressor->setCurrentIndex(1);
    EXPECT_FALSE(f.cboavimp3channel->isEnabled());

    d.chkUseVideoComp->click();
    EXPECT_FALSE(d.cboVideoCompressor->isEnabled());
    EXPECT_FALSE(d.cmdVideoCompSetting->isEnabled());
    d.chkUseVideoComp->click();
    EXPECT_TRUE(d.cmdVideoCompSetting->isEnabled());
    d.chkuseAudioComp->click();
    EXPECT_FALSE(d.cboAudioCompressor->isEnabled());

    EXPECT_FALSE(d.txtwinhandle->isEnabled());
    d.chkcapwindow->click();
    EXPECT_TRUE(d.txtwinhandle->isEnabled());
}

TEST_F(OptionsWindow, CompressorSettingsPageOrNoPropertyPage) {
    recorder.compressorsWithPage = {2};
    form->devices().cmdVideoCompSetting->click();
    ASSERT_EQ(prompts.messages.size(), 1);
    EXPECT_EQ(prompts.messages[0].text, "No property page");
    EXPECT_TRUE(recorder.called("showVideoCompressorSettings(1)"));
    form->devices().cboVideoCompressor->setCurrentIndex(2);
    form->devices().cmdVideoCompSetting->click();
    EXPECT_EQ(prompts.messages.size(), 1);
}

TEST_F(OptionsWindow, ZoomInHandsTheFieldsAndZoomOutTheWholeScreen) {
    DeviceOptions& d = form->devices();
    d.txtzoomleft->setText("10");
    d.txtzoomtop->setText(" 20 ");
    d.cmdZoomIn->click();
    EXPECT_EQ(recorder.calls.last(), "ZoomRect(10, 20, 400, 300)");
    d.cmdZoomOut->click();
    EXPECT_EQ(recorder.calls.last(), "ZoomRect(0, 0, 1280, 1024)");
    recorder.clear();
    d.txtzoomright->setText("wide");
    d.cmdZoomIn->click();
    EXPECT_EQ(recorder.count("ZoomRect"), 0);
    ASSERT_EQ(prompts.messages.size(), 1);
    EXPECT_TRUE(prompts.messages[0].text.contains("\"wide\""));
    EXPECT_EQ(prompts.messages[0].title, "Mirabend 1.0");
}

TEST_F(OptionsWindow, AccelerationButtonStartsTheHelperMinimisedOrSaysItIsMissing) {
    qputenv("MIRABEND_DATA_DIR", "/nonexistent-mirabend-folder");
    form->devices().Command3->click();
    ASSERT_EQ(prompts.messages.size(), 1);
    EXPECT_TRUE(prompts.messages[0].text.contains("mirabend-hwaccel"));

    prompts.messages.clear();
    TempFolder folder("mirabend-hwaccel");
    const std::string marker = folder.file("started");
    const std::string helper = folder.file("mirabend-hwaccel");
    std::ofstream(helper) << "#!/bin/sh\necho \"$@\" > '" << marker << "'\n";
    ::chmod(helper.c_str(), 0755);
    qputenv("MIRABEND_DATA_DIR", QByteArray::fromStdString(folder.path()));
    form->devices().Command3->click();
    qunsetenv("MIRABEND_DATA_DIR");
    EXPECT_TRUE(prompts.messages.isEmpty());
    QElapsedTimer waited;
    waited.start();
    while (!QFileInfo::exists(QString::fromStdString(marker)) && waited.elapsed() < 5000)
        QThread::msleep(20);
    std::ifstream started(marker);
    std::string args;
    std::getline(started, args);
    EXPECT_EQ(args, "--minimized");
}

TEST_F(OptionsWindow, OkAndCancelOnlyPutTheWindowAwayAndUndoNothing) {
    form->showOptions();
    EXPECT_TRUE(form->isVisible());
    form->format().txtfps->setText("15");
    form->Command2->click();
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(form->format().txtfps->text(), "15");
    form->showOptions();
    form->close();
    EXPECT_FALSE(form->isVisible());
    form->showOptions();
    form->Command1->click();
    EXPECT_FALSE(form->isVisible());
}

TEST_F(OptionsWindow, ProfileFileChoiceAsksForAPrxAndClearsWhenUnchecked) {
    FormatOptions& f = form->format();
    prompts.answerFile("/profiles/my.prx");
    f.chkProfileFile->click();
    ASSERT_EQ(prompts.openRequests.size(), 1);
    EXPECT_EQ(prompts.openRequests[0].filter, "Window Media Encoder Profiles(*.prx)|*.prx");
    EXPECT_EQ(recorder.calls.last(), "WmvProfileFile(/profiles/my.prx)");
    EXPECT_EQ(f.cboWMV->currentText(), "/profiles/my.prx");
    f.chkProfileFile->click();
    EXPECT_EQ(recorder.calls.last(), "WmvProfileFile()");
    EXPECT_EQ(f.cboWMV->currentText(), "");
}

} // namespace
} // namespace mirabend::test
