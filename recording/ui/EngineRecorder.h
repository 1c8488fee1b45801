#pragma once
// The recorder of the options window bound to the FFmpeg screen recorder
// (Screen2Video), with the overlay library's lists of names. This is the
// RecorderControl the program uses.
//
// Thread contract: UI thread only, like RecorderControl. Screen2Video runs
// its capture, encode and mux threads itself; failures they meet are
// collected there and turned into RecordingFailure here when polled.
// StopCapture() returns at once; the file is completed in the background
// (engine().WaitForFinish() waits for it, the destructor does too).

#include "recording/engine/Screen2Video.h"
#include "recording/ui/RecorderControl.h"

#include <memory>

namespace mirabend {

class EngineRecorder final : public RecorderControl {
public:
    EngineRecorder();
    ~EngineRecorder() override;

    Screen2Video& engine() { return *m_engine; }

    // How a failure of the engine reads for the session; the sound problems
    // the engine survives by recording silence read as SoundMissing and
    // AudioSourceLost, which are notices, not failures (isSoundNotice).
    // Public so the mapping can be checked without a recording.
    static RecordingFailure translate(const RecorderFailure& failure);
    static bool isSoundNotice(RecordingError code) {
        return code == RecordingError::SoundMissing || code == RecordingError::AudioSourceLost;
    }

    void CaptureWindowHandle(const QString& handle) override;
    void CaptureMouseCursor(int checked) override;
    void AudioDeviceIndex(int index) override;
    void AudioInputPinIndex(int index) override;
    void HardwareAcceleration(bool on) override;
    void OutputFileName(const QString& path) override;
    void FrameRate(double fps) override;
    void OutputFormat(RecorderFormat format) override;
    QStringList videoCompressors() const override;
    QStringList audioCompressors() const override;
    int findVideoCompressor(const QString& name) const override;
    int findAudioCompressor(const QString& name) const override;
    void VideoCompressorIndex(int index) override;
    void AudioCompressorIndex(int index) override;
    bool showVideoCompressorSettings(int index) override;
    void AviSwitches(bool on) override;
    void AviAudioBitrate(double kbitPerSecond) override;
    void AviAudioChannels(int channels) override;
    void AviAudioSampleRate(int hertz) override;
    void AviSize(int width, int height) override;
    void WmvSwitch(bool on) override;
    QStringList wmvSystemProfiles() const override;
    int findWmvSystemProfile(const QString& name) const override;
    void WmvProfileIndex(int index) override;
    void WmvProfileFile(const QString& path) override;
    void FlvBitrates(double audio, double video) override;
    void FlvSize(int width, int height) override;
    void SwfBitrates(double audio, double video) override;
    void SwfSize(int width, int height) override;
    void VideoSize(int width, int height) override;
    bool StartCapture() override;
    void StopCapture() override;
    void PauseCapture() override;
    void ResumeCapture() override;
    void addChapter(const QString& title) override;
    RecordingFailure failure() const override;
    RecordingFailure takeSoundNotice() override;
    QStringList audioDevices() const override;
    void SelectAudioDevice(int index) override;
    QStringList audioInputPins() const override;
    int ScreenWidth() const override;
    int ScreenHeight() const override;
    void ZoomRect(int left, int top, int right, int bottom) override;
    QStringList dateFormatNames() const override;
    QStringList textStyleNames() const override;
    QStringList hatchStyleNames() const override;
    void ShowDateTime(bool on) override;
    void DateTimeLayout(int formatIndex, int left, int top) override;
    void DateColor(QRgb colour) override;
    void DateFontName(const QString& family) override;
    void DateFontSize(int points) override;
    void DateFontStyle(int styleIndex) override;
    void ShowText(bool on) override;
    void Text(const QString& text, int left, int top, int reserved) override;
    void TextFontName(const QString& family, int styleIndex) override;
    void TextFontSize(int points, int reserved) override;
    void TextStyle(int styleIndex, int reserved) override;
    void TextColors(QRgb solid, QRgb outlineBorder, QRgb outlineFill) override;
    void HatchBrush(QRgb fore, QRgb back, int hatchIndex, int reserved) override;
    void TextureImage(const QString& path, int reserved) override;
    void ShowImage(bool on) override;
    void Image(const QString& path, QRgb transparent, int left, int top, int transparency,
               int reserved) override;

private:
    // Reads the engine's new failures into m_failure (the first one counts).
    void collect() const;

    std::unique_ptr<Screen2Video> m_engine;
    bool m_started = false;
    mutable RecordingFailure m_failure;
    mutable RecordingFailure m_soundNotice;
    mutable bool m_soundTold = false;
};

} // namespace mirabend
