#pragma once
// A recorder that writes down every call it gets, and a main window that
// keeps what the session writes into it, so the tests read both back.

#include "recording/ui/RecorderControl.h"
#include "recording/ui/RecordingHost.h"
#include "util/Prompts.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMap>
#include <QSet>
#include <QStringList>
#include <functional>
#include <string>
#include <utility>

namespace mirabend::test {

// Runs the event loop until `done` holds or `timeoutMs` have passed.
inline void spinUntil(const std::function<bool()>& done, int timeoutMs) {
    QElapsedTimer waited;
    waited.start();
    while (!done() && waited.elapsed() < timeoutMs)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

// The messages other than the notice of a silent sound track, which a test
// machine without a sound server gets; one a line.
inline std::string unexpectedMessages(const QList<MessageRequest>& messages) {
    std::string text;
    for (const MessageRequest& m : messages) {
        if (m.icon != PromptIcon::Exclamation)
            text += m.text.toStdString() + "\n";
    }
    return text;
}

class FakeRecorder final : public RecorderControl {
public:
    // Every call as "Name(arg, arg)", in order.
    QStringList calls;
    QStringList videoList{"Cinepak", "Microsoft Video 1", "MPEG-4"};
    QStringList audioList{"MPEG Layer-3", "PCM"};
    QStringList profiles{"Screen Video High", "Screen Video Low"};
    QStringList devices{"Monitor of Null Output", "Sine source"};
    QMap<int, QStringList> pins{{0, {"Line"}}, {1, {"Mic", "Headset"}}};
    QStringList dateFormats{"f0", "f1", "f2", "f3", "f4", "f5", "f6", "mm/dd/yyyy hh:mm:ss", "f8"};
    QStringList textStyles{"Normal", "Outline Text", "Filled Outline", "Hatch Brush", "TextureBrush"};
    QStringList hatchStyles{"HatchStyleHorizontal ", "HatchStyleVertical "};
    QSet<int> compressorsWithPage;
    bool startSucceeds = true;
    RecordingFailure currentFailure;
    int selectedDevice = -1;

    void clear() { calls.clear(); }
    bool called(const QString& call) const { return calls.contains(call); }
    int count(const QString& prefix) const {
        int n = 0;
        for (const QString& c : calls)
            n += c.startsWith(prefix) ? 1 : 0;
        return n;
    }

    void CaptureWindowHandle(const QString& h) override { log("CaptureWindowHandle", {h}); }
    void CaptureMouseCursor(int v) override { log("CaptureMouseCursor", {n(v)}); }
    void AudioDeviceIndex(int v) override { log("AudioDeviceIndex", {n(v)}); }
    void AudioInputPinIndex(int v) override { log("AudioInputPinIndex", {n(v)}); }
    void HardwareAcceleration(bool v) override { log("HardwareAcceleration", {b(v)}); }
    void OutputFileName(const QString& p) override { log("OutputFileName", {p}); }
    void FrameRate(double v) override { log("FrameRate", {n(v)}); }
    void OutputFormat(RecorderFormat f) override { log("OutputFormat", {n(static_cast<int>(f))}); }
    QStringList videoCompressors() const override { return videoList; }
    QStringList audioCompressors() const override { return audioList; }
    int findVideoCompressor(const QString& name) const override {
        return static_cast<int>(videoList.indexOf(name));
    }
    int findAudioCompressor(const QString& name) const override {
        return static_cast<int>(audioList.indexOf(name));
    }
    void VideoCompressorIndex(int v) override { log("VideoCompressorIndex", {n(v)}); }
    void AudioCompressorIndex(int v) override { log("AudioCompressorIndex", {n(v)}); }
    bool showVideoCompressorSettings(int index) override {
        log("showVideoCompressorSettings", {n(index)});
        return compressorsWithPage.contains(index);
    }
    void AviSwitches(bool v) override { log("AviSwitches", {b(v)}); }
    void AviAudioBitrate(double v) override { log("AviAudioBitrate", {n(v)}); }
    void AviAudioChannels(int v) override { log("AviAudioChannels", {n(v)}); }
    void AviAudioSampleRate(int v) override { log("AviAudioSampleRate", {n(v)}); }
    void AviSize(int w, int h) override { log("AviSize", {n(w), n(h)}); }
    void WmvSwitch(bool v) override { log("WmvSwitch", {b(v)}); }
    QStringList wmvSystemProfiles() const override { return profiles; }
    int findWmvSystemProfile(const QString& name) const override {
        return static_cast<int>(profiles.indexOf(name));
    }
    void WmvProfileIndex(int v) override { log("WmvProfileIndex", {n(v)}); }
    void WmvProfileFile(const QString& p) override { log("WmvProfileFile", {p}); }
    void FlvBitrates(double a, double v) override { log("FlvBitrates", {n(a), n(v)}); }
    void FlvSize(int w, int h) override { log("FlvSize", {n(w), n(h)}); }
    void SwfBitrates(double a, double v) override { log("SwfBitrates", {n(a), n(v)}); }
    void SwfSize(int w, int h) override { log("SwfSize", {n(w), n(h)}); }
    void VideoSize(int w, int h) override { log("VideoSize", {n(w), n(h)}); }
    bool StartCapture() override {
        log("StartCapture", {});
        if (startSucceeds)
            currentFailure = {};
        return startSucceeds;
    }
    void StopCapture() override { log("StopCapture", {}); }
    void PauseCapture() override { log("PauseCapture", {}); }
    void ResumeCapture() override { log("ResumeCapture", {}); }
    RecordingFailure failure() const override { return currentFailure; }
    RecordingFailure soundNotice; // handed out once, as the engine's adapter does
    RecordingFailure takeSoundNotice() override { return std::exchange(soundNotice, RecordingFailure{}); }
    QStringList audioDevices() const override { return devices; }
    void SelectAudioDevice(int index) override {
        selectedDevice = index;
        log("SelectAudioDevice", {n(index)});
    }
    QStringList audioInputPins() const override { return pins.value(selectedDevice); }
    int ScreenWidth() const override { return 1280; }
    int ScreenHeight() const override { return 1024; }
    void ZoomRect(int l, int t, int r, int bt) override { log("ZoomRect", {n(l), n(t), n(r), n(bt)}); }
    QStringList dateFormatNames() const override { return dateFormats; }
    QStringList textStyleNames() const override { return textStyles; }
    QStringList hatchStyleNames() const override { return hatchStyles; }
    void ShowDateTime(bool v) override { log("ShowDateTime", {b(v)}); }
    void DateTimeLayout(int f, int l, int t) override { log("DateTimeLayout", {n(f), n(l), n(t)}); }
    void DateColor(QRgb c) override { log("DateColor", {rgb(c)}); }
    void DateFontName(const QString& f) override { log("DateFontName", {f}); }
    void DateFontSize(int p) override { log("DateFontSize", {n(p)}); }
    void DateFontStyle(int s) override { log("DateFontStyle", {n(s)}); }
    void ShowText(bool v) override { log("ShowText", {b(v)}); }
    void Text(const QString& t, int l, int tp, int r) override { log("Text", {t, n(l), n(tp), n(r)}); }
    void TextFontName(const QString& f, int s) override { log("TextFontName", {f, n(s)}); }
    void TextFontSize(int p, int r) override { log("TextFontSize", {n(p), n(r)}); }
    void TextStyle(int s, int r) override { log("TextStyle", {n(s), n(r)}); }
    void TextColors(QRgb s, QRgb o, QRgb f) override { log("TextColors", {rgb(s), rgb(o), rgb(f)}); }
    void HatchBrush(QRgb f, QRgb bk, int i, int r) override {
        log("HatchBrush", {rgb(f), rgb(bk), n(i), n(r)});
    }
    void TextureImage(const QString& p, int r) override { log("TextureImage", {p, n(r)}); }
    void ShowImage(bool v) override { log("ShowImage", {b(v)}); }
    void Image(const QString& p, QRgb c, int l, int t, int tr, int r) override {
        log("Image", {p, rgb(c), n(l), n(t), n(tr), n(r)});
    }

private:
    static QString n(double v) { return QString::number(v, 'g', 12); }
    static QString b(bool v) { return v ? QStringLiteral("true") : QStringLiteral("false"); }
    static QString rgb(QRgb c) { return QStringLiteral("#%1").arg(c & 0xFFFFFF, 6, 16, QLatin1Char('0')); }
    void log(const char* name, const QStringList& args) {
        calls << QLatin1String(name) + QLatin1Char('(') + args.join(QStringLiteral(", ")) + QLatin1Char(')');
    }
};

class FakeHost : public RecordingHost {
public:
    QMap<int, QString> panels;
    QString elapsed;
    QString state = QStringLiteral("");
    QString text4 = QStringLiteral("sleep");
    bool noticeVisible = false;
    QMap<int, bool> toolbar;
    QMap<QString, bool> recordItems{{QStringLiteral("options"), true},
                                    {QStringLiteral("startrec"), true},
                                    {QStringLiteral("pause"), false},
                                    {QStringLiteral("stop"), false}};
    int redraws = 0;
    bool topMost = false;
    QList<bool> topMostCalls;
    std::uint32_t handle = 4242;
    int stageW = 581;
    int stageH = 435;

    QString statusPanel(int index) const override { return panels.value(index); }
    void setStatusPanel(int index, const QString& text) override { panels[index] = text; }
    void setElapsedLabel(const QString& text) override { elapsed = text; }
    QString recordingState() const override { return state; }
    void setRecordingState(const QString& text) override { state = text; }
    QString Text4() const override { return text4; }
    void setText4(const QString& text) override { text4 = text; }
    void setNoticeVisible(bool visible) override { noticeVisible = visible; }
    void setToolbarButtonEnabled(int position, bool enabled) override { toolbar[position] = enabled; }
    void setRecordItemEnabled(const QString& key, bool enabled) override { recordItems[key] = enabled; }
    void redrawTaskPane() override { ++redraws; }
    void setTopMost(bool on) override {
        topMost = on;
        topMostCalls << on;
    }
    int mainWindowWidth() const override { return 1024; }
    int mainWindowHeight() const override { return 768; }
    std::uint32_t stageWindowHandle() const override { return handle; }
    int stageWidth() const override { return stageW; }
    int stageHeight() const override { return stageH; }
};

// The same main window for recordings with the real recorder.
using EngineHost = FakeHost;

} // namespace mirabend::test
