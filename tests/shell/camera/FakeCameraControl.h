#pragma once
// Fakes of the camera's platform pieces: an analogue input that logs what it
// is handed, and a capture control that lists devices from a table, records
// every call and finishes captures when the test says so.

#include "shell/camera/AnalogueInput.h"
#include "shell/camera/CameraControl.h"

#include <QMap>
#include <QStringList>
#include <vector>

namespace mirabend::test {

struct AnalogueLog {
    std::vector<std::uint64_t> standards;
    std::vector<bool> mutes;
};

// A device that accepts the standards in its mask; the log outlives it.
class FakeAnalogueInput final : public AnalogueInput {
public:
    FakeAnalogueInput(std::uint64_t standards, bool mute, AnalogueLog& log)
        : m_standards(standards)
        , m_mute(mute)
        , m_log(log) {}
    std::uint64_t supportedStandards() const override { return m_standards; }
    bool setStandard(std::uint64_t standard) override {
        m_log.standards.push_back(standard);
        return true;
    }
    bool hasMute() const override { return m_mute; }
    bool setMute(bool muted) override {
        m_log.mutes.push_back(muted);
        return true;
    }

private:
    std::uint64_t m_standards;
    bool m_mute;
    AnalogueLog& m_log;
};

class FakeCameraControl final : public CameraControl {
public:
    QMap<QString, QStringList> devices; // name -> formats
    QStringList order;                  // device names in listing order
    QString inUse;
    QString formatInUse;
    QStringList calls;
    bool running = false;
    bool capture = false;

    void addDevice(const QString& name, const QStringList& formats) {
        devices[name] = formats;
        order << name;
    }
    QStringList deviceNames() const override { return order; }
    QString device() const override { return inUse; }
    void selectDevice(const QString& name) override {
        calls << QStringLiteral("selectDevice ") + name;
        inUse = name;
        formatInUse = devices.value(name).value(0);
    }
    QStringList formatNames(const QString& name) const override { return devices.value(name); }
    QString format() const override { return formatInUse; }
    void selectFormat(const QString& name) override {
        calls << QStringLiteral("selectFormat ") + name;
        formatInUse = name;
    }
    void setVideoStandard(int index) override { calls << QStringLiteral("standard %1").arg(index); }
    void setTvMute(bool muted) override { calls << QStringLiteral("mute %1").arg(muted); }
    void startPreview() override {
        if (!running)
            calls << QStringLiteral("start");
        running = true;
    }
    void stopPreview() override {
        if (running)
            calls << QStringLiteral("stop");
        running = false;
        Q_EMIT previewStopped();
    }
    void startCapture(const QString& file, int ms) override {
        calls << QStringLiteral("capture %1 ms").arg(ms);
        capture = true;
        lastCaptureFile = file;
    }
    bool capturing() const override { return capture; }
    void finishCapture(CaptureFailure result) {
        capture = false;
        Q_EMIT captureFinished(result, lastCaptureFile);
    }
    void unplug(const QString& name) {
        devices.remove(name);
        order.removeAll(name);
        if (inUse == name) {
            inUse.clear();
            Q_EMIT previewStopped();
        }
        Q_EMIT devicesChanged();
    }
    QString lastCaptureFile;
};

} // namespace mirabend::test
