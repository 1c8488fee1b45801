#include "audio/core/GaplessFeed.h"

#include <cstring>
#include <gtest/gtest.h>
#include <numeric>
#include <vector>

namespace mirabend {
namespace {

// Converts only whole blocks, like the block formats do, and remembers what
// it was given so the test can check nothing was lost or repeated.
class BlockEncoder final : public Encoder {
public:
    explicit BlockEncoder(std::int32_t block)
        : m_block(block) {}
    std::int32_t Encoder_EncoderInit(std::int32_t, std::int16_t, const std::string&) override { return 0; }
    std::int32_t Encoder_Encode(const void* data, std::int32_t bytes, std::int32_t& consumed) override {
        if (failNext)
            return encoder_result::kWriteFailed;
        consumed = bytes / m_block * m_block;
        const auto* p = static_cast<const std::uint8_t*>(data);
        written.insert(written.end(), p, p + consumed);
        return encoder_result::kOk;
    }
    std::int32_t Encoder_EncoderMetrics(std::int32_t) const override { return 0; }
    std::int32_t Encoder_EncoderClose() override { return 0; }
    std::string Encoder_Description() const override { return {}; }
    std::string Encoder_Extension() const override { return "wav"; }

    std::vector<std::uint8_t> written;
    bool failNext = false;

private:
    std::int32_t m_block;
};

TEST(GaplessFeed, BlockFormatsGetEveryByteOnceAndInOrder) {
    BlockEncoder encoder(4068); // an IMA ADPCM block's input at 44.1 kHz stereo
    GaplessFeed feed(encoder);
    std::vector<std::uint8_t> stream(10 * 10240);
    std::iota(stream.begin(), stream.end(), std::uint8_t{0});
    for (std::size_t at = 0; at < stream.size(); at += 10240)
        ASSERT_EQ(feed.feed(stream.data() + at, 10240), encoder_result::kOk);
    ASSERT_LT(feed.pendingBytes(), 4068u) << "less than one block waits";
    ASSERT_EQ(encoder.written.size() + feed.pendingBytes(), stream.size());
    EXPECT_TRUE(std::equal(encoder.written.begin(), encoder.written.end(), stream.begin()));
}

TEST(GaplessFeed, FailuresPassThroughAndResetForgetsTheRest) {
    BlockEncoder encoder(1000);
    GaplessFeed feed(encoder);
    std::vector<std::uint8_t> block(1500, 7);
    EXPECT_EQ(feed.feed(block.data(), 1500), encoder_result::kOk);
    EXPECT_EQ(feed.pendingBytes(), 500u);
    encoder.failNext = true;
    EXPECT_EQ(feed.feed(block.data(), 1500), encoder_result::kWriteFailed);
    feed.reset();
    EXPECT_EQ(feed.pendingBytes(), 0u);
    encoder.failNext = false;
    EXPECT_EQ(feed.feed(block.data(), 1000), encoder_result::kOk);
    EXPECT_EQ(encoder.written.size(), 2000u);
}

} // namespace
} // namespace mirabend
