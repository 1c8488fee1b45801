#include "audio/core/clsSmooth.h"

namespace mirabend {

void clsSmooth::SmoothNew(std::int32_t size) {
    m_ring.assign(size > 0 ? static_cast<std::size_t>(size) : 0, 0.0f);
    m_pos = 0;
    m_count = 0;
    m_largest = 0;
}

void clsSmooth::SmoothAdd(float value) {
    if (m_ring.empty())
        return;
    m_ring[m_pos] = value;
    if (++m_pos >= m_ring.size())
        m_pos = 0;
    if (m_count < m_ring.size())
        ++m_count;
}

float clsSmooth::SmoothGetMax() {
    if (m_count == 0)
        return 0.0f;
    float sum = 0;
    for (std::size_t i = 0; i < m_count; ++i)
        sum += m_ring[i];
    const float average = sum / static_cast<float>(m_count);
    if (m_count == m_ring.size() && average > m_largest)
        m_largest = average;
    return average;
}

} // namespace mirabend
