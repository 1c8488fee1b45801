#include "shell/camera/QtCameraControl.h"

#include <algorithm>

#include "shell/camera/CameraNames.h"

#include <QCameraFormat>
#include <QFileInfo>
#include <QMediaFormat>
#include <QUrl>

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
    // The video output is connected before the camera is set: the other way
    // round the GStreamer backend builds its pipeline without a sink.
    m_session.setVideoSink(&m_sink);
    m_session.setCamera(&m_camera);
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
    if (!chosen.isNull())
        m_camera.setCameraFormat(chosen);
    if (m_tvMute)
        setTvMute(true);
}

void QtCameraControl::selectDevice(const QString& name) {
    const QCameraDevice device = findDevice(name);
    if (device.isNull())
        return;
    const bool running = m_camera.isActive();
    m_camera.stop();
    m_lostDevice.clear();
    useDevice(device, QString());
    if (running)
        startCamera();
}

void QtCameraControl::selectFormat(const QString& name) {
    for (const QCameraFormat& format : m_camera.cameraDevice().videoFormats()) {
        if (nameOf(format) == name) {
            if (name == m_formatName && format == m_cameraFormat)
                return; // in use already: no restart
            // Qt 6.4 relinks a running camera unreliably: restart it.
            const bool running = m_camera.isActive();
            m_camera.stop();
            m_camera.setCameraFormat(format);
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

void QtCameraControl::startCamera() {
    if (m_deviceName.isEmpty() || m_camera.isActive())
        return;
    ++m_cameraStarts;
    m_frameSinceStart = false;
    m_camera.start();
    // A busy machine can take longer than a camera's usual start: each retry
    // waits twice as long as the one before.
    m_startWatch.setInterval(kSilentStartMs << std::min(m_silentStarts, 3));
    m_startWatch.start();
}

void QtCameraControl::onStartWatch() {
    if (!m_camera.isActive() || m_deviceName.isEmpty() || capturing()) {
        m_startWatch.stop();
        return;
    }
    if (m_frameSinceStart) {
        m_frameSinceStart = false;
        m_silentStarts = 0;
        return;
    }
    if (++m_silentStarts > kSilentStartRetries) {
        m_startWatch.stop(); // the pane stays empty, without a message
        return;
    }
    m_camera.stop();
    startCamera();
}

void QtCameraControl::startPreview() {
    m_previewWanted = true;
    startCamera();
}

void QtCameraControl::stopPreview() {
    m_previewWanted = false;
    if (!capturing())
        m_camera.stop();
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
            m_camera.stop();
            m_camera.setCameraDevice(QCameraDevice());
            if (capturing())
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
    m_camera.stop();
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
    // The recorder joins the session only for the capture, with the camera
    // stopped: otherwise Qt 6.4 may run the camera in another of its formats.
    m_camera.stop();
    m_session.setRecorder(&m_recorder);
    // VP8 in WebM: the encoder every GStreamer installation ships with.
    QMediaFormat format(QMediaFormat::WebM);
    format.setVideoCodec(QMediaFormat::VideoCodec::VP8);
    m_recorder.setMediaFormat(format);
    m_recorder.setQuality(QMediaRecorder::NormalQuality);
    // Without these the recorder may renegotiate the camera to another of
    // its formats.
    if (!m_cameraFormat.isNull()) {
        m_recorder.setVideoResolution(m_cameraFormat.resolution());
        m_recorder.setVideoFrameRate(m_cameraFormat.maxFrameRate());
    }
    m_camera.setCameraFormat(m_cameraFormat);
    startCamera();
    m_recorder.setOutputLocation(QUrl::fromLocalFile(file));
    m_recorder.record();
    m_captureTimer.start(milliseconds);
}

void QtCameraControl::onRecorderState(QMediaRecorder::RecorderState state) {
    if (state != QMediaRecorder::StoppedState || !capturing())
        return;
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
    m_captureTimer.stop();
    if (m_recorder.recorderState() != QMediaRecorder::StoppedState)
        m_recorder.stop();
    m_camera.stop();
    m_session.setRecorder(nullptr);
    if (m_previewWanted)
        startCamera();
    Q_EMIT captureFinished(result, file);
}

} // namespace mirabend
