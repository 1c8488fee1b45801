#pragma once
// How the recorder shows time and sizes, shared by the window and the
// command line.
//
// Thread contract: free functions; any thread.

#include <cstdint>
#include <string>

namespace mirabend {

// Minutes, ":", seconds as two digits: 65432 ms -> "1:05".
std::string elapsedText(std::int64_t milliseconds);

// "512 bytes", "2 KB" (size / 1024 as "###0"), "3.5 MB" ("###0.0"), "1.25 GB".
std::string sizeText(std::int64_t bytes);

} // namespace mirabend
