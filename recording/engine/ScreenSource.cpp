#include "recording/engine/ScreenSource.h"

#include "recording/engine/DamageScreenSource.h"
#include "recording/engine/X11GrabSource.h"

namespace mirabend {

std::unique_ptr<ScreenSource> openScreenSource(const std::string& display, const CaptureTarget& target,
                                               int fpsNum, int fpsDen, RecorderFailure& failure,
                                               std::string& note) {
    note.clear();
    auto damage = std::make_unique<DamageScreenSource>();
    if (damage->open(display, target, fpsNum, fpsDen, note))
        return damage;
    damage.reset();
    auto grab = std::make_unique<X11GrabSource>();
    failure = grab->open(display, target, fpsNum, fpsDen);
    if (failure)
        return nullptr;
    return grab;
}

} // namespace mirabend
