#include "audio/ui/AudioText.h"

#include <cmath>
#include <cstdio>

namespace mirabend {
namespace {

// Rounds half away from zero, as the number formats of the display do.
std::string fixed(double value, int decimals)
{
    const double scale = std::pow(10.0, decimals);
    const double rounded = std::floor(value * scale + 0.5) / scale;
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, rounded);
    return buffer;
}

} // namespace

std::string elapsedText(std::int64_t milliseconds)
{
    const std::int64_t seconds = milliseconds / 1000;
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%lld:%02lld", static_cast<long long>(seconds / 60),
                  static_cast<long long>(seconds % 60));
    return buffer;
}

std::string sizeText(std::int64_t bytes)
{
    if (bytes < 1024)
        return std::to_string(bytes) + " bytes";
    if (bytes < 1048575)
        return fixed(static_cast<double>(bytes) / 1024.0, 0) + " KB";
    if (bytes < 1073741823)
        return fixed(static_cast<double>(bytes) / 1048576.0, 1) + " MB";
    return fixed(static_cast<double>(bytes) / 1073741824.0, 2) + " GB";
}

} // namespace mirabend
