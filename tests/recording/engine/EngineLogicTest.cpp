// The recorder's logic without devices: recording time across pauses, the
// frame grid, audio placement, format planning with codec limits, profiles.
#include "recording/engine/FormatPlanner.h"
#include "recording/engine/Timeline.h"
#include "recording/engine/WmvProfile.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace mirabend {
namespace {

TEST(RecordingClockTest, PausesAreCutOutOfMediaTime)
{
    RecordingClock clock;
    clock.start(1000);
    EXPECT_FALSE(clock.mediaTime(999));
    EXPECT_EQ(*clock.mediaTime(1500), 500);
    clock.pause(2000);
    clock.pause(2500); // a second pause keeps the first instant
    EXPECT_FALSE(clock.mediaTime(2100));
    EXPECT_EQ(clock.mediaNow(3000), 1000);
    clock.resume(4000);
    clock.resume(4500); // resume without pause changes nothing
    EXPECT_FALSE(clock.mediaTime(3999));
    EXPECT_EQ(*clock.mediaTime(4000), 1000);
    EXPECT_EQ(*clock.mediaTime(5000), 2000);
    EXPECT_EQ(clock.pauseCount(), 1);
}

TEST(RecordingClockTest, APauseBeforeTheFirstFrameHoldsFromTheStart)
{
    for (const bool undone : {false, true}) {
        RecordingClock clock;
        clock.pause(500);
        if (undone)
            clock.resume(600); // undone before anything was recorded
        clock.start(1000);
        clock.start(2000); // the first start counts
        EXPECT_EQ(clock.mediaTime(1500).has_value(), undone);
        clock.resume(3000);
        EXPECT_EQ(*clock.mediaTime(3500), undone ? 2500 : 500);
    }
}

TEST(RecordingClockTest, SegmentsSplitABlockAtStartAndPauses)
{
    RecordingClock clock;
    clock.start(1000);
    clock.pause(2000);
    clock.resume(3000);
    // A block from 500 to 3500: before the start, recorded, paused, recorded.
    const auto segs = clock.segments(500, 3000);
    ASSERT_EQ(segs.size(), 2u);
    EXPECT_EQ(segs[0].offsetUs, 500);
    EXPECT_EQ(segs[0].lengthUs, 1000);
    EXPECT_EQ(segs[0].mediaUs, 0);
    EXPECT_EQ(segs[0].epoch, 0);
    EXPECT_EQ(segs[1].offsetUs, 2500);
    EXPECT_EQ(segs[1].lengthUs, 500);
    EXPECT_EQ(segs[1].mediaUs, 1000);
    EXPECT_EQ(segs[1].epoch, 1);
    // An open pause (a stop) cuts everything after it.
    clock.pause(4000);
    const auto tail = clock.segments(3800, 1000);
    ASSERT_EQ(tail.size(), 1u);
    EXPECT_EQ(tail[0].lengthUs, 200);
}

TEST(FrameGridTest, JitteredFramesTakeConsecutiveSlotsAndBurstsAreDropped)
{
    FrameGrid grid(24, 1);
    const std::int64_t period = 1000000 / 24;
    // Frames arriving half a period off the grid, with jitter either way.
    const std::int64_t phase = period / 2;
    const std::int64_t jitter[] = {0, 3000, -3000, 4000, -4000, 0};
    for (int k = 0; k < 6; ++k) {
        const auto slot = grid.place(phase + k * period + jitter[k]);
        ASSERT_TRUE(slot);
        EXPECT_EQ(*slot, k);
    }
    const std::int64_t last = grid.lastSlot();
    // Catch-up burst: nearly equal stamps after a stall.
    EXPECT_TRUE(grid.place(phase + 8 * period));
    EXPECT_FALSE(grid.place(phase + 8 * period + 500));
    EXPECT_EQ(grid.lastSlot(), last + 3); // slots 6 and 7 left as a gap
}

TEST(AudioTimelineTest, AnchorsOnStampsAndIgnoresSmallJitter)
{
    AudioTimeline timeline(10000, 60000);
    // First block 50 ms late: 500 samples of silence in front.
    auto p = timeline.place(50000, 200);
    EXPECT_EQ(p.silence, 500);
    EXPECT_EQ(p.position, 500);
    // Next block stamped 10 ms early: within tolerance, laid end to end.
    p = timeline.place(60000, 200);
    EXPECT_EQ(p.silence, 0);
    EXPECT_EQ(p.skip, 0);
    EXPECT_EQ(timeline.written(), 900);
    // After a pause the block is laid on its stamp exactly.
    timeline.resync();
    p = timeline.place(85000, 200);
    EXPECT_EQ(p.skip, 50);
    EXPECT_EQ(timeline.written(), 1050);
    // A stall of 200 ms is filled with silence.
    p = timeline.place(305000, 100);
    EXPECT_EQ(p.silence, 2000);
}

RecorderSettings settings(int format)
{
    RecorderSettings s;
    s.outputFile = QStringLiteral("/tmp/x");
    s.format = format;
    return s;
}

TEST(FormatPlannerTest, AviFitsMicrosoftVideo1AndKeepsPcmAt11025Mono)
{
    RecordingPlan plan;
    RecorderSettings s = settings(0);
    s.aviWidth = 562;
    s.aviHeight = 423;
    s.aviAudioSampleRate = 11025;
    ASSERT_FALSE(FormatPlanner::plan(s, 1280, 720, plan));
    EXPECT_EQ(plan.muxer, "avi");
    EXPECT_EQ(plan.video.encoder, "msvideo1");
    EXPECT_EQ(plan.video.pixelFormat, "rgb555le");
    EXPECT_EQ(plan.video.width, 560);
    EXPECT_EQ(plan.video.height, 420);
    EXPECT_EQ(plan.audio.encoder, "pcm_s16le");
    EXPECT_EQ(plan.audio.sampleRate, 11025);
    EXPECT_EQ(plan.audio.channels, 1);
    // Size 0 follows the captured area; odd sizes are made even for 4:2:0.
    s.videoCompressor = QStringLiteral("Windows Media Video 8");
    s.audioCompressor = QStringLiteral("MPEG Layer-3");
    s.aviWidth = 0;
    s.aviHeight = 0;
    ASSERT_FALSE(FormatPlanner::plan(s, 1001, 601, plan));
    EXPECT_EQ(plan.video.encoder, "wmv2");
    EXPECT_EQ(plan.video.width, 1000);
    EXPECT_EQ(plan.video.height, 600);
    EXPECT_EQ(plan.audio.encoder, "libmp3lame");
    EXPECT_EQ(plan.audio.bitRate, 128000);
}

// Each compressor with a settings page has its values reach the encoder's
// target; the others have no page.
TEST(FormatPlannerTest, CompressorSettingsPagesReachTheEncoder)
{
    const struct {
        int format;
        const char* compressor;
        CompressorSettingValues values;
        std::int64_t bitRate;
        int quality;
        const char* preset;
        int keyframes;
    } cases[] = {
        {0, "H.264", {{"quality", 30}, {"speed", 2}}, 0, 30, "veryfast", 0},
        {0, "MPEG-4", {{"bitrate", 700}}, 700000, -1, "", 0},
        {0, "Windows Media Video 8", {{"bitrate", 1500}}, 1500000, -1, "", 0},
        {0, "Microsoft Video 1", {{"keyframes", 12}}, 0, -1, "", 12},
        {4, "H.264", {{"quality", 18}, {"speed", 5}}, 0, 18, "medium", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.compressor);
        RecorderSettings s = settings(c.format);
        s.videoCompressor = QString::fromLatin1(c.compressor);
        (c.format == 0 ? s.videoCompressorSettings : s.h264Settings) = c.values;
        RecordingPlan plan;
        ASSERT_FALSE(FormatPlanner::plan(s, 640, 480, plan));
        if (c.bitRate) {
            EXPECT_EQ(plan.video.bitRate, c.bitRate);
        }
        EXPECT_EQ(plan.video.quality, c.quality);
        EXPECT_EQ(plan.video.preset, c.preset);
        EXPECT_EQ(plan.video.keyframeInterval, c.keyframes);
        EXPECT_FALSE(CompressorCatalog::videoSettings(s.videoCompressor).empty());
    }
    for (const char* without : {"Sorenson Spark", "Motion JPEG"})
        EXPECT_TRUE(CompressorCatalog::videoSettings(QString::fromLatin1(without)).empty()) << without;
}

TEST(FormatPlannerTest, FlashFormatsTakeMp3At44100AndRefuseBadBitrates)
{
    RecordingPlan plan;
    RecorderSettings s = settings(3);
    ASSERT_FALSE(FormatPlanner::plan(s, 800, 600, plan));
    EXPECT_EQ(plan.muxer, "flv");
    EXPECT_EQ(plan.video.encoder, "flv");
    EXPECT_EQ(plan.audio.sampleRate, 44100);
    EXPECT_EQ(plan.video.bitRate, 3512000);
    EXPECT_FALSE(plan.constantFrameRate);

    s = settings(2);
    s.swfVideoBitrate = QStringLiteral("fast");
    const RecorderFailure f = FormatPlanner::plan(s, 800, 600, plan);
    EXPECT_EQ(f.code, RecorderError::BadSetting);
    EXPECT_NE(f.detail.find("SWF video bitrate \"fast\""), std::string::npos) << f.detail;
    s.swfVideoBitrate = QStringLiteral("500000");
    ASSERT_FALSE(FormatPlanner::plan(s, 800, 600, plan));
    EXPECT_TRUE(plan.constantFrameRate);
    EXPECT_EQ(plan.muxer, "swf");
}

TEST(FormatPlannerTest, RefusesSettingsThatCannotWork)
{
    RecordingPlan plan;
    RecorderSettings s = settings(0);
    s.frameRate = 0;
    EXPECT_EQ(FormatPlanner::plan(s, 800, 600, plan).code, RecorderError::BadSetting);
    s = settings(9);
    EXPECT_EQ(FormatPlanner::plan(s, 800, 600, plan).code, RecorderError::BadSetting);
    s = settings(1);
    s.wmvProfileIndex = 99;
    EXPECT_EQ(FormatPlanner::plan(s, 800, 600, plan).code, RecorderError::BadSetting);
    s = settings(1);
    s.wmvProfileFile = QStringLiteral("/nonexistent/profile.prx");
    EXPECT_EQ(FormatPlanner::plan(s, 800, 600, plan).code, RecorderError::BadSetting);
    s = settings(0);
    s.outputFile.clear();
    EXPECT_EQ(FormatPlanner::plan(s, 800, 600, plan).code, RecorderError::BadSetting);
}

TEST(FormatPlannerTest, Mp4AndMatroskaAreH264AacAndLiveSafe)
{
    RecordingPlan plan;
    RecorderSettings s = settings(4);
    ASSERT_FALSE(FormatPlanner::plan(s, 1279, 719, plan));
    EXPECT_EQ(plan.video.encoder, "libx264");
    EXPECT_EQ(plan.video.width, 1278);
    EXPECT_EQ(plan.video.height, 718);
    EXPECT_EQ(plan.audio.encoder, "aac");
    EXPECT_TRUE(plan.liveSafe);
    s.format = 5;
    ASSERT_FALSE(FormatPlanner::plan(s, 640, 480, plan));
    EXPECT_EQ(plan.muxer, "matroska");
    EXPECT_EQ(FormatPlanner::formatForFile(QStringLiteral("a/b.MKV")), 5);
    EXPECT_EQ(FormatPlanner::formatForFile(QStringLiteral("a.swf")), 2);
    EXPECT_EQ(FormatPlanner::formatForFile(QStringLiteral("a.txt")), -1);
}

TEST(WmvProfileTest, ShippedProfilesParseAndDriveTheWmvPlan)
{
    const QString dir = QStringLiteral(MIRABEND_PROFILE_DIR "/");
    for (const char* name : {"320x240.prx", "640x480S.prx", "640x480W.prx", "640x480V.prx", "640x480I.prx",
                             "800x600.prx", "1024x768.prx", "1280x1024.prx"}) {
        QString error;
        const auto profile = WmvProfiles::readFile(dir + QLatin1String(name), &error);
        ASSERT_TRUE(profile) << name << ": " << error.toStdString();
        EXPECT_GT(profile->width, 0) << name;
        EXPECT_GT(profile->videoBitrate, 0) << name;
    }
    RecordingPlan plan;
    RecorderSettings s = settings(1);
    s.wmvProfileFile = dir + QStringLiteral("640x480W.prx");
    ASSERT_FALSE(FormatPlanner::plan(s, 1280, 720, plan));
    EXPECT_EQ(plan.muxer, "asf");
    EXPECT_EQ(plan.video.encoder, "wmv2");
    EXPECT_EQ(plan.video.width, 640);
    EXPECT_EQ(plan.video.height, 360);
    EXPECT_EQ(plan.audio.encoder, "wmav2");
}

TEST(WmvProfileTest, RoundTripAndBrokenFiles)
{
    QTemporaryDir dir;
    WmvProfile p;
    p.name = QStringLiteral("Test <profile>");
    p.width = 352;
    p.height = 288;
    p.frameRate = 15;
    p.videoBitrate = 256000;
    p.audioBitrate = 32000;
    p.sampleRate = 22050;
    p.channels = 1;
    QFile file(dir.filePath(QStringLiteral("t.prx")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(WmvProfiles::toXml(p));
    file.close();
    QString error;
    const auto read = WmvProfiles::readFile(file.fileName(), &error);
    ASSERT_TRUE(read) << error.toStdString();
    EXPECT_EQ(read->name, p.name);
    EXPECT_EQ(read->width, 352);
    EXPECT_EQ(read->height, 288);
    EXPECT_NEAR(read->frameRate, 15, 0.01);
    EXPECT_EQ(read->sampleRate, 22050);
    EXPECT_EQ(read->channels, 1);

    QFile broken(dir.filePath(QStringLiteral("b.prx")));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("<profile name=\"x\"><streamconfig");
    broken.close();
    EXPECT_FALSE(WmvProfiles::readFile(broken.fileName(), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("not usable")));
}

} // namespace
} // namespace mirabend
