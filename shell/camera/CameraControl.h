#pragma once
// The capture control behind the camera pane: lists and selects capture
// devices and their formats, sets the analogue video standard and the TV
// tuner's mute, runs the preview and records a short test capture. The pane's
// logic (CameraPane) talks only to this interface; QtCameraControl is the one
// real backend, tests use fakes.
//
// Devices and formats are named as a user reads them: the device's own name,
// and "1280x720 MJPEG 30 fps" for a format.
//
// Thread contract: UI thread only. Frames arrive on the UI thread through
// frameReady; a backend whose frames come from another thread hands them over
// itself.

#include "util/core/Failure.h"

#include <QObject>
#include <QStringList>

class QVideoFrame;

namespace mirabend {

enum class CaptureError {
    None,
    NoCamera,       // nothing to record from
    RecorderFailed, // the encoder or the file could not be set up or written
    FileNotFound,   // the recorder reported success but left no file
};

using CaptureFailure = Failure<CaptureError>;

class CameraControl : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    virtual QStringList deviceNames() const = 0;
    // The device in use; empty when there is none (no camera, or unplugged).
    virtual QString device() const = 0;
    virtual void selectDevice(const QString& name) = 0;

    // Formats of the named device (not necessarily the one in use).
    virtual QStringList formatNames(const QString& device) const = 0;
    virtual QString format() const = 0;
    virtual void selectFormat(const QString& name) = 0;

    // Index into the 20 designed standards; 0 ("Digital sensor") sets none.
    // A device without analogue standards ignores it.
    virtual void setVideoStandard(int index) = 0;
    // Mutes the TV tuner's sound; a device without the control ignores it.
    virtual void setTvMute(bool muted) = 0;

    virtual void startPreview() = 0;
    virtual void stopPreview() = 0;

    // Records `milliseconds` from the device in use into `file`; the answer
    // comes through captureFinished.
    virtual void startCapture(const QString& file, int milliseconds) = 0;
    virtual bool capturing() const = 0;

Q_SIGNALS:
    void frameReady(const QVideoFrame& frame);
    // The preview stopped (device gone or preview stopped); the pane clears.
    void previewStopped();
    // The device list changed (a camera was plugged in or out).
    void devicesChanged();
    void captureFinished(const mirabend::CaptureFailure& result, const QString& file);
};

} // namespace mirabend
