#pragma once
// The recorder as the options window and the recording session see it: the
// members they set before a capture, the four capture calls, the lists they
// fill themselves from, the overlay calls and the error state they poll.
// One adapter binds it to the FFmpeg engine; tests use a recording fake.
//
// Thread contract: UI thread only. Implementations that capture on their own
// threads must make every member here safe to call from the UI thread and
// must never call back into the UI.

#include "util/core/Failure.h"

#include <QRgb>
#include <QString>
#include <QStringList>

namespace mirabend {

// Container of the next capture, as the session numbers them.
enum class RecorderFormat { Avi = 0, Wmv = 1, Swf = 2, Flv = 3, Mp4 = 4, Mkv = 5 };

enum class RecordingError {
    None,
    StartRefused,    // the capture could not be started (device, codec, file)
    DiskFull,        // writing the output file ran out of space
    AudioSourceLost, // the sound source went away during the capture (silence is recorded on)
    SoundMissing,    // no sound source at the start (the sound track is recorded silent)
    WriteFailed,     // any other failure while encoding or writing
};

using RecordingFailure = Failure<RecordingError>;

class RecorderControl {
public:
    virtual ~RecorderControl() = default;

    // --- What the next capture records --------------------------------------------------------------
    // X11 window id as decimal text; "0" records the whole screen.
    virtual void CaptureWindowHandle(const QString& handle) = 0;
    virtual void CaptureMouseCursor(int checked) = 0;
    virtual void AudioDeviceIndex(int index) = 0;
    virtual void AudioInputPinIndex(int index) = 0;
    virtual void HardwareAcceleration(bool on) = 0;
    virtual void OutputFileName(const QString& path) = 0;
    virtual void FrameRate(double fps) = 0;
    virtual void OutputFormat(RecorderFormat format) = 0;

    // Compressors for AVI output. find*Compressor answers the index of the
    // entry with exactly this name, or -1.
    virtual QStringList videoCompressors() const = 0;
    virtual QStringList audioCompressors() const = 0;
    virtual int findVideoCompressor(const QString& name) const = 0;
    virtual int findAudioCompressor(const QString& name) const = 0;
    virtual void VideoCompressorIndex(int index) = 0;
    virtual void AudioCompressorIndex(int index) = 0;
    // Shows the settings page of a video compressor; false when it has none.
    virtual bool showVideoCompressorSettings(int index) = 0;

    // AVI: the two container switches, audio bitrate, channels, rate and size.
    virtual void AviSwitches(bool on) = 0;
    virtual void AviAudioBitrate(double kbitPerSecond) = 0;
    virtual void AviAudioChannels(int channels) = 0;
    virtual void AviAudioSampleRate(int hertz) = 0;
    virtual void AviSize(int width, int height) = 0;

    // WMV: the switch, system profiles by name, or a profile file.
    virtual void WmvSwitch(bool on) = 0;
    virtual QStringList wmvSystemProfiles() const = 0;
    virtual int findWmvSystemProfile(const QString& name) const = 0;
    virtual void WmvProfileIndex(int index) = 0;
    virtual void WmvProfileFile(const QString& path) = 0;

    // FLV and SWF: bitrates in bits per second, picture size.
    virtual void FlvBitrates(double audio, double video) = 0;
    virtual void FlvSize(int width, int height) = 0;
    virtual void SwfBitrates(double audio, double video) = 0;
    virtual void SwfSize(int width, int height) = 0;

    // MP4 and MKV (H.264 + AAC): picture size, even in both directions.
    virtual void VideoSize(int width, int height) = 0;

    // --- The capture ---------------------------------------------------------------------------------
    // Starts with the settings above; false (and failure() says why) when it
    // could not start.
    virtual bool StartCapture() = 0;
    // Stops and closes the file; the file stays valid whatever failed before.
    virtual void StopCapture() = 0;
    virtual void PauseCapture() = 0;
    virtual void ResumeCapture() = 0;
    // Begins a chapter named `title` at this instant of the running capture;
    // a recorder without chapters ignores it.
    virtual void addChapter(const QString& title) { (void)title; }
    // The first failure of the current (or last) capture; None while all is well.
    virtual RecordingFailure failure() const = 0;
    // A sound problem the capture lives through by recording silence
    // (SoundMissing, AudioSourceLost); each is handed out once.
    virtual RecordingFailure takeSoundNotice() { return {}; }

    // --- Devices and screen --------------------------------------------------------------------------
    virtual QStringList audioDevices() const = 0;
    virtual void SelectAudioDevice(int index) = 0;
    // Input pins of the device selected last.
    virtual QStringList audioInputPins() const = 0;
    virtual int ScreenWidth() const = 0;
    virtual int ScreenHeight() const = 0;
    virtual void ZoomRect(int left, int top, int right, int bottom) = 0;

    // --- Overlays drawn onto every frame ---------------------------------------------------------------
    // The names offered for the date format, text style and hatch lists, in
    // the order of the indexes handed back below.
    virtual QStringList dateFormatNames() const = 0;
    virtual QStringList textStyleNames() const = 0;
    virtual QStringList hatchStyleNames() const = 0;

    virtual void ShowDateTime(bool on) = 0;
    virtual void DateTimeLayout(int formatIndex, int left, int top) = 0;
    virtual void DateColor(QRgb colour) = 0;
    virtual void DateFontName(const QString& family) = 0;
    virtual void DateFontSize(int points) = 0;
    virtual void DateFontStyle(int styleIndex) = 0;

    virtual void ShowText(bool on) = 0;
    virtual void Text(const QString& text, int left, int top, int reserved) = 0;
    // The text font and the index of its style (Regular, Bold, ...).
    virtual void TextFontName(const QString& family, int styleIndex) = 0;
    virtual void TextFontSize(int points, int reserved) = 0;
    virtual void TextStyle(int styleIndex, int reserved) = 0;
    // Solid text colour and the two outline colours.
    virtual void TextColors(QRgb solid, QRgb outlineBorder, QRgb outlineFill) = 0;
    virtual void HatchBrush(QRgb fore, QRgb back, int hatchIndex, int reserved) = 0;
    virtual void TextureImage(const QString& path, int reserved) = 0;

    virtual void ShowImage(bool on) = 0;
    virtual void Image(const QString& path, QRgb transparent, int left, int top, int transparency,
                       int reserved) = 0;
};

} // namespace mirabend
