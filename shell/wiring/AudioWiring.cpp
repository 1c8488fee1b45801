#include "shell/wiring/AudioWiring.h"

#include "audio/ui/AudioTools.h"
#include "audio/ui/Form1.h"

namespace mirabend {

void AudioWiring::showRecorder()
{
    if (!m_recorder)
        m_recorder = openAudioRecorder(m_prompts, &m_window);
    if (m_recorder) {
        m_recorder->show();
        m_recorder->raise();
        m_recorder->activateWindow();
    }
}

QStringList AudioWiring::inputDevices() { return audioInputDevices(); }

} // namespace mirabend
