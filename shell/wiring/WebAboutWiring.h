#pragma once
// Wires the web pane into the stage and the "Web" bar, the about box behind
// the "about" item and the screen resolution dialog behind the "resolution"
// item of the "Layout" bar.

#include "shell/Mirabend_frm.h"

namespace mirabend {

void addWebAboutAndResolution(ShellServices& services, Prompts& prompts);

// The parts one by one (tests attach only what they exercise).
void attachWebPane(Mirabend_frm& window);
void attachAbout(Mirabend_frm& window, Prompts& prompts);
void attachResolution(Mirabend_frm& window);

} // namespace mirabend
