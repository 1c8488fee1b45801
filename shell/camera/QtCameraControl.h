#pragma once
// The capture control on Qt Multimedia: QMediaDevices lists the cameras,
// QCamera runs the chosen one in a QMediaCaptureSession whose QVideoSink
// feeds the pane, QMediaRecorder writes the capture test. The analogue video
// standard and the tuner mute go to the device through an AnalogueInput
// (V4L2), which Qt does not offer.
//
// Unplugging the camera in use stops the preview (previewStopped); when a
// device of the same name comes back it is taken up again, and the preview
// restarts if it ran.
//
// Qt 6.4's GStreamer session keeps its camera source playing whatever
// QCamera::start/stop say, and relinks it in a pad probe on every format or
// device change. So the control changes the format only when it differs,
// restarts a camera by building its source anew, checks that the frames have
// the chosen format's size (restarting once when they do not), and starts the
// capture test's recorder only once frames of the chosen size flow: the
// recorder fixes its size from the frames flowing when it starts.
//
// Thread contract: UI thread only. The video sink may deliver frames on a
// media thread; they pass through a one-frame slot (a newer frame replaces an
// unshown one, counted in droppedFrames) and reach frameReady on the UI thread.

#include "shell/camera/AnalogueInput.h"
#include "shell/camera/CameraControl.h"

#include <QCamera>
#include <QCameraDevice>
#include <QCameraFormat>
#include <QMediaCaptureSession>
#include <QMediaDevices>
#include <QMediaRecorder>
#include <QTimer>
#include <QVideoFrame>
#include <QVideoSink>
#include <atomic>
#include <mutex>

namespace mirabend {

class QtCameraControl final : public CameraControl {
    Q_OBJECT
public:
    static constexpr int kSilentStartMs = 2000;
    static constexpr int kSilentStartRetries = 5;
    explicit QtCameraControl(AnalogueInputOpener openAnalogue, QObject* parent = nullptr);
    ~QtCameraControl() override;

    QStringList deviceNames() const override;
    QString device() const override { return m_deviceName; }
    void selectDevice(const QString& name) override;
    QStringList formatNames(const QString& device) const override;
    QString format() const override { return m_formatName; }
    void selectFormat(const QString& name) override;
    void setVideoStandard(int index) override;
    void setTvMute(bool muted) override;
    void startPreview() override;
    void stopPreview() override;
    void startCapture(const QString& file, int milliseconds) override;
    bool capturing() const override { return m_captureFile.size() > 0; }

    // How often the camera was (re)started, and frames replaced before the
    // pane showed them.
    int cameraStarts() const { return m_cameraStarts; }
    long droppedFrames() const { return m_dropped.load(); }

private:
    QCameraDevice findDevice(const QString& name) const;
    void useDevice(const QCameraDevice& device, const QString& formatName);
    void onDevicesChanged();
    void takeUp(const QCameraDevice& device);
    void onSinkFrame(const QVideoFrame& frame);
    void onStartWatch();
    void deliverFrame();
    void startCamera();
    void stopCamera();
    void restartCamera();
    void applyFormat(const QCameraFormat& format);
    bool rightSize(const QSize& size) const;
    void beginRecording();
    void finishCapture(CaptureFailure result);
    void onRecorderState(QMediaRecorder::RecorderState state);

    AnalogueInputOpener m_openAnalogue;
    QMediaDevices m_devices;
    QCamera m_camera;
    QMediaCaptureSession m_session;
    QVideoSink m_sink;
    QMediaRecorder m_recorder;
    QTimer m_captureTimer;
    // Qt 6.4's GStreamer camera now and then starts without frames, or stops
    // after the first: a running camera that stays silent is restarted, a
    // few times in a row at most.
    QTimer m_startWatch;
    int m_silentStarts = 0;
    bool m_frameSinceStart = false;
    // Frames of the chosen size since the last check, and whether the camera
    // was already restarted for sending another size.
    bool m_rightFrameSinceStart = false;
    bool m_restartedForSize = false;
    QSize m_lastFrameSize;
    QString m_deviceName;
    QByteArray m_deviceId;
    QString m_formatName;
    QCameraFormat m_cameraFormat;
    QString m_lostDevice; // the device that was unplugged while in use
    QString m_captureFile;
    int m_captureMs = 0;
    bool m_recordPending = false; // capture asked, waiting for frames of the chosen size
    bool m_recordingStarted = false;
    bool m_previewWanted = false;
    bool m_tvMute = false;
    int m_cameraStarts = 0;

    std::mutex m_frameMutex;
    QVideoFrame m_pendingFrame;
    bool m_deliveryQueued = false;
    std::atomic<long> m_dropped{0};
};

} // namespace mirabend
