// The save dialog and what each of its formats sets on the recorder and
// announces in status panel 4.
#include "RecordingFakes.h"
#include "recording/ui/CaptureOptions_frm.h"
#include "recording/ui/DeviceOptions.h"
#include "recording/ui/FormatOptions.h"
#include "recording/ui/OptionLists.h"
#include "recording/ui/RecordingSession.h"
#include "support/FakeClock.h"
#include "support/ScriptedPrompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QTimer>
#include <gtest/gtest.h>
#include <memory>

namespace mirabend::test {
namespace {

class FormatBranch : public ::testing::Test {
protected:
    void SetUp() override {
        form = std::make_unique<CaptureOptions_frm>(host, recorder, prompts, clock);
        host.panels[4] = "previous caption";
    }
    // Starts a recording with the dialog answering `file` at `filterIndex`.
    void record(const QString& file, int filterIndex) {
        recorder.clear();
        prompts.answerFile(file, filterIndex);
        form->StartRec();
    }
    bool hasCall(const QString& call) const { return recorder.called(call); }

    FakeRecorder recorder;
    FakeHost host;
    ScriptedPrompts prompts;
    FakeClock clock;
    std::unique_ptr<CaptureOptions_frm> form;
};

TEST_F(FormatBranch, SaveDialogHasTheTitleAndTheNineFormatsInOrder) {
    record("/tmp/a.avi", 5);
    ASSERT_EQ(prompts.saveRequests.size(), 1);
    EXPECT_EQ(prompts.saveRequests[0].title, "Select Video Format and Save As");
    EXPECT_EQ(
        prompts.saveRequests[0].filter,
        "Windows Media Video 4:3 Standard (*.WMV)|*.wmv|Windows Media Video 16:9 Widescreen (*.WMV)|*.wmv |"
        "Windows Media Video 3:2 VistaVision (*.WMV)|*.wmv |Windows Media Video 1.43:1 IMAX (*.WMV)|*.wmv|"
        "Audio Video Interleave (*.AVI)|*.avi|Flash Video (*.FLV)|*.flv|"
        "Small Web Format (ShockWave) (*.SWF)|*.swf|MPEG-4 Video (H.264) (*.MP4)|*.mp4|"
        "Matroska Video (*.MKV)|*.mkv");
    EXPECT_TRUE(hasCall("OutputFileName(/tmp/a.avi)"));
    EXPECT_TRUE(hasCall("FrameRate(24)"));
}

TEST_F(FormatBranch, AdvanceProfilePicksTheProfileFileAndItsCaptionPerAspect) {
    form->format().optadvprofile->setChecked(true);
    struct Case {
        int filter;
        int list;
        const char* file;
        const char* caption;
    };
    const Case cases[] = {
        {1, 1, "640x480S.prx", "WMV video 640x480 Widescreen"},
        {2, 1, "640x480W.prx", "WMV video 640x480 Standard"},
        {3, 1, "640x480V.prx", "WMV video 640x480 Standard"},
        {4, 1, "640x480I.prx", "WMV video 640x480 Standard"},
        {2, 0, "320x240.prx", "WMV video 320x240"},
        {3, 2, "800x600.prx", "WMV video 800x600"},
        {4, 3, "1024x768.prx", "WMV video 1024x768"},
        {1, 4, "1280x1024.prx", "WMV video 1280x1024"},
    };
    for (const Case& c : cases) {
        form->format().cbocustomprofile->setCurrentIndex(c.list);
        record("/tmp/talk.wmv", c.filter);
        EXPECT_TRUE(hasCall("OutputFormat(1)"));
        EXPECT_TRUE(hasCall("WmvSwitch(true)"));
        const QString file = recorder.calls.filter("WmvProfileFile(").value(0);
        EXPECT_TRUE(file.endsWith(QStringLiteral("/%1)").arg(QLatin1String(c.file))))
            << file.toStdString() << " filter " << c.filter;
        EXPECT_EQ(host.panels[4], c.caption) << c.filter << "/" << c.list;
    }
}

TEST_F(FormatBranch, BasicProfileLooksUpTheSystemProfileAndWritesNoCaption) {
    // A profile file from an earlier recording must not stay in force.
    form->format().optadvprofile->setChecked(true);
    record("/tmp/talk.wmv", 1);
    EXPECT_EQ(recorder.count("WmvProfileFile(/"), 1);
    form->format().optdefaultprofile->setChecked(true);
    form->format().cboWMV->setCurrentIndex(1);
    host.panels[4] = "previous caption";
    record("/tmp/talk.wmv", 3);
    EXPECT_EQ(recorder.calls.filter("WmvProfile"), QStringList({"WmvProfileFile()", "WmvProfileIndex(1)"}));
    EXPECT_EQ(host.panels[4], "previous caption");
    // A profile file chosen for cboWMV is the one it shows, so it is in force.
    prompts.answerFile("/prx/mine.prx");
    form->format().chkProfileFile->click();
    record("/tmp/talk.wmv", 1);
    EXPECT_EQ(recorder.calls.filter("WmvProfile"), QStringList({"WmvProfileFile(/prx/mine.prx)"}));
    form->format().chkProfileFile->click();

    recorder.profiles = {"Something else"};
    record("/tmp/talk.wmv", 1);
    EXPECT_EQ(recorder.count("WmvProfileIndex"), 0);
}

TEST_F(FormatBranch, AviAlwaysRecordsMonoAt11025WithTheChosenSizeAndCompressors) {
    FormatOptions& f = form->format();
    f.cboavimp3samplerate->setCurrentIndex(2);
    f.cboavimp3channel->setCurrentIndex(1);
    f.txtavimp3bitrate->setText("64");
    const int widths[] = {320, 560, 800, 1024, 1280};
    const int heights[] = {240, 420, 600, 768, 960};
    const char* captions[] = {"AVI video 320x240", "AVI video 640x480", "AVI video 800x600",
                              "AVI video 1024x768", "AVI video 1280x960"};
    for (int i = 0; i < 5; ++i) {
        f.aviSize_comb->setCurrentIndex(i);
        record("/tmp/a.avi", 5);
        EXPECT_TRUE(hasCall("OutputFormat(0)"));
        EXPECT_TRUE(hasCall("VideoCompressorIndex(1)"));
        EXPECT_TRUE(hasCall("AudioCompressorIndex(1)"));
        EXPECT_TRUE(hasCall("AviSwitches(true)"));
        EXPECT_TRUE(hasCall("AviAudioBitrate(64)"));
        EXPECT_TRUE(hasCall("AviAudioChannels(1)"));
        EXPECT_TRUE(hasCall("AviAudioSampleRate(11025)"));
        EXPECT_TRUE(hasCall(QStringLiteral("AviSize(%1, %2)").arg(widths[i]).arg(heights[i])));
        EXPECT_EQ(host.panels[4], captions[i]);
    }
}

TEST_F(FormatBranch, AviWithUnknownCompressorsKeepsTheRecordersOwn) {
    form->devices().cboVideoCompressor->setCurrentIndex(-1);
    recorder.audioList = {"PCM"};
    form->devices().cboAudioCompressor->addItem("Vanished codec");
    form->devices().cboAudioCompressor->setCurrentIndex(form->devices().cboAudioCompressor->count() - 1);
    record("/tmp/a.avi", 5);
    EXPECT_EQ(recorder.count("VideoCompressorIndex"), 0);
    EXPECT_EQ(recorder.count("AudioCompressorIndex"), 0);
}

TEST_F(FormatBranch, FlashFormatsHandBitratesAndSizes) {
    form->format().flvSize_comb->setCurrentIndex(0);
    record("/tmp/a.flv", 6);
    EXPECT_TRUE(hasCall("OutputFormat(3)"));
    EXPECT_TRUE(hasCall("FlvBitrates(96000, 3512000)"));
    EXPECT_TRUE(hasCall("FlvSize(320, 240)"));
    EXPECT_EQ(host.panels[4], "FLV video 320x240");

    form->format().txtswfvideobitrate->setText("500000");
    record("/tmp/a.swf", 7);
    EXPECT_TRUE(hasCall("OutputFormat(2)"));
    EXPECT_TRUE(hasCall("SwfBitrates(96000, 500000)"));
    EXPECT_TRUE(hasCall("SwfSize(560, 420)"));
    EXPECT_EQ(host.panels[4], "SWF video 640x480");
    form->format().swfSize_comb->setCurrentIndex(3);
    record("/tmp/a.swf", 7);
    EXPECT_EQ(host.panels[4], "SWF video 1024x768");
}

TEST_F(FormatBranch, H264FormatsRecordTheStageAtAnEvenSize) {
    record("/tmp/a.mp4", 8);
    EXPECT_TRUE(hasCall("OutputFormat(4)"));
    EXPECT_TRUE(hasCall("VideoSize(580, 434)"));
    EXPECT_EQ(host.panels[4], "MP4 video 580x434");
    host.stageW = 800;
    host.stageH = 600;
    record("/tmp/a.mkv", 9);
    EXPECT_TRUE(hasCall("OutputFormat(5)"));
    EXPECT_EQ(host.panels[4], "MKV video 800x600");
}

TEST_F(FormatBranch, ABitrateThatIsNotANumberStopsTheStartWithAMessage) {
    form->format().txtflvaudiobitrate->setText("loud");
    record("/tmp/a.flv", 6);
    ASSERT_EQ(prompts.messages.size(), 1);
    EXPECT_TRUE(prompts.messages[0].text.contains("FLV audio bitrate"));
    EXPECT_EQ(recorder.count("FlvSize"), 0);
    EXPECT_FALSE(form->session().wait_Timer->isActive());
    EXPECT_EQ(host.panels[4], "previous caption");

    form->format().txtfps->setText("twenty");
    record("/tmp/a.mp4", 8);
    EXPECT_EQ(prompts.messages.size(), 2);
    EXPECT_EQ(recorder.count("OutputFileName"), 0);
}

TEST(FormatFiles, ExtensionsPickTheirBranch) {
    const std::pair<const char*, int> cases[] = {{"/x/talk.WMV", 1}, {"talk.avi", 5}, {"talk.flv", 6},
                                                 {"talk.swf", 7},    {"talk.mp4", 8}, {"talk.mkv", 9},
                                                 {"talk.mov", 0},    {"talk", 0}};
    for (const auto& [file, index] : cases)
        EXPECT_EQ(options::filterIndexForFile(file), index) << file;
}

} // namespace
} // namespace mirabend::test
