// A recording that fills its disk: a small tmpfs is mounted for the test
// (root only; skipped where mounting is not permitted).
#include "audio/core/EncoderWAV.h"
#include "support/ChildProcess.h"
#include "support/MediaProbe.h"
#include "support/WavFile.h"

#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/mount.h>

namespace mirabend::test {
namespace {

class SmallDisk {
public:
    explicit SmallDisk(const std::string& where)
        : m_where(where) {
        m_mounted = ::mount("tmpfs", where.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, "size=64k") == 0;
        m_error = m_mounted ? 0 : errno;
    }
    ~SmallDisk() {
        if (m_mounted)
            ::umount2(m_where.c_str(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    bool mounted() const { return m_mounted; }
    int error() const { return m_error; }

private:
    std::string m_where;
    bool m_mounted = false;
    int m_error = 0;
};

TEST(FullDisk, RecordingStopsAtTheFirstShortWriteAndLeavesAValidFile) {
    TempFolder dir;
    SmallDisk disk(dir.path());
    if (!disk.mounted())
        GTEST_SKIP() << "cannot mount a tmpfs here: " << std::strerror(disk.error());

    const std::string path = dir.file("full.wav");
    const std::vector<std::int16_t> tone = sine(440.0, 44100, 2, 2560, 9000.0); // one 10240-byte block
    EncoderWAV enc;
    ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, path), encoder_result::kOk);
    int blocks = 0;
    std::int32_t result = encoder_result::kOk;
    while (result == encoder_result::kOk && blocks < 100) {
        std::int32_t used = 0;
        result = enc.Encoder_Encode(tone.data(), 10240, used);
        ++blocks;
    }
    ASSERT_EQ(result, encoder_result::kWriteFailed) << "the disk never filled";
    EXPECT_NE(enc.lastErrorDetail().find("No space left"), std::string::npos) << enc.lastErrorDetail();
    EXPECT_EQ(enc.Encoder_EncoderClose(), encoder_result::kOk);

    const WavFile wav = readWav(path);
    EXPECT_TRUE(wav.consistent());
    EXPECT_EQ(wav.dataSize() % 4, 0u); // whole stereo frames only
    // Every block written before the disk filled is there.
    EXPECT_GE(wav.dataSize(), static_cast<std::size_t>(blocks - 1) * 10240);
    EXPECT_NEAR(probe(path).audioSeconds * 44100, wav.dataSize() / 4, 0.5);
}

} // namespace
} // namespace mirabend::test
