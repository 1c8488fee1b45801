#include "shell/wiring/ShellWiring.h"

#include "audio/ui/AudioTools.h"
#include "recording/engine/RecordScreenTool.h"
#include "recording/repair/RepairVideoTool.h"
#include "recording/ui/remote/RemoteClient.h"
#include "shell/slideshow/SlideShowFactory.h"
#include "shell/wiring/AudioWiring.h"
#include "shell/wiring/NotesWiring.h"
#include "shell/wiring/CameraWiring.h"
#include "shell/wiring/RecordingWiring.h"
#include "shell/wiring/WebAboutWiring.h"
#include "shell/wiring/WhiteboardWiring.h"
#include "util/CommandLineTool.h"

namespace mirabend {

ShellServices makeShellServices(Prompts& prompts)
{
    ShellServices services;
    services.prompts = &prompts;
    services.makeRecording = [&prompts](Mirabend_frm& window) -> std::unique_ptr<RecordingPort> {
        return std::make_unique<RecordingWiring>(window, prompts);
    };
    services.makeSlides = [](Mirabend_frm& window) -> std::unique_ptr<SlideShowPort> {
        return createSlideShow(window.context().fields);
    };
    services.makeAudio = [&prompts](Mirabend_frm& window) -> std::unique_ptr<AudioPort> {
        return std::make_unique<AudioWiring>(window, prompts);
    };
    addWebAboutAndResolution(services, prompts);
    services.attachPanes.push_back([&prompts](Mirabend_frm& window) { attachNotes(window, prompts); });
    installCamera(services, prompts);
    services.attachPanes.push_back([&prompts](Mirabend_frm& window) { WhiteboardWiring::attach(window, prompts); });
    return services;
}

const CommandLineTool* const* commandLineTools(int* count)
{
    static const CommandLineTool* const tools[] = {
        &kRecordScreenTool,
        &kRecordAudioTool,
        &kRepairWavTool,
        &kRepairVideoTool,
        &kAudioRecorderTool,
        &kRemoteCommandTool,
        &kRemoteRecordToTool,
    };
    *count = static_cast<int>(sizeof tools / sizeof tools[0]);
    return tools;
}

} // namespace mirabend
