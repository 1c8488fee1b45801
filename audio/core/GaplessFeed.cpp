#include "audio/core/GaplessFeed.h"

#include <algorithm>
#include <cstring>

namespace mirabend {

std::int32_t GaplessFeed::feed(const void* data, std::int32_t byteCount)
{
    if (byteCount <= 0)
        return encoder_result::kOk;
    std::int32_t consumed = 0;
    if (m_pending.empty()) {
        const std::int32_t result = m_encoder.Encoder_Encode(data, byteCount, consumed);
        if (result != encoder_result::kOk)
            return result;
        if (consumed < byteCount) {
            const auto* bytes = static_cast<const std::uint8_t*>(data);
            m_pending.assign(bytes + std::max(consumed, 0), bytes + byteCount);
        }
        return result;
    }
    const std::size_t old = m_pending.size();
    m_pending.resize(old + static_cast<std::size_t>(byteCount));
    std::memcpy(m_pending.data() + old, data, static_cast<std::size_t>(byteCount));
    const std::int32_t result =
        m_encoder.Encoder_Encode(m_pending.data(), static_cast<std::int32_t>(m_pending.size()), consumed);
    if (result != encoder_result::kOk)
        return result;
    m_pending.erase(m_pending.begin(), m_pending.begin() + std::clamp<std::int64_t>(consumed, 0, m_pending.size()));
    return result;
}

} // namespace mirabend
