#pragma once
// The recording session: the public operations the main window calls
// (StartRecPre, StartRec, PauseRec, ResumeRec, StopRec), the three 50 ms
// timers that carry a recording, the recording clock, and everything the
// session writes back into the main window.
//
// A recording starts with a short warm-up capture to the scratch file
// "\pretemp.avi"; the next pre_Timer tick ends it and asks for the real file.
// wait_Timer starts the real capture one tick after the request, and Timer2
// keeps the clock running and watches the recorder for failures.
//
// Thread contract: UI thread only; the timers are UI-thread timers, so a
// tick never overlaps an operation.

#include "recording/ui/RecorderControl.h"

#include <QDateTime>
#include <QObject>
#include <QString>

class QTimer;

namespace mirabend {

class Clock;
class DeviceOptions;
class FormatOptions;
class Prompts;
class RecordingHost;

// Why a recording to a given file did not start.
enum class StartToError {
    None,
    UnknownFormat, // no format records this file's extension
    Busy,          // a recording is already warming up, running or paused
};
using StartToFailure = Failure<StartToError>;

class RecordingSession : public QObject {
    Q_OBJECT
public:
    enum class State { Idle, WarmUp, AwaitingStart, Recording, Paused, Stopped };

    RecordingSession(RecordingHost& host, RecorderControl& recorder, Prompts& prompts, const Clock& clock,
                     FormatOptions& format, DeviceOptions& devices, QObject* parent = nullptr);

    void StartRecPre();
    void StartRec();
    void PauseRec();
    void ResumeRec();
    void StopRec();
    // A chapter of the running recording begins now (a slide or pane
    // change); nothing happens while no capture runs.
    void addChapter(const QString& title);

    // The same as StartRecPre / StartRec, but recording to `file` without
    // the save dialog, the container chosen by the file's extension. Unlike
    // the toolbar's operations these check the state: nothing starts while
    // another recording is under way.
    StartToFailure StartRecPreTo(const QString& file);
    StartToFailure StartRecTo(const QString& file);
    // The words for a StartToFailure, for a remote caller.
    static QString startToText(const StartToFailure& failure, const QString& file);

    // Timer handlers; public so a test can drive the session tick by tick.
    void pre_Timer_Timer();
    void wait_Timer_Timer();
    void Timer2_Timer();

    State state() const { return m_state; }
    QTimer* pre_Timer;
    QTimer* wait_Timer;
    QTimer* Timer2;

    // "hh:mm:ss" of a duration; like a time of day it wraps after 24 hours,
    // and a negative duration shows its magnitude.
    static QString formatElapsed(qint64 ms);
    // The value of a date-time field that was never set.
    static QDateTime emptyTime();

    // The status texts, spelled as the main window has always shown them.
    static const char* const kRecording;  // "Recording ..."
    static const char* const kPaused;     // "Paused ..."
    static const char* const kStopped;    // "Stoped ..."
    static const char* const kPleaseWait; // "Please Wait..."

Q_SIGNALS:
    void stateChanged(mirabend::RecordingSession::State state);

private:
    void setState(State state);
    // Stops a capture that failed, puts the main window back into its
    // stopped look and tells the user once.
    void failRecording(RecordingFailure failure);
    static QString failureText(const RecordingFailure& failure);
    // A missing or vanished sound source: the capture goes on with silence;
    // the status bar says so and one message tells the user.
    void tellSoundNotice();

    RecordingHost& m_host;
    RecorderControl& m_recorder;
    Prompts& m_prompts;
    const Clock& m_clock;
    FormatOptions& m_format;
    DeviceOptions& m_devices;

    State m_state = State::Idle;
    QString m_pendingTarget; // a file given without the dialog
    bool m_captureRunning = false;
    QDateTime m_startTime;
    QDateTime m_pauseTime;
    QDateTime m_resumeTime;
    qint64 m_pausedTotalMs = 0;
};

} // namespace mirabend
