// Shows the camera pane's preview of the default camera in a window of the
// given size for some seconds, then prints the frames it painted. The CPU it
// takes is measured by camera_bench.sh against gst-launch-1.0 showing the same
// source in a window of the same size.
//   camera_preview_bench WIDTH HEIGHT SECONDS [FORMAT]
#include "shell/camera/CameraPreview.h"
#include "shell/camera/QtCameraControl.h"

#include <QApplication>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc < 4) {
        std::fprintf(stderr, "usage: camera_preview_bench WIDTH HEIGHT SECONDS [FORMAT]\n");
        return 2;
    }
    const int width = std::atoi(argv[1]);
    const int height = std::atoi(argv[2]);
    const int seconds = std::atoi(argv[3]);
    mirabend::QtCameraControl control(nullptr);
    mirabend::CameraPreview preview;
    preview.resize(width, height);
    QObject::connect(&control, &mirabend::CameraControl::frameReady, &preview,
                     &mirabend::CameraPreview::setFrame);
    const auto start = [&] {
        if (argc > 4)
            control.selectFormat(QString::fromUtf8(argv[4]));
        control.startPreview();
    };
    // The camera starts once the window shows and the event loop runs, as in
    // the pane; it may be announced a moment after the start.
    QObject::connect(&control, &mirabend::CameraControl::devicesChanged, &app, start);
    preview.show();
    QTimer::singleShot(0, &app, start);
    QTimer::singleShot(seconds * 1000, &app, &QApplication::quit);
    app.exec();
    std::printf("%ld %ld\n", preview.framesPainted(), control.droppedFrames());
    return control.device().isEmpty() ? 1 : 0;
}
