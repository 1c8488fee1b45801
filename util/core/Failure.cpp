#include "util/core/Failure.h"

#include <cstring>

namespace mirabend {

std::string errnoText(int err)
{
    char buffer[256] = {};
    // GNU strerror_r may return a static string instead of filling the buffer.
    const char* text = strerror_r(err, buffer, sizeof buffer);
    return text ? std::string(text) : std::string(buffer);
}

} // namespace mirabend
