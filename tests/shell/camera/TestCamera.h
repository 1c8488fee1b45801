#pragma once
// The test cameras: a GStreamer device provider over videotestsrc, found
// through GST_PLUGIN_PATH (set by the test's CMake entry). This process gets
// its own plug file: the cameras are listed while it exists, so a test can
// unplug and replug them without touching tests running beside it.

#include "support/ChildProcess.h"

#include <QCameraDevice>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMediaDevices>
#include <QThread>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

namespace mirabend::test {

class TestCameras {
public:
    static TestCameras& instance() {
        static TestCameras cameras;
        return cameras;
    }
    static inline const QString kName = QStringLiteral("Mirabend Test Camera");
    static inline const QString kNoFormats = QStringLiteral("Mirabend Test Camera (no formats)");

    void plug(bool in) {
        if (in) {
            if (FILE* f = std::fopen(m_plug.c_str(), "w"))
                std::fclose(f);
        } else {
            std::remove(m_plug.c_str());
        }
    }

private:
    TestCameras()
        : m_plug(m_folder.file("plugged")) {
        plug(true);
        setenv("MIRABEND_TEST_CAMERA_PLUG", m_plug.c_str(), 1);
    }
    TempFolder m_folder{"mirabend-camera"};
    std::string m_plug;
};

// Runs the event loop until `done` holds or `ms` pass; returns `done()`.
inline bool waitFor(const std::function<bool()>& done, int ms = 40000) {
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < ms) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        QThread::msleep(10);
    }
    return done();
}

inline bool cameraListed(const QString& name) {
    for (const QCameraDevice& device : QMediaDevices::videoInputs()) {
        if (device.description() == name)
            return true;
    }
    return false;
}

} // namespace mirabend::test
