#pragma once
// The start-up procedure's guarded first step: the widget library (the
// "common controls") is initialised, and when that fails or throws the user
// reads "Initialization error!" and no window is shown.
//
// Thread contract: UI thread only, before any window exists.

#include <functional>

namespace mirabend {

class Prompts;

// True when `initialise` answered true; otherwise the message was shown.
bool commonControlsReady(Prompts& prompts, const std::function<bool()>& initialise);

} // namespace mirabend
