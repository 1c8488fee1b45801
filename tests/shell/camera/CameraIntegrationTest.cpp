// The camera pane on the real parts: Qt Multimedia's GStreamer backend with
// the test cameras, the main window on a private Xvfb display, and the
// stage recorded by the recording engine and read back with libavformat.
#include "FakeCameraControl.h"
#include "TestCamera.h"
#include "recording/engine/Screen2Video.h"
#include "shell/CommandDispatcher.h"
#include "shell/Mirabend_frm.h"
#include "shell/Stage.h"
#include "shell/camera/CameraPane.h"
#include "shell/camera/QtCameraControl.h"
#include "shell/wiring/CameraWiring.h"
#include "support/MediaProbe.h"
#include "support/ScriptedPrompts.h"
#include "util/ExplorerBar.h"

#include <QComboBox>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <gtest/gtest.h>
#include <linux/videodev2.h>

namespace mirabend::test {
namespace {

// Counts the frames a control hands out and keeps the last one's size.
struct FrameWatch {
    explicit FrameWatch(CameraControl& control) {
        QObject::connect(&control, &CameraControl::frameReady, [this](const QVideoFrame& f) {
            ++frames;
            size = f.size();
        });
    }
    int frames = 0;
    QSize size;
};

class CameraIntegration : public ::testing::Test {
protected:
    void SetUp() override {
        TestCameras::instance().plug(true);
        ASSERT_TRUE(waitFor([] { return cameraListed(TestCameras::kName); }))
            << "the test camera plugin was not found (GST_PLUGIN_PATH)";
    }
    void TearDown() override {
        TestCameras::instance().plug(true);
        waitFor([] { return cameraListed(TestCameras::kName); });
    }
};

TEST_F(CameraIntegration, ListsSelectsAndHandsTheStandardToTheDevice) {
    AnalogueLog log;
    QStringList opened;
    QtCameraControl control([&](const QString& name) -> std::unique_ptr<AnalogueInput> {
        opened << name;
        return std::make_unique<FakeAnalogueInput>(V4L2_STD_PAL | V4L2_STD_NTSC, true, log);
    });
    const QStringList devices = control.deviceNames();
    EXPECT_EQ(devices.value(0), TestCameras::kName) << "the default device comes first";
    EXPECT_TRUE(devices.contains(TestCameras::kNoFormats));
    EXPECT_EQ(devices.count(TestCameras::kName), 1);
    EXPECT_EQ(control.device(), TestCameras::kName);
    const QStringList formats{"640x480 YUY2 30 fps", "320x240 I420 15 fps", "1280x720 I420 30 fps"};
    EXPECT_EQ(control.formatNames(TestCameras::kName), formats);
    EXPECT_TRUE(control.formatNames(TestCameras::kNoFormats).isEmpty());
    EXPECT_EQ(control.format(), formats[0]) << "the first listed format is the one in use";

    control.setVideoStandard(0);  // Digital sensor: nothing is handed over
    control.setVideoStandard(4);  // PAL -B
    control.setVideoStandard(1);  // NTSC (M)
    control.setVideoStandard(12); // SECAM (D): the device does not know it
    control.setTvMute(true);
    EXPECT_EQ(log.standards, (std::vector<std::uint64_t>{V4L2_STD_PAL_B, V4L2_STD_NTSC_M}));
    EXPECT_EQ(log.mutes, std::vector<bool>{true});
    EXPECT_EQ(opened.value(0), TestCameras::kName);

    // Frames flow at the chosen format's size; a format change restarts.
    FrameWatch watch(control);
    int& frames = watch.frames;
    const QSize& size = watch.size;
    control.startPreview();
    ASSERT_TRUE(waitFor([&] { return frames > 3; })) << "no frames from the test camera";
    EXPECT_EQ(size, QSize(640, 480));
    control.selectFormat(formats[1]);
    EXPECT_TRUE(waitFor([&] { return size == QSize(320, 240); }));
    EXPECT_EQ(control.cameraStarts(), 2);
    control.stopPreview();
}

TEST_F(CameraIntegration, TheCaptureTestWritesFiveSecondsThatReadBack) {
    QtCameraControl control(nullptr);
    const QString file = CameraPane::captureTestFile();
    bool finished = false;
    CaptureFailure result{CaptureError::RecorderFailed};
    QString written;
    QObject::connect(&control, &CameraControl::captureFinished,
                     [&](const CaptureFailure& r, const QString& f) {
                         finished = true;
                         result = r;
                         written = f;
                     });
    // The format changes under a running preview, and the capture starts
    // straight after the preview stops: it still records the chosen format.
    int frames = 0;
    QObject::connect(&control, &CameraControl::frameReady, [&](const QVideoFrame&) { ++frames; });
    control.startPreview();
    ASSERT_TRUE(waitFor([&] { return frames > 0; }, 60000));
    control.selectFormat("320x240 I420 15 fps");
    control.stopPreview();
    control.startCapture(file, CameraPane::kCaptureTestMs);
    ASSERT_TRUE(waitFor([&] { return finished; }, 60000));
    ASSERT_FALSE(result) << result.detail;
    EXPECT_EQ(written, file);
    const MediaInfo info = probe(file.toStdString());
    ASSERT_TRUE(info.opened) << file.toStdString();
    EXPECT_EQ(info.videoCodec, "vp8");
    EXPECT_EQ(info.width, 320);
    EXPECT_EQ(info.height, 240);
    // About five seconds (the encoder may add packets of its own).
    EXPECT_GT(info.videoPackets, 40);
    EXPECT_NEAR(info.videoSeconds - info.videoStartSeconds, 5.0, 1.0);
    QFile::remove(file);
}

TEST_F(CameraIntegration, ACameraPluggedInLaterIsTakenUp) {
    TestCameras::instance().plug(false);
    ASSERT_TRUE(waitFor([] { return QMediaDevices::videoInputs().isEmpty(); }));
    QtCameraControl control(nullptr);
    EXPECT_TRUE(control.device().isEmpty());
    EXPECT_TRUE(control.deviceNames().isEmpty());
    FrameWatch watch(control);
    int& frames = watch.frames;
    const QSize& size = watch.size;
    control.startPreview();
    TestCameras::instance().plug(true);
    ASSERT_TRUE(waitFor([&] { return control.device() == TestCameras::kName; }));
    EXPECT_EQ(control.format(), "640x480 YUY2 30 fps");
    EXPECT_TRUE(waitFor([&] { return frames > 3 && size == QSize(640, 480); }, 60000))
        << "the preview asked for before did not start in the format it reports";
}

TEST_F(CameraIntegration, UnpluggedCameraLeavesThePaneAndComesBack) {
    QtCameraControl control(nullptr);
    int frames = 0, stops = 0;
    QObject::connect(&control, &CameraControl::frameReady, [&](const QVideoFrame&) { ++frames; });
    QObject::connect(&control, &CameraControl::previewStopped, [&] { ++stops; });
    control.startPreview();
    ASSERT_TRUE(waitFor([&] { return frames > 0; }));
    TestCameras::instance().plug(false);
    ASSERT_TRUE(waitFor([&] { return control.device().isEmpty(); })) << "the unplug was not noticed";
    EXPECT_EQ(stops, 1);
    EXPECT_FALSE(control.deviceNames().contains(TestCameras::kName));
    // Capturing with nothing plugged in fails cleanly.
    bool failed = false;
    QObject::connect(&control, &CameraControl::captureFinished, [&](const CaptureFailure& r, const QString&) {
        failed = r.code == CaptureError::NoCamera;
    });
    control.startCapture(CameraPane::captureTestFile() + ".none", 1000);
    EXPECT_TRUE(failed);

    TestCameras::instance().plug(true);
    ASSERT_TRUE(waitFor([&] { return control.device() == TestCameras::kName; }))
        << "the replug was not taken up";
    frames = 0;
    // The camera's own retries wait 2, 4, 8 and 16 s on a busy machine.
    EXPECT_TRUE(waitFor([&] { return frames > 3; }, 60000)) << "the preview did not come back";
}

// The whole window with the camera wired as the program wires it.
class CameraWindow : public CameraIntegration {
protected:
    void SetUp() override {
        CameraIntegration::SetUp();
        ShellServices services;
        services.prompts = &prompts;
        services.endProgram = [] {
        };
        installCamera(services, prompts);
        window = std::make_unique<Mirabend_frm>(std::move(services));
        window->start();
        window->move(0, 0);
        ASSERT_TRUE(waitFor([&] { return window->isVisible() && window->windowHandle()->isExposed(); }));
    }
    // The stage as the screen shows it.
    QImage grabStage() {
        QCoreApplication::processEvents();
        Stage* stage = window->context().stage;
        return QGuiApplication::primaryScreen()
            ->grabWindow(0, stage->mapToGlobal(QPoint(0, 0)).x(), stage->mapToGlobal(QPoint(0, 0)).y(),
                         stage->width(), stage->height())
            .toImage()
            .convertToFormat(QImage::Format_RGB32);
    }
    // Records the stage window for a few seconds; returns the file.
    std::string recordStage(TempFolder& folder) {
        const std::string file = folder.file("stage.mkv");
        Screen2Video recorder;
        recorder.OutputFileName(QString::fromStdString(file));
        recorder.OutputFormat(5);
        recorder.FrameRate(10);
        recorder.AudioEnabled(false);
        recorder.CaptureWindowHandle(QString::number(window->context().stage->winId()));
        EXPECT_TRUE(recorder.StartCapture()) << recorder.LastFailure().detail;
        waitFor([&] { return recorder.Counters().secondsRecorded >= 2.5; });
        recorder.StopCapture();
        return file;
    }
    static int differingPixels(const QImage& a, const QImage& b, const QRect& area) {
        int count = 0;
        for (int y = area.top(); y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                count += a.pixel(x, y) != b.pixel(x, y);
        return count;
    }

    ScriptedPrompts prompts;
    std::unique_ptr<Mirabend_frm> window;
};

// One flow: the full camera pane shows a moving picture; a circle inset
// chosen in "mix" stays through mode changes and is what the stage
// recording holds; unplugging says "no camera" without an error box.
TEST_F(CameraWindow, ThePaneShowsAMovingPictureAndTheRecordingHoldsTheChosenInset) {
    window->commands().Toolbar1_ButtonClick(QStringLiteral("cam"));
    QWidget* pane = window->context().stage->VideoCap1();
    ASSERT_TRUE(pane->isVisible());
    const QRect paneRect = pane->geometry();
    EXPECT_EQ(paneRect, QRect(0, 0, 580, 435));
    auto* preview = pane->findChild<CameraPreview*>();
    ASSERT_NE(preview, nullptr);
    ASSERT_TRUE(waitFor([&] { return preview->framesPainted() > 5; })) << "the pane paints no frames";
    const QImage first = grabStage();
    waitFor([] { return false; }, 400);
    const QImage second = grabStage();
    EXPECT_GT(differingPixels(first, second, paneRect.adjusted(2, 2, -2, -2)), paneRect.width() * 10)
        << "the picture in the pane moves";
    EXPECT_EQ(differingPixels(first, second, QRect(600, 150, 190, 300)), 0)
        << "nothing moves beside the pane";

    window->commands().Toolbar1_ButtonClick(QStringLiteral("mix"));
    auto* shape = window->findChild<QComboBox*>(QStringLiteral("cboInsetShape"));
    ASSERT_NE(shape, nullptr);
    shape->setCurrentIndex(2);
    Q_EMIT shape->activated(2);
    window->commands().Toolbar1_ButtonClick(QStringLiteral("side"));
    window->commands().Toolbar1_ButtonClick(QStringLiteral("mix"));
    const int painted = preview->framesPainted();
    ASSERT_TRUE(waitFor([&] { return preview->framesPainted() > painted + 2; }));
    EXPECT_EQ(preview->shape(), InsetShape::Circle);
    window->context().ebDemo->group(QStringLiteral("camera"))->setExpanded(true);
    const QImage shot = grabStage();
    shot.save(QString::fromLocal8Bit(qgetenv("MIRABEND_BINARY_DIR")) + "/tests/camera-circle.png");
    const QRect inset = pane->geometry();
    // The inset's corner shows the stage behind the round picture, its middle the picture.
    EXPECT_LT(qGray(shot.pixel(inset.topLeft() + QPoint(2, 2))), 90);
    EXPECT_GT(qGray(shot.pixel(inset.center() + QPoint(-25, -10))), 120);

    TempFolder folder("mirabend-camera-rec");
    const std::string file = recordStage(folder);
    const MediaInfo info = probe(file);
    ASSERT_TRUE(info.opened);
    EXPECT_EQ(info.width, 800);
    EXPECT_GT(brightestLuma(file, inset.center().x() - 30, inset.center().y() - 30, 60, 15, 1.0), 130)
        << "four bars of the picture, one at least bright";
    EXPECT_LT(brightestLuma(file, inset.left(), inset.top(), 6, 6, 1.0), 90) << "the inset's corner is stage";

    // (Without a sound server here the window has said there is no audio input.)
    const auto messages = prompts.messages.size();
    TestCameras::instance().plug(false);
    ASSERT_TRUE(waitFor([&] { return preview->noCamera(); }));
    EXPECT_EQ(prompts.messages.size(), messages) << "no camera is never an error box";
}

} // namespace
} // namespace mirabend::test
