#include "audio/ui/AudioTools.h"

#include "audio/capture/InputDevices.h"
#include "audio/core/WavRepair.h"
#include "audio/ui/Form1.h"
#include "audio/ui/RecordAudioCommand.h"
#include "util/QtPrompts.h"

#include <QApplication>

namespace mirabend {
namespace {

int runAudioRecorder(int argc, char** argv)
{
    QApplication app(argc, argv);
    QtPrompts prompts;
    Form1Setup setup;
    setup.prompts = &prompts;
    Form1 window(setup);
    prompts.setParent(&window);
    window.show();
    return app.exec();
}

} // namespace

Form1* openAudioRecorder(Prompts& prompts, QWidget* parent)
{
    Form1Setup setup;
    setup.prompts = &prompts;
    auto* window = new Form1(setup, parent);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
    return window;
}

QStringList audioInputDevices()
{
    QStringList names;
    for (const std::string& name : audioInputDeviceNames())
        names << QString::fromStdString(name);
    return names;
}

const CommandLineTool kRecordAudioTool = {
    "--record-audio",
    "--record-audio FILE [options]",
    "  Records sound to a WAV file until --seconds have passed or Ctrl+C.\n"
    "  --seconds N            length of the recording\n"
    "  --device NAME          input device (name or ALSA name; see --list-devices)\n"
    "  --line NAME            recording source of the device's mixer\n"
    "  --volume N             source volume in the mixer's own units\n"
    "  --rate R               sample rate in Hz (44100)\n"
    "  --channels 1|2         mono or stereo (2)\n"
    "  --effects LIST         amplify,echo,phaser,eq (none)\n"
    "  --format F             pcm, mulaw, alaw, ima-adpcm, ms-adpcm, gsm, mp3 (pcm)\n"
    "  --list-devices         lists input devices and their recording sources\n",
    &recordAudioCommand,
};

const CommandLineTool kRepairWavTool = {
    "--repair-wav",
    "--repair-wav FILE [--rate HZ] [--channels 1|2]",
    "  Writes the header of a WAV recording that was never finished.\n",
    &repairWavCommand,
};

const CommandLineTool kAudioRecorderTool = {
    "--audio-recorder",
    "--audio-recorder",
    "  Opens the audio recorder window on its own.\n",
    &runAudioRecorder,
};

} // namespace mirabend
