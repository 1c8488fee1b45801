#pragma once
// The audio recorder window and the list of sound inputs behind the main
// window's AudioPort.
//
// Thread contract: UI thread only.

#include "shell/ports/Ports.h"

#include <QPointer>

class QWidget;

namespace mirabend {

class Form1;
class Prompts;

class AudioWiring final : public AudioPort {
public:
    AudioWiring(QWidget& window, Prompts& prompts) : m_window(window), m_prompts(prompts) {}

    // One recorder window at a time: a second "mic" brings it to the front.
    void showRecorder() override;
    QStringList inputDevices() override;

private:
    QWidget& m_window;
    Prompts& m_prompts;
    QPointer<Form1> m_recorder;
};

} // namespace mirabend
