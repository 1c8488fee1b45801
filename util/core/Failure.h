#pragma once
// Errors are data: a code from the reporting component's own enum plus a
// detail text for the person reading the message. The window that shows the
// error turns the code into its wording; the detail says what exactly failed.

#include <string>
#include <utility>

namespace mirabend {

template <typename Code>
struct Failure {
    Code code{};
    std::string detail;

    Failure() = default;
    Failure(Code c, std::string d = {}) : code(c), detail(std::move(d)) {}
    explicit operator bool() const { return code != Code{}; }
};

// Formats errno as text ("No space left on device").
std::string errnoText(int err);

} // namespace mirabend
