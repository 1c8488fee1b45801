#include "shell/wiring/ShellWiring.h"

#include "util/CommandLineTool.h"

namespace mirabend {

ShellServices makeShellServices(Prompts& prompts)
{
    ShellServices services;
    services.prompts = &prompts;
    return services;
}

const CommandLineTool* const* commandLineTools(int* count)
{
    static const CommandLineTool* const tools[] = {nullptr};
    *count = 0;
    return tools;
}

} // namespace mirabend
