#include "shell/slideshow/SlideShowFactory.h"

#include "shell/slideshow/NoPresentationProgram.h"

#ifdef MIRABEND_HAVE_UNO
#include "shell/slideshow/ImpressProgram.h"
#endif

namespace mirabend {

std::unique_ptr<PresentationProgram> createPresentationProgram() {
#ifdef MIRABEND_HAVE_UNO
    return std::make_unique<ImpressProgram>();
#else
    return std::make_unique<NoPresentationProgram>();
#endif
}

std::unique_ptr<SlideShow> createSlideShow(const ShellFields& fields) {
    return std::make_unique<SlideShow>(fields, createPresentationProgram());
}

bool haveImpress() {
#ifdef MIRABEND_HAVE_UNO
    return true;
#else
    return false;
#endif
}

} // namespace mirabend
