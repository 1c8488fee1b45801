// Chapters of a recording: how marks become chapters and WebVTT cues, and
// real recordings of a private Xvfb screen with slide changes and a pause,
// read back with libavformat.
#include "recording/engine/ChapterTrack.h"
#include "recording/engine/Screen2Video.h"
#include "support/ChildProcess.h"
#include "support/MediaProbe.h"
#include "support/PulseServer.h"

#include <chrono>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <thread>

namespace mirabend {
namespace {

using test::ReadChapter;
using test::readChapters;

using namespace std::chrono_literals;

std::string readText(const std::string& file) {
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(ChapterTrackTest, MarksBecomeChaptersThatEndWhereTheNextBegins) {
    ChapterTrack track;
    track.add(-5, "Before the start"); // clamped to 0
    track.add(0, "Slide 1");           // same instant: replaces the title
    track.add(1500000, "Whiteboard");
    track.add(1500000, "Slide 2: Intro"); // a pane switch and its slide
    track.add(4000000, "Slide 3");
    track.add(9000000, "After the end"); // beyond the file: dropped
    const std::vector<ChapterTrack::Span> spans = ChapterTrack::spans(track.marks(), 5000000);
    ASSERT_EQ(spans.size(), 3u);
    const ChapterTrack::Span expected[] = {
        {0, 1500000, "Slide 1"}, {1500000, 4000000, "Slide 2: Intro"}, {4000000, 5000000, "Slide 3"}};
    for (std::size_t i = 0; i < spans.size(); ++i) {
        EXPECT_EQ(spans[i].startUs, expected[i].startUs) << i;
        EXPECT_EQ(spans[i].endUs, expected[i].endUs) << i;
        EXPECT_EQ(spans[i].title, expected[i].title) << i;
    }
    EXPECT_EQ(ChapterTrack::webVtt(spans), "WEBVTT\n\n1\n00:00:00.000 --> 00:00:01.500\nSlide 1\n"
                                           "\n2\n00:00:01.500 --> 00:00:04.000\nSlide 2: Intro\n"
                                           "\n3\n00:00:04.000 --> 00:00:05.000\nSlide 3\n");
    const std::pair<const char*, const char*> names[] = {{"/a/talk.avi", "/a/talk.chapters.vtt"},
                                                         {"/a.b/talk", "/a.b/talk.chapters.vtt"},
                                                         {"talk.v1.flv", "talk.v1.chapters.vtt"}};
    for (const auto& [video, vtt] : names)
        EXPECT_EQ(ChapterTrack::webVttFileFor(video), vtt);
}

class ChapterRecordingTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { s_pulse = new test::PulseServer; }
    static void TearDownTestSuite() {
        delete s_pulse;
        s_pulse = nullptr;
    }
    static void recordFor(Screen2Video& r, double seconds) {
        while (r.IsCapturing() && r.Counters().secondsRecorded < seconds)
            std::this_thread::sleep_for(10ms);
    }
    // Three slide changes, one of them during a pause: 0.6 s, 1.2 s (the
    // paused instant) and 1.8 s of recording time, 2.4 s in all.
    void recordTalk(const std::string& file, int format) {
        Screen2Video r;
        r.OutputFileName(QString::fromStdString(file));
        r.OutputFormat(format);
        r.FrameRate(10);
        r.ZoomRectangle(0, 0, 320, 240);
        ASSERT_TRUE(r.StartCapture()) << r.LastFailure().detail;
        recordFor(r, 0.6);
        r.addChapter(QStringLiteral("Slide 2: Intro"));
        recordFor(r, 1.2);
        r.PauseCapture();
        std::this_thread::sleep_for(700ms);
        r.addChapter(QStringLiteral("Slide 3"));
        r.ResumeCapture();
        recordFor(r, 1.8);
        r.addChapter(QStringLiteral("Slide 4: Résumé"));
        recordFor(r, 2.4);
        r.StopCapture();
    }

    static test::PulseServer* s_pulse;
    test::TempFolder m_folder{"mirabend-chapters"};
};

test::PulseServer* ChapterRecordingTest::s_pulse = nullptr;

// MP4 is written in fragments and gets its chapters when it closes; its
// chapter track starts at 0, so a "Start" chapter comes first. AVI has no
// chapters: a WebVTT file beside the video carries them.
TEST_F(ChapterRecordingTest, SlideChangesBecomeChaptersAtTheirRecordingTime) {
    ASSERT_TRUE(s_pulse->ok());
    const char* titles[] = {"Slide 2: Intro", "Slide 3", "Slide 4: Résumé"};
    const double starts[] = {0.6, 1.2, 1.8};
    const std::pair<int, const char*> formats[] = {{5, "mkv"}, {4, "mp4"}, {0, "avi"}};
    for (const auto& [format, extension] : formats) {
        SCOPED_TRACE(extension);
        const std::string file = m_folder.file(std::string("talk.") + extension);
        recordTalk(file, format);
        const std::string vtt = readText(ChapterTrack::webVttFileFor(file));
        if (format == 0) {
            ASSERT_EQ(vtt.rfind("WEBVTT\n", 0), 0u) << vtt;
            for (const char* cue :
                 {"\n00:00:00.", " --> 00:00:01.", "Slide 2: Intro\n", "Slide 3\n", "Slide 4: Résumé\n"})
                EXPECT_NE(vtt.find(cue), std::string::npos) << cue;
            EXPECT_EQ(vtt.find("\n4\n"), std::string::npos) << "three cues";
            continue;
        }
        EXPECT_EQ(vtt, "") << "the file carries them";
        std::vector<ReadChapter> chapters = readChapters(file);
        if (format == 4 && !chapters.empty()) {
            EXPECT_EQ(chapters.front().title, "Start");
            EXPECT_NEAR(chapters.front().start, 0.0, 0.01);
            chapters.erase(chapters.begin());
        }
        ASSERT_EQ(chapters.size(), 3u);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(chapters[i].title, titles[i]) << i;
            EXPECT_NEAR(chapters[i].start, starts[i], 0.15) << i << ": paused time is left out";
        }
        EXPECT_NEAR(chapters[2].end, 2.4, 0.3);
    }
}

} // namespace
} // namespace mirabend
