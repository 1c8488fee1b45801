#include "recording/engine/Timeline.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace mirabend {

namespace {
constexpr std::int64_t kOpen = std::numeric_limits<std::int64_t>::max();
}

void RecordingClock::start(std::int64_t now)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_started)
        return;
    m_start = now;
    m_started = true;
    m_pauses.clear();
    // A pause asked for before the first frame begins with the recording.
    if (m_pendingPause)
        m_pauses.push_back({now, kOpen});
}

bool RecordingClock::started() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_started;
}

void RecordingClock::pause(std::int64_t now)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_started) {
        m_pendingPause = true;
        return;
    }
    if (!m_pauses.empty() && m_pauses.back().end == kOpen)
        return;
    m_pauses.push_back({std::max(now, m_start), kOpen});
}

void RecordingClock::resume(std::int64_t now)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_started) {
        m_pendingPause = false;
        return;
    }
    if (m_pauses.empty() || m_pauses.back().end != kOpen)
        return;
    m_pauses.back().end = std::max(now, m_pauses.back().begin);
}

bool RecordingClock::paused() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_started)
        return m_pendingPause;
    return !m_pauses.empty() && m_pauses.back().end == kOpen;
}

int RecordingClock::pauseCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return int(m_pauses.size());
}

std::optional<std::int64_t> RecordingClock::mediaTime(std::int64_t stamp) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_started || stamp < m_start)
        return std::nullopt;
    std::int64_t cut = 0;
    for (const Pause& p : m_pauses) {
        if (stamp < p.begin)
            break;
        if (stamp < p.end)
            return std::nullopt;
        cut += p.end - p.begin;
    }
    return stamp - m_start - cut;
}

std::vector<RecordingClock::Segment> RecordingClock::segments(std::int64_t stamp, std::int64_t length) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<Segment> out;
    if (!m_started || length <= 0)
        return out;
    const std::int64_t end = stamp + length;
    std::int64_t from = m_start; // start of the current recorded stretch
    std::int64_t cut = 0;
    for (std::size_t i = 0; i <= m_pauses.size(); ++i) {
        const std::int64_t to = i < m_pauses.size() ? m_pauses[i].begin : kOpen;
        const std::int64_t a = std::max(from, stamp);
        const std::int64_t b = std::min(to, end);
        if (a < b)
            out.push_back({a - stamp, b - a, a - m_start - cut, int(i)});
        if (i == m_pauses.size() || m_pauses[i].end == kOpen || m_pauses[i].end >= end)
            break;
        cut += m_pauses[i].end - m_pauses[i].begin;
        from = m_pauses[i].end;
    }
    return out;
}

std::int64_t RecordingClock::mediaNow(std::int64_t now) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_started)
        return 0;
    std::int64_t cut = 0;
    for (const Pause& p : m_pauses) {
        if (now < p.begin)
            break;
        if (now < p.end)
            return p.begin - m_start - cut;
        cut += p.end - p.begin;
    }
    return std::max<std::int64_t>(0, now - m_start - cut);
}

std::int64_t FrameGrid::slotOf(std::int64_t mediaUs) const
{
    // Round to the nearest slot: slot = media * num / (den * 1e6). Long
    // double keeps 64 bits of mantissa, exact for any recording length.
    const long double slot =
        static_cast<long double>(mediaUs) * m_num / (static_cast<long double>(m_den) * 1e6L);
    return std::llround(slot);
}

std::int64_t FrameGrid::slotStart(std::int64_t slot) const
{
    return std::llround(static_cast<long double>(slot) * m_den * 1e6L / m_num);
}

std::optional<std::int64_t> FrameGrid::place(std::int64_t mediaUs)
{
    if (!m_anchored) {
        m_offsetUs = mediaUs - slotStart(slotOf(mediaUs));
        m_anchored = true;
    }
    const std::int64_t slot = slotOf(mediaUs - m_offsetUs);
    if (slot <= m_last)
        return std::nullopt;
    m_last = slot;
    return slot;
}

AudioTimeline::AudioTimeline(int sampleRate, std::int64_t toleranceUs)
    : m_rate(sampleRate)
    , m_tolerance(toleranceUs * sampleRate / 1000000)
{
}

AudioTimeline::Placement AudioTimeline::place(std::int64_t mediaUs, std::int64_t samples)
{
    Placement p;
    const std::int64_t expected = mediaUs * m_rate / 1000000;
    const std::int64_t diff = expected - m_written;
    if (m_resync || diff > m_tolerance || -diff > m_tolerance) {
        if (diff > 0)
            p.silence = diff;
        else
            p.skip = std::min(samples, -diff);
    }
    m_resync = false;
    p.position = m_written + p.silence;
    m_written += p.silence + (samples - p.skip);
    return p;
}

} // namespace mirabend
