#pragma once
// The recording keys of the toolbar and the task pane, with their guards:
// "record" needs an open presentation, "pause" and "stop" act only while
// Text4 reads "run". Rotations and mode changes are bracketed elsewhere.
//
// Thread contract: UI thread only.

#include "shell/ShellContext.h"

namespace mirabend {

class RecordingCommands {
public:
    static constexpr int kRecordButton = 12;
    static constexpr int kPauseButton = 13;

    explicit RecordingCommands(ShellContext& context) : m_ctx(context) {}

    // Toolbar keys.
    void record();
    void pause();
    void stop();

    // Task pane items of the "record" group.
    void startRecItem();
    void pauseItem();
    void stopItem();

    bool isRecording() const;

private:
    ShellContext& m_ctx;
};

} // namespace mirabend
