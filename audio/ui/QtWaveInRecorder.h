#pragma once
// Brings the wave-in engine's buffers onto the Qt UI thread: the capture
// thread only posts a wake-up; the UI thread then emits GotData for every
// filled buffer, oldest first, each exactly once. A failed capture (the
// device vanished) is announced once through captureFailed.
//
// Thread contract: create, use and destroy on the UI thread. GotData and
// captureFailed are emitted on the UI thread; connect them directly.

#include "audio/capture/WaveInRecorder.h"

#include <QObject>
#include <QString>
#include <atomic>
#include <cstdint>
#include <vector>

namespace mirabend {

class QtWaveInRecorder : public QObject {
    Q_OBJECT
public:
    explicit QtWaveInRecorder(QObject* parent = nullptr);
    ~QtWaveInRecorder() override;

    WaveInRecorder& recorder() { return m_recorder; }
    WaveInRecorder* operator->() { return &m_recorder; }

    // Delivers what is pending now (also done by the posted wake-up).
    void deliverNow();

Q_SIGNALS:
    // The buffer's own samples and its recorded byte count; the handler must
    // finish with them before returning.
    void GotData(std::vector<std::int16_t>& samples, int& bytesRecorded);
    void captureFailed(const QString& detail);

private:
    void wake();

    WaveInRecorder m_recorder;
    std::atomic<bool> m_posted{false};
    bool m_failureReported = false;
};

} // namespace mirabend
