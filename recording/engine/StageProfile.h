#pragma once
// Where a recording's CPU goes: thread CPU time spent per stage (grab,
// overlay, conversion, encoding, muxing), measured when
// MIRABEND_RECORD_PROFILE=1 and printed per frame when the recording ends.
// The X server's own work for a grab is not in this process.
//
// Thread contract: add() and Scope from any thread; report() once the
// threads are joined.

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

namespace mirabend {

class StageProfile {
public:
    enum Stage { Grab, Overlay, Convert, Encode, Mux, StageCount };

    StageProfile();
    bool enabled() const { return m_enabled; }
    static std::int64_t threadCpuNs();

    class Scope {
    public:
        Scope(StageProfile& profile, Stage stage)
            : m_profile(profile.m_enabled ? &profile : nullptr)
            , m_stage(stage)
            , m_start(m_profile ? threadCpuNs() : 0) {}
        ~Scope() {
            if (m_profile)
                m_profile->m_ns[m_stage] += threadCpuNs() - m_start;
        }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        StageProfile* m_profile;
        Stage m_stage;
        std::int64_t m_start;
    };

    // "grab 310 us, overlay 0 us, ..." per frame.
    std::string report(std::uint64_t frames) const;

private:
    bool m_enabled = false;
    std::array<std::atomic<std::int64_t>, StageCount> m_ns{};
};

} // namespace mirabend
