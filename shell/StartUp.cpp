#include "shell/StartUp.h"

#include "util/Prompts.h"

#include <exception>

namespace mirabend {

bool commonControlsReady(Prompts& prompts, const std::function<bool()>& initialise) {
    bool ready = false;
    try {
        ready = initialise();
    } catch (const std::exception&) {
        ready = false;
    }
    if (!ready)
        prompts.show(QStringLiteral("Initialization error!"), QStringLiteral("Mirabend 1.0"),
                     PromptIcon::Critical);
    return ready;
}

} // namespace mirabend
