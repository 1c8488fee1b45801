// The camera pane's logic on the Camera Settings bar's real controls, with a
// fake capture control: what is reselected, which lists fill, when the camera
// runs, what the capture test says, and how the picture is laid into the pane.
#include "shell/camera/CameraPane.h"

#include "FakeCameraControl.h"
#include "support/ScriptedPrompts.h"
#include "util/ProgramFolder.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QVideoFrame>
#include <gtest/gtest.h>
#include <memory>

namespace mirabend::test {
namespace {

const QString kCam = QStringLiteral("USB Camera");
const QString kTv = QStringLiteral("TV Card");
const QString kBare = QStringLiteral("Bare Sensor");
const QString k720 = QStringLiteral("1280x720 MJPEG 30 fps");
const QString k480 = QStringLiteral("640x480 YUY2 30 fps");
const QString kPal = QStringLiteral("720x576 UYVY 25 fps");

class CameraPaneTest : public ::testing::Test {
protected:
    void SetUp() override {
        control.addDevice(kCam, {k720, k480});
        control.addDevice(kTv, {kPal});
        control.addDevice(kBare, {});
        control.inUse = kCam;
        control.formatInUse = k720;
        for (QComboBox* list : {&device, &format, &standard, &shape})
            list->setParent(&bar);
        for (QCheckBox* box : {&aspect, &mute})
            box->setParent(&bar);
        captureButton.setParent(&bar);
        standard.addItems({"Digital sensor", "NTSC", "NTSC JP", "NTSC-433", "PAL -B"});
        stage.resize(580, 435);
        preview = new CameraPreview(&stage);
        preview->resize(145, 109);
        CameraSettingsControls controls{&device, &format, &standard, &aspect, &mute, &captureButton, &shape};
        pane = std::make_unique<CameraPane>(control, *preview, controls, &prompts);
        device.addItems(pane->deviceNames());
        device.setCurrentIndex(0);
        format.addItems(pane->formatNames());
        format.setCurrentIndex(0);
    }
    void choose(QComboBox& list, const QString& text) { list.setCurrentIndex(list.findText(text)); }

    FakeCameraControl control;
    ScriptedPrompts prompts;
    QWidget bar, stage;
    QComboBox device, format, standard, shape;
    QCheckBox aspect, mute;
    QPushButton captureButton;
    CameraPreview* preview = nullptr;
    std::unique_ptr<CameraPane> pane;
};

TEST_F(CameraPaneTest, ControlCapHandsOverOnlyWhatDiffersFromWhatIsInUse) {
    struct Row {
        QString device, format;
        QStringList calls;
    };
    const Row rows[] = {
        {kCam, k720, {}}, // unchanged: no reselection, no restart
        {kCam, k480, {"selectFormat " + k480}},
        {kTv, kPal, {"selectDevice " + kTv}}, // the new device's first format is already in use
        {kTv, k480, {"selectDevice " + kTv, "selectFormat " + k480}},
        {QString(), QString(), {}}, // nothing selected: nothing handed over
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(QString(row.device + " / " + row.format).toStdString());
        control.inUse = kCam;
        control.formatInUse = k720;
        control.calls.clear();
        choose(device, row.device);
        format.clear();
        if (!row.format.isEmpty()) {
            format.addItem(row.format);
            format.setCurrentIndex(0);
        }
        pane->ControlCap();
        EXPECT_EQ(control.calls, row.calls);
    }
}

TEST_F(CameraPaneTest, ChoosingADeviceRefillsTheFormatsAndSelectsTheFirst) {
    struct Row {
        QString device;
        QStringList formats;
        int selected;
    };
    const Row rows[] = {{kTv, {kPal}, 0}, {kBare, {}, -1}, {kCam, {k720, k480}, 0}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.device.toStdString());
        choose(device, row.device);
        pane->cboDevice_Click();
        QStringList listed;
        for (int i = 0; i < format.count(); ++i)
            listed << format.itemText(i);
        EXPECT_EQ(listed, row.formats);
        EXPECT_EQ(format.currentIndex(), row.selected);
    }
    EXPECT_TRUE(control.calls.isEmpty()) << "choosing only lists; Apply hands it over";
}

TEST_F(CameraPaneTest, ThePreviewRunsWhileThePaneShowsWithTheChosenStandard) {
    standard.setCurrentIndex(4);
    pane->PreviewCam1();
    EXPECT_EQ(control.calls, QStringList{"standard 4"}) << "a hidden pane does not start the camera";
    stage.show();
    preview->show();
    EXPECT_TRUE(control.running);
    stage.hide();
    EXPECT_FALSE(control.running) << "a hidden pane frees the camera";
    stage.show();
    pane->Command1_Click();
    EXPECT_EQ(control.calls, (QStringList{"standard 4", "start", "stop", "start", "standard 4"}))
        << "Apply with nothing changed neither reselects nor restarts";
    mute.setChecked(true);
    pane->ChkTVMute_Click();
    EXPECT_EQ(control.calls.last(), "mute 1");
}

TEST_F(CameraPaneTest, TheCaptureTestSaysWhereOrWhatWentWrong) {
    struct Row {
        CaptureError code;
        QString text;
        PromptIcon icon;
    };
    const QString failure =
        QStringLiteral("Capture Failure,Video, Audio Compressor not correct or capture file opening");
    const Row rows[] = {
        {CaptureError::None, "The capture test was saved to " + CameraPane::captureTestFile(),
         PromptIcon::Information},
        {CaptureError::RecorderFailed, failure, PromptIcon::None},
        {CaptureError::NoCamera, failure, PromptIcon::None},
        {CaptureError::FileNotFound, QStringLiteral("Capture file not found"), PromptIcon::None},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text.toStdString());
        prompts.messages.clear();
        captureButton.click();
        EXPECT_EQ(control.calls.last(), "capture 5000 ms");
        EXPECT_FALSE(captureButton.isEnabled()) << "one capture test at a time";
        control.finishCapture({row.code, "detail"});
        EXPECT_TRUE(captureButton.isEnabled());
        ASSERT_EQ(prompts.messages.size(), 1);
        EXPECT_EQ(prompts.messages[0].text, row.text);
        EXPECT_EQ(prompts.messages[0].title, "Mirabend 1.0");
        EXPECT_EQ(prompts.messages[0].icon, row.icon);
    }
    EXPECT_TRUE(control.lastCaptureFile.startsWith(ProgramFolder::writableFolder()));
}

TEST_F(CameraPaneTest, UnpluggingTheCameraEmptiesThePaneAndTheListKeepsTheChoice) {
    choose(device, kTv);
    control.unplug(kCam);
    EXPECT_TRUE(preview->noCamera());
    EXPECT_EQ(device.count(), 2);
    EXPECT_EQ(device.currentText(), kTv) << "the user's choice survives the change";
    control.unplug(kTv);
    EXPECT_EQ(device.currentText(), kBare);
    EXPECT_EQ(format.count(), 0) << "the formats follow the new choice";
}

// A frame of one colour.
QVideoFrame solidFrame(QSize size, QRgb colour) {
    QVideoFrame frame(
        QVideoFrameFormat(size, QVideoFrameFormat::Format_BGRX8888)); // 0xffRRGGBB in memory order
    frame.map(QVideoFrame::WriteOnly);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<quint32*>(frame.bits(0) + y * frame.bytesPerLine(0));
        std::fill(line, line + size.width(), colour);
    }
    frame.unmap();
    return frame;
}

TEST_F(CameraPaneTest, ThePictureFillsOrKeepsItsAspectInsideTheChosenShape) {
    struct Row {
        int shape;
        bool keepAspect;
        QPoint inside, outside; // pixels of a 160 x 100 pane, 4:3 picture
    };
    const Row rows[] = {
        {0, false, {2, 2}, {-1, -1}},   // rectangle: the corners are picture
        {0, true, {80, 50}, {5, 50}},   // aspect kept: bars left and right
        {1, false, {80, 2}, {1, 1}},    // rounded: the very corner is not
        {2, false, {80, 50}, {20, 50}}, // circle: its width is the pane's height
    };
    const QRgb stageColour = qRgb(0, 200, 0);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.shape * 10 + row.keepAspect);
        choose(shape, CameraPane::insetShapeNames().value(row.shape));
        pane->cboInsetShape_Click();
        aspect.setChecked(row.keepAspect);
        pane->chkaspectratio_Click();
        preview->resize(160, 100);
        preview->setFrame(solidFrame({64, 48}, qRgb(250, 0, 0)));
        QImage shot(160, 100, QImage::Format_RGB32);
        shot.fill(stageColour);
        preview->render(&shot, QPoint(), QRegion(), QWidget::DrawChildren);
        EXPECT_EQ(qRed(shot.pixel(row.inside)), 250);
        if (row.outside.x() >= 0) {
            EXPECT_LT(qRed(shot.pixel(row.outside)), 100);
        }
    }
    EXPECT_EQ(CameraPreview::pictureRect({160, 100}, {64, 48}, true), QRect(13, 0, 133, 100));
    EXPECT_EQ(preview->shape(), InsetShape::Circle);
}

} // namespace
} // namespace mirabend::test
