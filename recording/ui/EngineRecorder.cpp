#include "recording/ui/EngineRecorder.h"

#include "recording/overlay/OverlayChoices.h"
#include "recording/ui/CompressorSettingsDialog.h"

#include <QApplication>

namespace mirabend {

namespace {

QString number(double value) {
    return QString::number(value, 'g', 15);
}
unsigned rgb(QRgb colour) {
    return colour & 0xffffffu;
}

} // namespace

EngineRecorder::EngineRecorder()
    : m_engine(std::make_unique<Screen2Video>()) {}

EngineRecorder::~EngineRecorder() = default;

RecordingFailure EngineRecorder::translate(const RecorderFailure& failure) {
    const std::string& detail = failure.detail;
    switch (failure.code) {
    case RecorderError::None:
        return {};
    case RecorderError::AudioDeviceUnavailable:
        return {RecordingError::SoundMissing, detail};
    case RecorderError::BadSetting:
    case RecorderError::DisplayUnavailable:
    case RecorderError::WindowNotFound:
    case RecorderError::EncoderUnavailable:
    case RecorderError::OutputOpenFailed:
    case RecorderError::AlreadyCapturing:
        return {RecordingError::StartRefused, detail};
    case RecorderError::WriteFailed:
        if (detail.find("No space left") != std::string::npos || detail.find("ENOSPC") != std::string::npos ||
            detail.find("disk full") != std::string::npos || detail.find("Disk quota") != std::string::npos)
            return {RecordingError::DiskFull, detail};
        return {RecordingError::WriteFailed, detail};
    case RecorderError::AudioSourceLost:
        return {RecordingError::AudioSourceLost, detail};
    case RecorderError::WindowClosed:
    case RecorderError::CaptureFailed:
        return {RecordingError::WriteFailed, detail};
    }
    return {RecordingError::WriteFailed, detail};
}

void EngineRecorder::collect() const {
    for (const RecorderFailure& f : m_engine->TakeFailures()) {
        const RecordingFailure mapped = translate(f);
        if (isSoundNotice(mapped.code)) {
            if (!m_soundNotice && !m_soundTold)
                m_soundNotice = mapped;
        } else if (mapped && !m_failure) {
            m_failure = mapped;
        }
    }
}

bool EngineRecorder::StartCapture() {
    m_engine->TakeFailures(); // what the last recording left behind is told already
    m_failure = {};
    m_soundNotice = {};
    m_soundTold = false;
    m_started = m_engine->StartCapture();
    if (!m_started) {
        collect();
        if (!m_failure) {
            const RecorderFailure last = m_engine->LastFailure();
            m_failure = {RecordingError::StartRefused, last.detail};
        }
    }
    return m_started;
}

void EngineRecorder::StopCapture() {
    // The sound server may still owe seconds of sound up to this instant;
    // waiting for it here would freeze the window and, after the warm-up,
    // start the real recording that much late. The engine finishes the
    // file on its own threads.
    m_engine->StopCaptureInBackground();
    m_started = false;
}

RecordingFailure EngineRecorder::failure() const {
    collect();
    // A recorder that ended by itself has failed, whether it said so or not.
    if (!m_failure && m_started && !m_engine->IsCapturing())
        m_failure = {RecordingError::WriteFailed, "the recorder stopped by itself"};
    return m_failure;
}

RecordingFailure EngineRecorder::takeSoundNotice() {
    collect();
    const RecordingFailure notice = m_soundNotice;
    // Told once: later notices of the same capture are not handed out again.
    m_soundTold = m_soundTold || notice;
    m_soundNotice = {};
    return notice;
}

void EngineRecorder::PauseCapture() {
    m_engine->PauseCapture();
}
void EngineRecorder::addChapter(const QString& title) {
    m_engine->addChapter(title);
}
void EngineRecorder::ResumeCapture() {
    m_engine->ResumeCapture();
}

void EngineRecorder::CaptureWindowHandle(const QString& handle) {
    m_engine->CaptureWindowHandle(handle);
}
void EngineRecorder::CaptureMouseCursor(int checked) {
    m_engine->CaptureMouseCursor(checked);
}
void EngineRecorder::AudioDeviceIndex(int index) {
    m_engine->AudioDeviceIndex(index);
}
void EngineRecorder::AudioInputPinIndex(int index) {
    m_engine->AudioInputPinIndex(index);
}
void EngineRecorder::HardwareAcceleration(bool on) {
    m_engine->HardwareAcceleration(on);
}
void EngineRecorder::OutputFileName(const QString& path) {
    m_engine->OutputFileName(path);
}
void EngineRecorder::FrameRate(double fps) {
    m_engine->FrameRate(fps);
}
void EngineRecorder::OutputFormat(RecorderFormat format) {
    m_engine->OutputFormat(static_cast<int>(format));
}

QStringList EngineRecorder::videoCompressors() const {
    return m_engine->VideoCompressors().Names();
}
QStringList EngineRecorder::audioCompressors() const {
    return m_engine->AudioCompressors().Names();
}
int EngineRecorder::findVideoCompressor(const QString& name) const {
    return m_engine->VideoCompressors().FindByName(name);
}
int EngineRecorder::findAudioCompressor(const QString& name) const {
    return m_engine->AudioCompressors().FindByName(name);
}
void EngineRecorder::VideoCompressorIndex(int index) {
    m_engine->VideoCompressorIndex(index);
}
void EngineRecorder::AudioCompressorIndex(int index) {
    m_engine->AudioCompressorIndex(index);
}
bool EngineRecorder::showVideoCompressorSettings(int index) {
    const QString name = m_engine->VideoCompressors().Item(index);
    const std::vector<CompressorSetting> settings = CompressorCatalog::videoSettings(name);
    if (settings.empty())
        return false;
    CompressorSettingValues current;
    for (const CompressorSetting& setting : settings)
        current[setting.key] = m_engine->VideoCompressorSetting(name, setting.key);
    CompressorSettingsDialog page(name, settings, current, QApplication::activeWindow());
    if (page.exec() == QDialog::Accepted) {
        for (const auto& [key, value] : page.values())
            m_engine->VideoCompressorSetting(name, key, value);
    }
    return true;
}

void EngineRecorder::AviSwitches(bool on) {
    m_engine->AviUseVideoCompressor(on);
    m_engine->AviUseAudioCompressor(on);
}
void EngineRecorder::AviAudioBitrate(double kbitPerSecond) {
    m_engine->AviAudioBitrate(kbitPerSecond);
}
void EngineRecorder::AviAudioChannels(int channels) {
    m_engine->AviAudioChannels(channels);
}
void EngineRecorder::AviAudioSampleRate(int hertz) {
    m_engine->AviAudioSampleRate(hertz);
}
void EngineRecorder::AviSize(int width, int height) {
    m_engine->AviWidth(width);
    m_engine->AviHeight(height);
}

void EngineRecorder::WmvSwitch(bool on) {
    m_engine->WmvUseProfile(on);
}
QStringList EngineRecorder::wmvSystemProfiles() const {
    return m_engine->WmvSystemProfiles().Names();
}
int EngineRecorder::findWmvSystemProfile(const QString& name) const {
    return m_engine->WmvSystemProfiles().FindByName(name);
}
void EngineRecorder::WmvProfileIndex(int index) {
    m_engine->WmvProfileIndex(index);
}
void EngineRecorder::WmvProfileFile(const QString& path) {
    m_engine->WmvProfileFile(path);
}

void EngineRecorder::FlvBitrates(double audio, double video) {
    m_engine->FlvAudioBitrate(number(audio));
    m_engine->FlvVideoBitrate(number(video));
}
void EngineRecorder::FlvSize(int width, int height) {
    m_engine->FlvWidth(width);
    m_engine->FlvHeight(height);
}
void EngineRecorder::SwfBitrates(double audio, double video) {
    m_engine->SwfAudioBitrate(number(audio));
    m_engine->SwfVideoBitrate(number(video));
}
void EngineRecorder::SwfSize(int width, int height) {
    m_engine->SwfWidth(width);
    m_engine->SwfHeight(height);
}
void EngineRecorder::VideoSize(int width, int height) {
    m_engine->OutputWidth(width);
    m_engine->OutputHeight(height);
}

QStringList EngineRecorder::audioDevices() const {
    return m_engine->AudioDevices().Names();
}
void EngineRecorder::SelectAudioDevice(int index) {
    m_engine->SelectAudioDevice(index);
}
QStringList EngineRecorder::audioInputPins() const {
    return m_engine->AudioInputPins().Names();
}
int EngineRecorder::ScreenWidth() const {
    return m_engine->ScreenWidth();
}
int EngineRecorder::ScreenHeight() const {
    return m_engine->ScreenHeight();
}
void EngineRecorder::ZoomRect(int left, int top, int right, int bottom) {
    m_engine->ZoomRectangle(left, top, right, bottom);
}

QStringList EngineRecorder::dateFormatNames() const {
    return overlayDateFormatNames();
}
QStringList EngineRecorder::textStyleNames() const {
    return overlayTextStyleNames();
}
QStringList EngineRecorder::hatchStyleNames() const {
    return overlayHatchStyleNames();
}

void EngineRecorder::ShowDateTime(bool on) {
    m_engine->ShowDateTime(on);
}
void EngineRecorder::DateTimeLayout(int formatIndex, int left, int top) {
    m_engine->DateTimeLayout(formatIndex, left, top);
}
void EngineRecorder::DateColor(QRgb colour) {
    m_engine->DateTimeColor(rgb(colour));
}
void EngineRecorder::DateFontName(const QString& family) {
    m_engine->DateTimeFontName(family);
}
void EngineRecorder::DateFontSize(int points) {
    m_engine->DateTimeFontSize(points);
}
void EngineRecorder::DateFontStyle(int styleIndex) {
    m_engine->DateTimeFontStyle(styleIndex);
}
void EngineRecorder::ShowText(bool on) {
    m_engine->ShowText(on);
}
void EngineRecorder::Text(const QString& text, int left, int top, int reserved) {
    m_engine->Text(text, left, top, reserved);
}
void EngineRecorder::TextFontName(const QString& family, int styleIndex) {
    m_engine->TextFontName(family);
    m_engine->TextFontStyle(styleIndex);
}
void EngineRecorder::TextFontSize(int points, int reserved) {
    m_engine->TextFontSize(points, reserved);
}
void EngineRecorder::TextStyle(int styleIndex, int reserved) {
    m_engine->TextStyle(styleIndex, reserved);
}
void EngineRecorder::TextColors(QRgb solid, QRgb outlineBorder, QRgb outlineFill) {
    m_engine->TextColor(rgb(solid));
    m_engine->TextOutlineColors(rgb(outlineBorder), rgb(outlineFill));
}
void EngineRecorder::HatchBrush(QRgb fore, QRgb back, int hatchIndex, int reserved) {
    m_engine->HatchBrush(rgb(fore), rgb(back), hatchIndex, reserved);
}
void EngineRecorder::TextureImage(const QString& path, int reserved) {
    m_engine->TextureImage(path, reserved);
}
void EngineRecorder::ShowImage(bool on) {
    m_engine->ShowImage(on);
}
void EngineRecorder::Image(const QString& path, QRgb transparent, int left, int top, int transparency,
                           int reserved) {
    m_engine->Image(path, rgb(transparent), left, top, transparency, reserved);
}

} // namespace mirabend
