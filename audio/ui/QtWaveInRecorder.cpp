#include "audio/ui/QtWaveInRecorder.h"

#include <QMetaObject>

namespace mirabend {

QtWaveInRecorder::QtWaveInRecorder(QObject* parent) : QObject(parent)
{
    m_recorder.setGotData([this](std::vector<std::int16_t>& samples, int& bytes) { Q_EMIT GotData(samples, bytes); });
    m_recorder.setDataReady([this] { wake(); });
}

QtWaveInRecorder::~QtWaveInRecorder()
{
    // Joins the capture thread, so no wake-up can reach a dead object.
    m_recorder.StopRecord();
}

// Capture thread: one posted call at a time is enough, it drains everything.
void QtWaveInRecorder::wake()
{
    if (!m_posted.exchange(true))
        QMetaObject::invokeMethod(this, &QtWaveInRecorder::deliverNow, Qt::QueuedConnection);
}

void QtWaveInRecorder::deliverNow()
{
    m_posted = false;
    if (!m_recorder.IsRecording())
        return;
    m_recorder.DeliverPending();
    const CaptureFailure failure = m_recorder.captureFailure();
    if (!failure)
        m_failureReported = false;
    else if (!m_failureReported && m_recorder.IsRecording()) {
        m_failureReported = true;
        Q_EMIT captureFailed(QString::fromStdString(failure.detail));
    }
}

} // namespace mirabend
