#include "recording/ui/RecordingSession.h"

#include "recording/ui/DeviceOptions.h"
#include "recording/ui/FormatBranches.h"
#include "recording/ui/FormatOptions.h"
#include "recording/ui/NumberField.h"
#include "recording/ui/OptionLists.h"
#include "recording/ui/RecordingHost.h"
#include "util/Clock.h"
#include "util/ProgramFolder.h"
#include "util/Prompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QTimer>

namespace mirabend {

const char* const RecordingSession::kRecording = "Recording ...";
const char* const RecordingSession::kPaused = "Paused ...";
const char* const RecordingSession::kStopped = "Stoped ...";
const char* const RecordingSession::kPleaseWait = "Please Wait...";

namespace {

constexpr int kTickMs = 50;
constexpr int kToolbarRecordButton = 12;
constexpr int kSoundPanel = 3; // says when the sound track is recorded silent
constexpr qint64 kDayMs = 24LL * 60 * 60 * 1000;

QTimer* makeTimer(const char* name, QObject* parent) {
    auto* timer = new QTimer(parent);
    timer->setObjectName(QLatin1String(name));
    timer->setInterval(kTickMs);
    return timer;
}

QString text(const char* latin) {
    return QString::fromLatin1(latin);
}

} // namespace

RecordingSession::RecordingSession(RecordingHost& host, RecorderControl& recorder, Prompts& prompts,
                                   const Clock& clock, FormatOptions& format, DeviceOptions& devices,
                                   QObject* parent)
    : QObject(parent)
    , pre_Timer(makeTimer("pre_Timer", this))
    , wait_Timer(makeTimer("wait_Timer", this))
    , Timer2(makeTimer("Timer2", this))
    , m_host(host)
    , m_recorder(recorder)
    , m_prompts(prompts)
    , m_clock(clock)
    , m_format(format)
    , m_devices(devices)
    , m_startTime(emptyTime())
    , m_pauseTime(emptyTime())
    , m_resumeTime(emptyTime()) {
    connect(pre_Timer, &QTimer::timeout, this, &RecordingSession::pre_Timer_Timer);
    connect(wait_Timer, &QTimer::timeout, this, &RecordingSession::wait_Timer_Timer);
    connect(Timer2, &QTimer::timeout, this, &RecordingSession::Timer2_Timer);
}

QDateTime RecordingSession::emptyTime() {
    return QDateTime(QDate(1899, 12, 30), QTime(0, 0));
}

QString RecordingSession::formatElapsed(qint64 ms) {
    const qint64 inDay = (ms < 0 ? -ms : ms) % kDayMs;
    const qint64 seconds = inDay / 1000;
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600, 2, 10, QLatin1Char('0'))
        .arg((seconds / 60) % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

void RecordingSession::setState(State state) {
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT stateChanged(state);
}

void RecordingSession::StartRecPre() {
    // The warm-up only primes the capture devices; a step that fails is
    // skipped and the real recording reports its own failures.
    m_host.setNoticeVisible(true);
    m_recorder.CaptureWindowHandle(m_devices.txtwinhandle->text());
    m_recorder.HardwareAcceleration(false);
    m_recorder.OutputFileName(ProgramFolder::writableFile(QStringLiteral("\\pretemp.avi")));
    m_recorder.OutputFormat(RecorderFormat::Avi);
    FormatBranches(m_format, m_devices, m_recorder, m_prompts).applyCompressors();
    m_recorder.AviSwitches(true);
    bool numeric = false;
    const double bitrate = m_format.txtavimp3bitrate->text().trimmed().toDouble(&numeric);
    if (numeric)
        m_recorder.AviAudioBitrate(bitrate);
    m_recorder.AviAudioSampleRate(options::kWarmUpSampleRate);
    m_recorder.AviSize(options::kWarmUpWidth, options::kWarmUpHeight);
    m_recorder.StartCapture();
    pre_Timer->start();
    setState(State::WarmUp);
}

StartToFailure RecordingSession::StartRecPreTo(const QString& file) {
    if (options::filterIndexForFile(file) == 0)
        return {StartToError::UnknownFormat, file.toStdString()};
    if (m_state == State::WarmUp || m_state == State::AwaitingStart || m_state == State::Recording ||
        m_state == State::Paused)
        return {StartToError::Busy, {}};
    m_pendingTarget = file;
    StartRecPre();
    return {};
}

QString RecordingSession::startToText(const StartToFailure& failure, const QString& file) {
    switch (failure.code) {
    case StartToError::None:
        return {};
    case StartToError::UnknownFormat:
        return QStringLiteral("no format records \"%1\"; use .wmv, .avi, .flv, .swf, .mp4 or .mkv").arg(file);
    case StartToError::Busy:
        return QStringLiteral("a recording is already under way");
    }
    return {};
}

void RecordingSession::pre_Timer_Timer() {
    m_recorder.StopCapture();
    pre_Timer->stop();
    m_host.setNoticeVisible(false);
    setState(State::Idle);
    StartRec();
    m_host.setRecordingState(QStringLiteral("R"));
    m_host.setText4(QStringLiteral("run"));
}

StartToFailure RecordingSession::StartRecTo(const QString& file) {
    if (options::filterIndexForFile(file) == 0)
        return {StartToError::UnknownFormat, file.toStdString()};
    if (m_state == State::AwaitingStart || m_state == State::Recording || m_state == State::Paused)
        return {StartToError::Busy, {}};
    m_pendingTarget = file;
    StartRec();
    return {};
}

void RecordingSession::StartRec() {
    m_recorder.CaptureWindowHandle(m_devices.txtwinhandle->text());
    m_recorder.CaptureMouseCursor(m_devices.chkcapmousecursor->isChecked() ? 1 : 0);
    m_recorder.AudioDeviceIndex(m_devices.cboaudiodevice->currentIndex());
    m_recorder.AudioInputPinIndex(m_devices.cboaudioinputpin->currentIndex());
    m_recorder.HardwareAcceleration(m_devices.HWAc_opt->isChecked());

    QString fileName;
    int filterIndex = 0;
    if (!m_pendingTarget.isEmpty()) {
        fileName = m_pendingTarget;
        filterIndex = options::filterIndexForFile(fileName);
        m_pendingTarget.clear();
    } else {
        FileRequest request;
        request.title = text(options::kSaveTitle);
        request.filter = options::saveFilter();
        request.filterIndex = 1;
        const FileAnswer answer = m_prompts.saveFile(request);
        fileName = answer.fileName;
        filterIndex = answer.filterIndex;
    }
    // No file: the warm-up is over and nothing else changes.
    if (fileName.isEmpty())
        return;

    const auto fps = readNumber(m_format.txtfps, QStringLiteral("frame rate"), m_prompts);
    if (!fps)
        return;
    m_recorder.OutputFileName(fileName);
    m_recorder.FrameRate(*fps);
    const BranchResult branch = FormatBranches(m_format, m_devices, m_recorder, m_prompts)
                                    .apply(filterIndex, QSize(m_host.stageWidth(), m_host.stageHeight()));
    if (!branch.ok)
        return;
    if (branch.caption)
        m_host.setStatusPanel(4, *branch.caption);

    m_host.setStatusPanel(5, text(kPleaseWait));
    m_host.setToolbarButtonEnabled(kToolbarRecordButton, false);
    // Each recording keeps its own clock.
    m_startTime = m_clock.now();
    m_pauseTime = emptyTime();
    m_pausedTotalMs = 0;
    wait_Timer->start();
    m_host.setRecordItemEnabled(QStringLiteral("options"), false);
    m_host.setRecordItemEnabled(QStringLiteral("startrec"), false);
    m_host.setRecordItemEnabled(QStringLiteral("pause"), true);
    m_host.setRecordItemEnabled(QStringLiteral("stop"), true);
    m_host.redrawTaskPane();
    m_host.setTopMost(true);
    setState(State::AwaitingStart);
}

void RecordingSession::wait_Timer_Timer() {
    wait_Timer->stop();
    if (!m_recorder.StartCapture()) {
        RecordingFailure failure = m_recorder.failure();
        if (!failure)
            failure = RecordingFailure(RecordingError::StartRefused);
        failRecording(failure);
        return;
    }
    m_captureRunning = true;
    m_host.setStatusPanel(1, text(kRecording));
    m_host.setStatusPanel(kSoundPanel, QString());
    Timer2->start();
    setState(State::Recording);
    tellSoundNotice();
}

void RecordingSession::tellSoundNotice() {
    const RecordingFailure notice = m_recorder.takeSoundNotice();
    if (!notice)
        return;
    const bool missing = notice.code == RecordingError::SoundMissing;
    m_host.setStatusPanel(kSoundPanel, missing ? QStringLiteral("No sound device: recording silence")
                                               : QStringLiteral("Sound source lost: recording silence"));
    QString message = missing ? QStringLiteral("No sound device is available. The recording goes on with "
                                               "silence in its sound track.")
                              : QStringLiteral("The sound source is no longer available. The recording goes "
                                               "on; its sound is silent from this moment.");
    if (!notice.detail.empty())
        message += QStringLiteral("\n\n") + QString::fromStdString(notice.detail);
    m_prompts.show(message, text(options::kMessageTitle), PromptIcon::Exclamation);
}

void RecordingSession::Timer2_Timer() {
    if (const RecordingFailure failure = m_recorder.failure()) {
        failRecording(failure);
        return;
    }
    tellSoundNotice();
    const QDateTime now = m_clock.now();
    const qint64 totalMs = m_startTime.msecsTo(now);
    const qint64 netMs = totalMs - m_pausedTotalMs;
    // Until the first pause the field reads "R" and the wall-clock time is
    // shown; from the first resume on, the time without the pauses.
    const QString shown = formatElapsed(m_host.recordingState() == QLatin1String("R") ? totalMs : netMs);
    m_host.setStatusPanel(5, shown);
    m_host.setElapsedLabel(shown);
}

void RecordingSession::PauseRec() {
    m_host.setTopMost(false);
    m_host.setRecordingState(QStringLiteral("P"));
    m_pauseTime = m_clock.now();
    m_recorder.PauseCapture();
    m_host.setStatusPanel(1, text(kPaused));
    Timer2->stop();
    if (m_captureRunning)
        setState(State::Paused);
}

void RecordingSession::addChapter(const QString& title) {
    if (m_captureRunning && (m_state == State::Recording || m_state == State::Paused))
        m_recorder.addChapter(title);
}

void RecordingSession::ResumeRec() {
    m_recorder.ResumeCapture();
    // The status bar only claims a recording that really runs.
    if (m_captureRunning)
        m_host.setStatusPanel(1, text(kRecording));
    m_resumeTime = m_clock.now();
    m_pausedTotalMs += m_pauseTime.msecsTo(m_resumeTime);
    // The clock runs only for a recording: the main window resumes around
    // every layout change, recording or not, and an idle clock would show
    // the time of day.
    if (m_captureRunning)
        Timer2->start();
    // Deliberately not back into the top-most band.
    if (m_captureRunning) {
        setState(State::Recording);
        if (const RecordingFailure failure = m_recorder.failure())
            failRecording(failure);
    }
}

void RecordingSession::StopRec() {
    m_host.setTopMost(false);
    m_recorder.StopCapture();
    m_captureRunning = false;
    m_host.setStatusPanel(4, QString());
    m_host.setStatusPanel(1, text(kStopped));
    Timer2->stop();
    pre_Timer->stop();
    wait_Timer->stop();
    setState(State::Stopped);
}

void RecordingSession::failRecording(RecordingFailure failure) {
    // Stopping closes the file, so what was recorded so far stays playable.
    StopRec();
    m_host.setToolbarButtonEnabled(kToolbarRecordButton, true);
    m_host.setText4(QStringLiteral("sleep"));
    m_host.setRecordItemEnabled(QStringLiteral("options"), true);
    m_host.setRecordItemEnabled(QStringLiteral("startrec"), true);
    m_host.setRecordItemEnabled(QStringLiteral("pause"), false);
    m_host.setRecordItemEnabled(QStringLiteral("stop"), false);
    m_host.redrawTaskPane();
    m_prompts.show(failureText(failure), text(options::kMessageTitle), PromptIcon::Critical);
}

QString RecordingSession::failureText(const RecordingFailure& failure) {
    QString text;
    switch (failure.code) {
    case RecordingError::StartRefused:
        text = QStringLiteral("The recording could not be started.");
        break;
    case RecordingError::DiskFull:
        text = QStringLiteral("The disk is full. The recording was stopped; the file holds everything "
                              "recorded up to this moment.");
        break;
    case RecordingError::WriteFailed:
    case RecordingError::AudioSourceLost: // a notice, not a failure (see tellSoundNotice)
    case RecordingError::SoundMissing:
    case RecordingError::None:
        text = QStringLiteral("The recording failed and was stopped; the file holds everything recorded "
                              "up to this moment.");
        break;
    }
    if (!failure.detail.empty())
        text += QStringLiteral("\n\n") + QString::fromStdString(failure.detail);
    return text;
}

} // namespace mirabend
