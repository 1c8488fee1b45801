#pragma once
// SIGTERM and SIGINT end the program through its event loop instead of on
// the spot, so that the windows and the recorder are torn down normally and
// a recording (or one still finishing after a stop) closes a playable file.
//
// Thread contract: constructed and destroyed on the UI thread; the signal
// handler only writes one byte into a pipe, read back on the UI thread.

#include <QObject>

class QSocketNotifier;

namespace mirabend {

class TerminationSignals final : public QObject {
public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    void onSignal();

    QSocketNotifier* m_notifier = nullptr;
};

} // namespace mirabend
