#include "recording/engine/StageProfile.h"

#include <cstdlib>
#include <cstring>
#include <ctime>

namespace mirabend {

StageProfile::StageProfile() {
    const char* env = std::getenv("MIRABEND_RECORD_PROFILE");
    m_enabled = env && *env && std::strcmp(env, "0") != 0;
}

std::int64_t StageProfile::threadCpuNs() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return std::int64_t(t.tv_sec) * 1000000000 + t.tv_nsec;
}

std::string StageProfile::report(std::uint64_t frames) const {
    static const char* const names[StageCount] = {"grab", "overlay", "convert", "encode", "mux"};
    std::string out;
    const double n = frames ? double(frames) : 1.0;
    for (int s = 0; s < StageCount; ++s) {
        char part[64];
        std::snprintf(part, sizeof part, "%s%s %.0f us", s ? ", " : "", names[s],
                      double(m_ns[s]) / 1000.0 / n);
        out += part;
    }
    return out + " per frame written";
}

} // namespace mirabend
