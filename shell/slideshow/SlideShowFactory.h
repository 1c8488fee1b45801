#pragma once
// How the main window gets its slide show: the port on the best
// presentation program this build has (LibreOffice Impress when built with
// its SDK).
//
// Thread contract: UI thread only.

#include "shell/slideshow/SlideShow.h"

#include <memory>

namespace mirabend {

std::unique_ptr<PresentationProgram> createPresentationProgram();

// The controls in `fields` must outlive the slide show.
std::unique_ptr<SlideShow> createSlideShow(const ShellFields& fields);

// True when this build drives LibreOffice Impress.
bool haveImpress();

} // namespace mirabend
