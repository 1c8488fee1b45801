#include "shell/camera/QtCameraControl.h"

#include "shell/camera/CameraNames.h"

#include <QCameraFormat>
#include <QFileInfo>
#include <QMediaFormat>
#include <QUrl>
#include <algorithm>

namespace mirabend {

namespace {

QString nameOf(const QCameraFormat& format) {
    return formatName(format.resolution(), format.pixelFormat(), format.maxFrameRate());
}

QStringList formatsOf(const QCameraDevice& device) {
    QStringList names;
    for (const QCameraFormat& format : device.videoFormats())
        names.append(nameOf(format));
    return withoutRepeats(names);
}

} // namespace

QtCameraControl::QtCameraControl(AnalogueInputOpener openAnalogue, QObject* parent)
    : CameraControl(parent)
    , m_openAnalogue(std::move(openAnalogue)) {
    // The video output is connected before the camera joins: the other way
    // round the GStreamer backend builds its pipeline without a sink. The
    // camera joins the session only while it runs (startCamera).
    m_session.setVideoSink(&m_sink);
    connect(&m_sink, &QVideoSink::videoFrameChanged, this, &QtCameraControl::onSinkFrame,
            Qt::DirectConnection);
    connect(&m_devices, &QMediaDevices::videoInputsChanged, this, &QtCameraControl::onDevicesChanged);
    connect(&m_recorder, &QMediaRecorder::recorderStateChanged, this, &QtCameraControl::onRecorderState);
    connect(&m_recorder, &QMediaRecorder::errorOccurred, this,
            [this](QMediaRecorder::Error, const QString& text) {
                finishCapture({CaptureError::RecorderFailed, text.toStdString()});
            });
    m_captureTimer.setSingleShot(true);
    m_startWatch.setInterval(kSilentStartMs);
    connect(&m_startWatch, &QTimer::timeout, this, &QtCameraControl::onStartWatch);
    connect(&m_captureTimer, &QTimer::timeout, &m_recorder, &QMediaRecorder::stop);

    const QCameraDevice initial = QMediaDevices::defaultVideoInput();
    if (!initial.isNull())
        useDevice(initial, QString());
}

QtCameraControl::~QtCameraControl() {
    m_sink.disconnect(this);
    m_captureTimer.stop();
    m_startWatch.stop();
    m_camera.stop();
    // The session lets go of its parts before they go.
    m_session.setRecorder(nullptr);
    m_session.setCamera(nullptr);
    m_session.setVideoSink(nullptr);
}

QStringList QtCameraControl::deviceNames() const {
    // The default device first; a device the media layer lists twice (it
    // may, after a replug) is shown once.
    QStringList names;
    for (const QCameraDevice& device : QMediaDevices::videoInputs()) {
        if (device.isDefault())
            names.prepend(device.description());
        else
            names.append(device.description());
    }
    return withoutRepeats(names);
}

QCameraDevice QtCameraControl::findDevice(const QString& name) const {
    for (const QCameraDevice& device : QMediaDevices::videoInputs()) {
        if (device.description() == name)
            return device;
    }
    return {};
}

QStringList QtCameraControl::formatNames(const QString& device) const {
    return formatsOf(findDevice(device));
}

void QtCameraControl::useDevice(const QCameraDevice& device, const QString& formatName) {
    m_camera.setCameraDevice(device);
    m_deviceName = device.description();
    m_deviceId = device.id();
    // Without a choice the first listed format is used, so the format list's
    // first entry is what runs.
    const QList<QCameraFormat> formats = device.videoFormats();
    QCameraFormat chosen = formats.isEmpty() ? QCameraFormat() : formats.first();
    for (const QCameraFormat& format : formats) {
        if (!formatName.isEmpty() && nameOf(format) == formatName) {
            chosen = format;
            break;
        }
    }
    m_formatName = chosen.isNull() ? QString() : nameOf(chosen);
    m_cameraFormat = chosen;
    applyFormat(chosen);
    if (m_tvMute)
        setTvMute(true);
}

void QtCameraControl::selectDevice(const QString& name) {
    const QCameraDevice device = findDevice(name);
    if (device.isNull())
        return;
    const bool running = m_camera.isActive();
    stopCamera();
    m_lostDevice.clear();
    useDevice(device, QString());
    if (running)
        startCamera();
}

void QtCameraControl::selectFormat(const QString& name) {
    for (const QCameraFormat& format : m_camera.cameraDevice().videoFormats()) {
        if (nameOf(format) == name) {
            if (name == m_formatName && format == m_cameraFormat) {
                // In use already: restart only a camera that sends another size.
                if (m_camera.isActive() && m_lastFrameSize.isValid() && !rightSize(m_lastFrameSize))
                    restartCamera();
                return;
            }
            // Qt 6.4 relinks a running camera unreliably: restart it.
            const bool running = m_camera.isActive();
            stopCamera();
            applyFormat(format);
            m_cameraFormat = format;
            m_formatName = name;
            if (running)
                startCamera();
            return;
        }
    }
}

void QtCameraControl::setVideoStandard(int index) {
    if (!m_openAnalogue || m_deviceName.isEmpty() || videoStandardId(index) == 0)
        return;
    if (std::unique_ptr<AnalogueInput> input = m_openAnalogue(m_deviceName))
        applyStandard(*input, index);
}

void QtCameraControl::setTvMute(bool muted) {
    m_tvMute = muted;
    if (!m_openAnalogue || m_deviceName.isEmpty())
        return;
    if (std::unique_ptr<AnalogueInput> input = m_openAnalogue(m_deviceName))
        applyMute(*input, muted);
}

void QtCameraControl::applyFormat(const QCameraFormat& format) {
    // Every change makes Qt relink the source in a pad probe: only real ones.
    if (!format.isNull() && !(m_camera.cameraFormat() == format))
        m_camera.setCameraFormat(format);
}

bool QtCameraControl::rightSize(const QSize& size) const {
    return m_cameraFormat.isNull() || size == m_cameraFormat.resolution();
}

void QtCameraControl::startCamera() {
    if (m_deviceName.isEmpty() || m_camera.isActive())
        return;
    ++m_cameraStarts;
    m_frameSinceStart = false;
    m_rightFrameSinceStart = false;
    m_restartedForSize = false;
    m_lastFrameSize = QSize();
    // Device and format are set while the source is out of the session, so
    // it starts in the chosen format and Qt relinks nothing under a live pad.
    m_session.setCamera(&m_camera);
    m_camera.start();
    // A busy machine can take longer than a camera's usual start: each retry
    // waits twice as long as the one before.
    m_startWatch.setInterval(kSilentStartMs << std::min(m_silentStarts, 3));
    m_startWatch.start();
}

void QtCameraControl::stopCamera() {
    // QCamera::stop leaves Qt 6.4's source playing: only leaving the session
    // stops it (to GStreamer's NULL state).
    m_camera.stop();
    if (m_session.camera())
        m_session.setCamera(nullptr);
    // A frame of the run that ended must not pass for one of the next.
    std::lock_guard<std::mutex> lock(m_frameMutex);
    m_pendingFrame = QVideoFrame();
}

void QtCameraControl::restartCamera() {
    // Out of the session and in again: a new start of the source, which
    // negotiates the chosen format afresh.
    const bool restartedForSize = m_restartedForSize;
    stopCamera();
    startCamera();
    m_restartedForSize = restartedForSize;
}

void QtCameraControl::onStartWatch() {
    if (!m_camera.isActive() || m_deviceName.isEmpty() || m_recordingStarted) {
        m_startWatch.stop();
        return;
    }
    if (m_frameSinceStart) {
        const bool right = m_rightFrameSinceStart;
        m_frameSinceStart = false;
        m_rightFrameSinceStart = false;
        if (right) {
            m_silentStarts = 0;
        } else if (!m_restartedForSize) {
            // Frames of another size all along: the source kept an old format.
            restartCamera();
            m_restartedForSize = true;
        } else if (m_recordPending) {
            finishCapture(
                {CaptureError::RecorderFailed, QStringLiteral("the camera sends %1x%2 instead of %3")
                                                   .arg(m_lastFrameSize.width())
                                                   .arg(m_lastFrameSize.height())
                                                   .arg(m_formatName)
                                                   .toStdString()});
        }
        return;
    }
    if (++m_silentStarts > kSilentStartRetries) {
        m_startWatch.stop(); // the pane stays empty, without a message
        if (m_recordPending)
            finishCapture({CaptureError::RecorderFailed, "the camera sends no picture"});
        return;
    }
    restartCamera();
}

void QtCameraControl::startPreview() {
    m_previewWanted = true;
    startCamera();
}

void QtCameraControl::stopPreview() {
    m_previewWanted = false;
    if (!capturing())
        stopCamera();
    Q_EMIT previewStopped();
}

void QtCameraControl::onDevicesChanged() {
    bool stillListed = false;
    for (const QCameraDevice& device : QMediaDevices::videoInputs())
        stillListed = stillListed || (device.id() == m_deviceId && device.description() == m_deviceName);
    if (!m_deviceName.isEmpty() && !stillListed) {
        const QCameraDevice again = findDevice(m_deviceName);
        if (again.isNull()) {
            // Unplugged while in use: stop cleanly, remember it for its return.
            m_lostDevice = m_deviceName;
            m_deviceName.clear();
            m_deviceId.clear();
            stopCamera();
            m_camera.setCameraDevice(QCameraDevice());
            if (m_recordPending)
                finishCapture({CaptureError::NoCamera, "the camera was unplugged"});
            else if (capturing())
                m_recorder.stop();
            Q_EMIT previewStopped();
        } else {
            // Listed anew under another id: follow it.
            takeUp(again);
        }
    } else if (m_deviceName.isEmpty()) {
        // Back again, or the first camera plugged in where there was none.
        const QCameraDevice back =
            m_lostDevice.isEmpty() ? QMediaDevices::defaultVideoInput() : findDevice(m_lostDevice);
        if (!back.isNull())
            takeUp(back);
    }
    Q_EMIT devicesChanged();
}

void QtCameraControl::takeUp(const QCameraDevice& device) {
    const bool running = m_camera.isActive() || m_previewWanted;
    stopCamera();
    useDevice(device, m_formatName);
    m_lostDevice.clear();
    if (running)
        startCamera();
}

void QtCameraControl::onSinkFrame(const QVideoFrame& frame) {
    // Any thread: keep only the newest frame and post one delivery.
    std::lock_guard<std::mutex> lock(m_frameMutex);
    if (m_pendingFrame.isValid())
        ++m_dropped;
    m_pendingFrame = frame;
    if (!m_deliveryQueued) {
        m_deliveryQueued = true;
        QMetaObject::invokeMethod(this, &QtCameraControl::deliverFrame, Qt::QueuedConnection);
    }
}

void QtCameraControl::deliverFrame() {
    QVideoFrame frame;
    {
        std::lock_guard<std::mutex> lock(m_frameMutex);
        frame = m_pendingFrame;
        m_pendingFrame = QVideoFrame();
        m_deliveryQueued = false;
    }
    if (frame.isValid() && m_camera.isActive() && !m_deviceName.isEmpty()) {
        m_frameSinceStart = true;
        m_lastFrameSize = frame.size();
        if (rightSize(frame.size())) {
            m_rightFrameSinceStart = true;
            if (m_recordPending)
                beginRecording();
        }
        Q_EMIT frameReady(frame);
    }
}

void QtCameraControl::startCapture(const QString& file, int milliseconds) {
    if (capturing())
        return;
    if (m_deviceName.isEmpty()) {
        Q_EMIT captureFinished({CaptureError::NoCamera, "no capture device"}, file);
        return;
    }
    QFile::remove(file);
    m_captureFile = file;
    m_captureMs = milliseconds;
    m_recordPending = true;
    m_recordingStarted = false;
    // The recorder joins the session only for the capture.
    m_session.setRecorder(&m_recorder);
    // VP8 in WebM: the encoder every GStreamer installation ships with.
    QMediaFormat format(QMediaFormat::WebM);
    format.setVideoCodec(QMediaFormat::VideoCodec::VP8);
    m_recorder.setMediaFormat(format);
    m_recorder.setQuality(QMediaRecorder::NormalQuality);
    if (!m_cameraFormat.isNull()) {
        m_recorder.setVideoResolution(m_cameraFormat.resolution());
        m_recorder.setVideoFrameRate(m_cameraFormat.maxFrameRate());
    }
    m_recorder.setOutputLocation(QUrl::fromLocalFile(file));
    applyFormat(m_cameraFormat);
    // The first frame of the chosen size starts the recorder (beginRecording);
    // the start watch restarts a silent camera or one of another size.
    if (!m_camera.isActive()) {
        startCamera();
    } else if (!m_startWatch.isActive()) {
        m_silentStarts = 0;
        m_startWatch.setInterval(kSilentStartMs);
        m_startWatch.start();
    }
}

void QtCameraControl::beginRecording() {
    m_recordPending = false;
    m_startWatch.stop(); // a restart now would break the recording
    m_recorder.record();
    m_captureTimer.start(m_captureMs);
}

void QtCameraControl::onRecorderState(QMediaRecorder::RecorderState state) {
    if (state == QMediaRecorder::RecordingState)
        m_recordingStarted = true;
    if (state != QMediaRecorder::StoppedState || !capturing() || m_recordPending)
        return;
    if (!m_recordingStarted) {
        const QString why = m_recorder.errorString();
        finishCapture({CaptureError::RecorderFailed,
                       why.isEmpty() ? "the recorder stopped before it started" : why.toStdString()});
        return;
    }
    const QString written = m_recorder.actualLocation().toLocalFile();
    const QString file = written.isEmpty() ? m_captureFile : written;
    if (!QFileInfo(file).isFile() || QFileInfo(file).size() == 0)
        finishCapture({CaptureError::FileNotFound, file.toStdString()});
    else
        finishCapture({});
}

void QtCameraControl::finishCapture(CaptureFailure result) {
    if (!capturing())
        return;
    const QString file = m_captureFile;
    m_captureFile.clear();
    m_recordPending = false;
    m_recordingStarted = false;
    m_captureTimer.stop();
    if (m_recorder.recorderState() != QMediaRecorder::StoppedState)
        m_recorder.stop();
    stopCamera();
    m_session.setRecorder(nullptr);
    if (m_previewWanted)
        startCamera();
    Q_EMIT captureFinished(result, file);
}

} // namespace mirabend
