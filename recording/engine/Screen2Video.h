#pragma once
// Screen2Video: the screen recorder control. It records the whole screen, a
// zoom rectangle of it or one X11 window, with the pointer if asked, together
// with sound from an audio source, into AVI, WMV, SWF, FLV, MP4 or Matroska.
//
// The options window sets the properties, then calls StartCapture(); pause,
// resume and stop follow. Properties read at StartCapture() are those in force
// for that recording; overlay settings take effect on the next frame.
//
// Thread contract: every member is called from one thread (the UI thread),
// except Counters(), IsCapturing(), TakeFailures() and LastFailure(), which
// any thread may call. Capture, encoding and writing run on threads of their
// own, started by StartCapture() and joined by StopCapture(), WaitForFinish()
// or the destructor.

#include "recording/engine/CompressorCatalog.h"
#include "recording/engine/NamedList.h"
#include "recording/engine/OverlayBoard.h"
#include "recording/engine/RecorderTypes.h"

#include <QString>
#include <QStringList>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace mirabend {

class CaptureSession;
class AudioDeviceCatalog;
struct RecordingPlan;

class Screen2Video {
public:
    Screen2Video();
    ~Screen2Video();
    Screen2Video(const Screen2Video&) = delete;
    Screen2Video& operator=(const Screen2Video&) = delete;

    // ---- what is recorded -------------------------------------------------
    // Decimal X11 window id as text; "" or "0" records the screen (or the
    // zoom rectangle).
    QString CaptureWindowHandle() const { return m_windowHandle; }
    void CaptureWindowHandle(const QString& handle) { m_windowHandle = handle; }
    int CaptureMouseCursor() const { return m_mouseCursor; } // 0 or 1
    void CaptureMouseCursor(int on) { m_mouseCursor = on ? 1 : 0; }
    double FrameRate() const { return m_frameRate; }
    void FrameRate(double fps) { m_frameRate = fps; }

    int ScreenWidth() const;
    int ScreenHeight() const;
    // The part of the screen recorded when no window is given; right and
    // bottom are exclusive. 0, 0, ScreenWidth(), ScreenHeight() is the whole
    // screen (the default).
    void ZoomRectangle(int left, int top, int right, int bottom);
    ScreenRect ZoomRectangle() const { return m_zoom; }

    // ---- sound ------------------------------------------------------------
    // Sources of the sound server (PulseAudio or PipeWire) or, where none
    // runs, ALSA capture devices. The first entry is the system default.
    const NamedList& AudioDevices() const { return m_deviceNames; }
    void SelectAudioDevice(int index); // also refills AudioInputPins()
    int AudioDeviceIndex() const { return m_audioDevice; }
    void AudioDeviceIndex(int index) { SelectAudioDevice(index); }
    // Input pins (sound server ports) of the selected device; may be empty.
    const NamedList& AudioInputPins() const { return m_pins; }
    int AudioInputPinIndex() const { return m_pin; }
    void AudioInputPinIndex(int index) { m_pin = index; }
    // Re-reads the device list (a source may have appeared or gone).
    void RefreshAudioDevices();
    // False records video only.
    bool AudioEnabled() const { return m_audioEnabled; }
    void AudioEnabled(bool on) { m_audioEnabled = on; }

    // ---- output -----------------------------------------------------------
    QString OutputFileName() const { return m_outputFile; }
    void OutputFileName(const QString& file) { m_outputFile = file; }
    // 0 AVI, 1 WMV, 2 SWF, 3 FLV, 4 MP4, 5 Matroska (see OutputFormatCode).
    int OutputFormat() const { return m_format; }
    void OutputFormat(int format) { m_format = format; }
    // H.264 through VA-API or NVENC when present; else software, and
    // HardwareAccelerationInUse() says so after StartCapture().
    bool HardwareAcceleration() const { return m_hardware; }
    void HardwareAcceleration(bool on) { m_hardware = on; }
    bool HardwareAccelerationInUse() const { return m_hardwareInUse; }
    QString VideoEncoderInUse() const { return m_encoderInUse; } // e.g. "libx264", "h264_vaapi"
    // How the screen is read: "damage" (only what changed) or "x11grab".
    QString CaptureBackendInUse() const { return m_captureInUse; }

    // Compressors offered for AVI output ("Microsoft Video 1", "PCM", ...).
    const CompressorList& VideoCompressors() const { return m_videoCompressors; }
    int VideoCompressorIndex() const { return m_videoCompressor; }
    void VideoCompressorIndex(int index) { m_videoCompressor = index; }
    const CompressorList& AudioCompressors() const { return m_audioCompressors; }
    int AudioCompressorIndex() const { return m_audioCompressor; }
    void AudioCompressorIndex(int index) { m_audioCompressor = index; }
    // A video compressor's settings page (CompressorCatalog::videoSettings):
    // values by compressor name and setting key, used by every recording with
    // that compressor (the "H.264" ones also for MP4 and Matroska).
    int VideoCompressorSetting(const QString& compressor, const std::string& key) const;
    void VideoCompressorSetting(const QString& compressor, const std::string& key, int value);

    // AVI. The two switches are kept for the options window; a compressor is
    // always used, since AVI without one would be raw video.
    bool AviUseVideoCompressor() const { return m_aviUseVideoCompressor; }
    void AviUseVideoCompressor(bool on) { m_aviUseVideoCompressor = on; }
    bool AviUseAudioCompressor() const { return m_aviUseAudioCompressor; }
    void AviUseAudioCompressor(bool on) { m_aviUseAudioCompressor = on; }
    double AviAudioBitrate() const { return m_aviAudioBitrate; } // kbit/s (values >= 1000 are bit/s)
    void AviAudioBitrate(double rate) { m_aviAudioBitrate = rate; }
    int AviAudioChannels() const { return m_aviAudioChannels; }
    void AviAudioChannels(int channels) { m_aviAudioChannels = channels; }
    int AviAudioSampleRate() const { return m_aviAudioSampleRate; }
    void AviAudioSampleRate(int rate) { m_aviAudioSampleRate = rate; }
    int AviWidth() const { return m_aviWidth; } // 0: the captured size
    void AviWidth(int w) { m_aviWidth = w; }
    int AviHeight() const { return m_aviHeight; }
    void AviHeight(int h) { m_aviHeight = h; }

    // WMV: a profile file (.prx) when WmvProfileFile is not empty, else the
    // system profile at WmvProfileIndex.
    bool WmvUseProfile() const { return m_wmvUseProfile; }
    void WmvUseProfile(bool on) { m_wmvUseProfile = on; }
    const NamedList& WmvSystemProfiles() const;
    int WmvProfileIndex() const { return m_wmvProfileIndex; }
    void WmvProfileIndex(int index) { m_wmvProfileIndex = index; }
    QString WmvProfileFile() const { return m_wmvProfileFile; }
    void WmvProfileFile(const QString& file) { m_wmvProfileFile = file; }

    // FLV and SWF bitrates arrive as the text of the options window (bit/s);
    // StartCapture() refuses a text that is not a number.
    QString FlvAudioBitrate() const { return m_flvAudioBitrate; }
    void FlvAudioBitrate(const QString& text) { m_flvAudioBitrate = text; }
    QString FlvVideoBitrate() const { return m_flvVideoBitrate; }
    void FlvVideoBitrate(const QString& text) { m_flvVideoBitrate = text; }
    int FlvWidth() const { return m_flvWidth; }
    void FlvWidth(int w) { m_flvWidth = w; }
    int FlvHeight() const { return m_flvHeight; }
    void FlvHeight(int h) { m_flvHeight = h; }
    QString SwfAudioBitrate() const { return m_swfAudioBitrate; }
    void SwfAudioBitrate(const QString& text) { m_swfAudioBitrate = text; }
    QString SwfVideoBitrate() const { return m_swfVideoBitrate; }
    void SwfVideoBitrate(const QString& text) { m_swfVideoBitrate = text; }
    int SwfWidth() const { return m_swfWidth; }
    void SwfWidth(int w) { m_swfWidth = w; }
    int SwfHeight() const { return m_swfHeight; }
    void SwfHeight(int h) { m_swfHeight = h; }

    // MP4 and Matroska (H.264 + AAC); 0 records at the captured size.
    int OutputWidth() const { return m_outWidth; }
    void OutputWidth(int w) { m_outWidth = w; }
    int OutputHeight() const { return m_outHeight; }
    void OutputHeight(int h) { m_outHeight = h; }

    // ---- overlays (drawn onto every frame; changes apply at once) ----------
    // Colours are 0x00RRGGBB.
    void ShowDateTime(bool on);
    void DateTimeLayout(int formatIndex, int left, int top);
    void DateTimeColor(unsigned rgb);
    void DateTimeFontName(const QString& name);
    void DateTimeFontSize(int size);
    void DateTimeFontStyle(int styleIndex);
    void ShowText(bool on);
    void Text(const QString& text, int left, int top, int extra = 0);
    void TextFontName(const QString& name, int extra = 0);
    void TextFontSize(int size, int extra = 0);
    void TextFontStyle(int styleIndex); // list index: Regular, Bold, Italic, BoldItalic, Underline
    void TextStyle(int styleIndex, int extra = 0);
    void TextColor(unsigned rgb);
    void TextOutlineColors(unsigned border, unsigned fill);
    void HatchBrush(unsigned foreRgb, unsigned backRgb, int hatchIndex, int extra = 0);
    void TextureImage(const QString& file, int extra = 0);
    void ShowImage(bool on);
    void Image(const QString& file, unsigned transparentRgb, int left, int top, int transparency,
               int extra = 0);
    OverlaySettings Overlay() const;

    // ---- recording --------------------------------------------------------
    // Checks the settings, opens the devices and the file and starts the
    // threads. False when the recording did not start; LastFailure() says why.
    bool StartCapture();
    // Stops, writes the rest and closes the file; waits for the threads.
    // That takes as long as the sound server is late with the sound up to
    // the stop (a sine source delivers 2 s blocks), up to 2.5 s.
    void StopCapture();
    // Ends the recording at this instant like StopCapture(), but returns at
    // once: the recording's own threads wait for the late sound, then close
    // the file. A StartCapture() meanwhile does not wait for that unless it
    // writes the same file or needs the same ALSA device; failures the old
    // recording meets once the new one has started are not reported. The
    // destructor waits for every file to be closed.
    void StopCaptureInBackground();
    // A stopped recording is still collecting late sound or closing its file.
    bool IsFinishing() const;
    // Waits until every stopped recording has closed its file.
    void WaitForFinish();
    // Nothing is recorded while paused; the file continues without a gap.
    void PauseCapture();
    void ResumeCapture();
    // Begins a chapter named `title` at this instant of the recording (while
    // paused: where the recording will go on). MP4 and Matroska carry the
    // chapters; other formats get them as a WebVTT file next to the video.
    void addChapter(const QString& title);

    bool IsCapturing() const; // started and not yet stopped or finished
    bool IsPaused() const;
    RecorderCounters Counters() const;
    // Failures since the last call, each reported once (a full disk, a closed
    // window, a vanished audio source, a refused start).
    std::vector<RecorderFailure> TakeFailures();
    RecorderFailure LastFailure() const;

private:
    RecordingPlan plan(RecorderFailure& failure) const;
    void remember(const RecorderFailure& failure);
    // Moves the last recording (ended) to the ones still finishing.
    void retireSession();
    // Joins the finishing recordings that are done, and those `next`
    // (when given) would collide with.
    void settleFinishing(const RecordingPlan* next);

    QString m_windowHandle;
    int m_mouseCursor = 0;
    double m_frameRate = 24.0;
    ScreenRect m_zoom; // empty: whole screen

    std::unique_ptr<AudioDeviceCatalog> m_devices;
    NamedList m_deviceNames;
    NamedList m_pins;
    int m_audioDevice = 0;
    int m_pin = 0;
    bool m_audioEnabled = true;

    QString m_outputFile;
    int m_format = 0;
    bool m_hardware = false;
    bool m_hardwareInUse = false;
    QString m_encoderInUse;
    QString m_captureInUse;

    CompressorList m_videoCompressors;
    CompressorList m_audioCompressors;
    int m_videoCompressor = 0;
    int m_audioCompressor = 0;
    std::map<QString, CompressorSettingValues> m_compressorSettings;

    bool m_aviUseVideoCompressor = true;
    bool m_aviUseAudioCompressor = true;
    double m_aviAudioBitrate = 128;
    int m_aviAudioChannels = 1;
    int m_aviAudioSampleRate = 11025;
    int m_aviWidth = 0;
    int m_aviHeight = 0;

    bool m_wmvUseProfile = true;
    int m_wmvProfileIndex = 0;
    QString m_wmvProfileFile;

    QString m_flvAudioBitrate = QStringLiteral("96000");
    QString m_flvVideoBitrate = QStringLiteral("3512000");
    int m_flvWidth = 0;
    int m_flvHeight = 0;
    QString m_swfAudioBitrate = QStringLiteral("96000");
    QString m_swfVideoBitrate = QStringLiteral("3512000");
    int m_swfWidth = 0;
    int m_swfHeight = 0;
    int m_outWidth = 0;
    int m_outHeight = 0;

    std::shared_ptr<OverlayBoard> m_overlay;
    mutable std::mutex m_sessionMutex; // guards m_session for the any-thread readers
    std::unique_ptr<CaptureSession> m_session;
    // Stopped recordings whose threads may still be writing (UI thread only).
    std::vector<std::unique_ptr<CaptureSession>> m_finishing;
    std::shared_ptr<FailureLog> m_failures;
};

} // namespace mirabend
