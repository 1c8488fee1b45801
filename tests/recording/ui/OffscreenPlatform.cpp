// CTest lists the cases by running this binary without the test environment;
// the QApplication is made before the listing, so the platform must be set
// before main() runs. Widget tests always draw offscreen.
#include <cstdlib>

namespace {

const bool kOffscreen = [] {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    return true;
}();

} // namespace
