#include "recording/engine/Screen2Video.h"

#include "recording/engine/AudioDeviceCatalog.h"
#include "recording/engine/CaptureSession.h"
#include "recording/engine/CompressorCatalog.h"
#include "recording/engine/DeviceInput.h"
#include "recording/engine/FormatPlanner.h"
#include "recording/engine/WmvProfile.h"

#include <algorithm>

namespace mirabend {

namespace {

// Parses a window handle given as decimal text (hexadecimal with 0x is
// taken too); "" and "0" mean the screen.
bool parseWindow(const QString& text, std::uint32_t& window)
{
    const QString t = text.trimmed();
    window = 0;
    if (t.isEmpty())
        return true;
    bool ok = false;
    const qulonglong value = t.startsWith(QLatin1String("0x"), Qt::CaseInsensitive)
                                 ? t.mid(2).toULongLong(&ok, 16)
                                 : t.toULongLong(&ok, 10);
    if (!ok || value > 0xffffffffULL)
        return false;
    window = std::uint32_t(value);
    return true;
}

// Colours arrive as the options window hands them: 0x00RRGGBB, as QRgb
// without its alpha byte.
QColor colorOf(unsigned rgb)
{
    return QColor(int((rgb >> 16) & 0xff), int((rgb >> 8) & 0xff), int(rgb & 0xff));
}

} // namespace

Screen2Video::Screen2Video()
    : m_devices(AudioDeviceCatalog::discover())
    , m_videoCompressors(CompressorCatalog::videoNames())
    , m_audioCompressors(CompressorCatalog::audioNames())
    , m_overlay(std::make_shared<OverlayBoard>())
    , m_failures(std::make_shared<FailureLog>())
{
    m_videoCompressor = std::max(0, m_videoCompressors.FindByName(QStringLiteral("Microsoft Video 1")));
    m_audioCompressor = std::max(0, m_audioCompressors.FindByName(QStringLiteral("PCM")));
    SelectAudioDevice(0);
}

Screen2Video::~Screen2Video()
{
    StopCapture();
    WaitForFinish();
}

int Screen2Video::ScreenWidth() const
{
    int w = 0;
    int h = 0;
    return X11Geometry::screenSize({}, w, h) ? w : 0;
}

int Screen2Video::ScreenHeight() const
{
    int w = 0;
    int h = 0;
    return X11Geometry::screenSize({}, w, h) ? h : 0;
}

void Screen2Video::ZoomRectangle(int left, int top, int right, int bottom)
{
    m_zoom = ScreenRect{left, top, right - left, bottom - top};
}

// ---- sound ----------------------------------------------------------------

void Screen2Video::SelectAudioDevice(int index)
{
    m_audioDevice = index;
    m_pin = 0;
    const auto& devices = m_devices->devices();
    QStringList names;
    for (const AudioDeviceInfo& d : devices)
        names << d.name;
    m_deviceNames = NamedList(names);
    if (index < 0 || index >= int(devices.size())) {
        m_pins = NamedList();
        return;
    }
    // The port in use comes first, so that pin 0 changes nothing.
    const AudioDeviceInfo& d = devices[std::size_t(index)];
    QStringList pins = d.pins;
    if (d.activePin > 0 && d.activePin < pins.size())
        pins.move(d.activePin, 0);
    m_pins = NamedList(pins);
}

void Screen2Video::RefreshAudioDevices()
{
    m_devices = AudioDeviceCatalog::discover();
    SelectAudioDevice(m_audioDevice);
}

const NamedList& Screen2Video::WmvSystemProfiles() const
{
    static const NamedList list(WmvProfiles::systemNames());
    return list;
}

// ---- overlays -------------------------------------------------------------

void Screen2Video::ShowDateTime(bool on)
{
    m_overlay->update([&](OverlaySettings& s) { s.showDateTime = on; });
}
void Screen2Video::DateTimeLayout(int formatIndex, int left, int top)
{
    m_overlay->update([&](OverlaySettings& s) {
        s.dateFormat = formatIndex;
        s.dateLeft = left;
        s.dateTop = top;
    });
}
void Screen2Video::DateTimeColor(unsigned rgb)
{
    m_overlay->update([&](OverlaySettings& s) { s.dateColor = colorOf(rgb); });
}
void Screen2Video::DateTimeFontName(const QString& name)
{
    m_overlay->update([&](OverlaySettings& s) { s.dateFontName = name; });
}
void Screen2Video::DateTimeFontSize(int size)
{
    m_overlay->update([&](OverlaySettings& s) { s.dateFontSize = size; });
}
void Screen2Video::DateTimeFontStyle(int styleIndex)
{
    m_overlay->update([&](OverlaySettings& s) { s.dateFontStyle = styleIndex; });
}
void Screen2Video::ShowText(bool on)
{
    m_overlay->update([&](OverlaySettings& s) { s.showText = on; });
}
void Screen2Video::Text(const QString& text, int left, int top, int)
{
    m_overlay->update([&](OverlaySettings& s) {
        s.text = text;
        s.textLeft = left;
        s.textTop = top;
    });
}
void Screen2Video::TextFontName(const QString& name, int)
{
    m_overlay->update([&](OverlaySettings& s) { s.textFontName = name; });
}
void Screen2Video::TextFontStyle(int styleIndex)
{
    m_overlay->update([&](OverlaySettings& s) { s.textFontStyle = styleIndex; });
}
void Screen2Video::TextFontSize(int size, int)
{
    m_overlay->update([&](OverlaySettings& s) { s.textFontSize = size; });
}
void Screen2Video::TextStyle(int styleIndex, int)
{
    m_overlay->update([&](OverlaySettings& s) { s.textStyle = styleIndex; });
}
void Screen2Video::TextColor(unsigned rgb)
{
    m_overlay->update([&](OverlaySettings& s) { s.textColor = colorOf(rgb); });
}
void Screen2Video::TextOutlineColors(unsigned border, unsigned fill)
{
    m_overlay->update([&](OverlaySettings& s) {
        s.outlineColor = colorOf(border);
        s.outlineFillColor = colorOf(fill);
    });
}
void Screen2Video::HatchBrush(unsigned foreRgb, unsigned backRgb, int hatchIndex, int)
{
    m_overlay->update([&](OverlaySettings& s) {
        s.hatchForeColor = colorOf(foreRgb);
        s.hatchBackColor = colorOf(backRgb);
        s.hatchStyle = hatchIndex;
    });
}
void Screen2Video::TextureImage(const QString& file, int)
{
    m_overlay->update([&](OverlaySettings& s) { s.textureFile = file; });
}
void Screen2Video::ShowImage(bool on)
{
    m_overlay->update([&](OverlaySettings& s) { s.showImage = on; });
}
void Screen2Video::Image(const QString& file, unsigned transparentRgb, int left, int top, int transparency,
                         int)
{
    m_overlay->update([&](OverlaySettings& s) {
        s.imageFile = file;
        s.imageTransparentColor = colorOf(transparentRgb);
        s.imageLeft = left;
        s.imageTop = top;
        s.imageTransparency = transparency;
    });
}
OverlaySettings Screen2Video::Overlay() const
{
    return m_overlay->snapshot();
}

int Screen2Video::VideoCompressorSetting(const QString& compressor, const std::string& key) const
{
    const auto values = m_compressorSettings.find(compressor);
    if (values != m_compressorSettings.end()) {
        const auto value = values->second.find(key);
        if (value != values->second.end())
            return value->second;
    }
    for (const CompressorSetting& setting : CompressorCatalog::videoSettings(compressor)) {
        if (setting.key == key)
            return setting.value;
    }
    return -1;
}

void Screen2Video::VideoCompressorSetting(const QString& compressor, const std::string& key, int value)
{
    m_compressorSettings[compressor][key] = value;
}

// ---- recording --------------------------------------------------------------

void Screen2Video::remember(const RecorderFailure& failure)
{
    m_failures->add(failure);
}

RecordingPlan Screen2Video::plan(RecorderFailure& failure) const
{
    RecordingPlan out;
    std::uint32_t window = 0;
    if (!parseWindow(m_windowHandle, window)) {
        failure = {RecorderError::BadSetting,
                   "window handle \"" + m_windowHandle.toStdString() + "\" is not a number"};
        return out;
    }
    int screenW = 0;
    int screenH = 0;
    if (!X11Geometry::screenSize({}, screenW, screenH)) {
        failure = {RecorderError::DisplayUnavailable, "no X display to record (is DISPLAY set?)"};
        return out;
    }
    out.capture.window = window;
    out.capture.cursor = m_mouseCursor != 0;
    if (window) {
        int w = 0;
        int h = 0;
        if (!X11Geometry::windowSize({}, window, w, h)) {
            failure = {RecorderError::WindowNotFound, "there is no window " + std::to_string(window)};
            return out;
        }
        out.capture.region = ScreenRect{0, 0, w, h};
        if (!m_zoom.isEmpty()) {
            // The zoom rectangle is taken relative to the recorded window;
            // one reaching past it (the whole screen after a zoom out) is
            // cut to the window.
            const int left = std::max(0, m_zoom.left);
            const int top = std::max(0, m_zoom.top);
            const int right = std::min(w, m_zoom.left + m_zoom.width);
            const int bottom = std::min(h, m_zoom.top + m_zoom.height);
            if (right <= left || bottom <= top) {
                failure = {RecorderError::BadSetting,
                           "zoom rectangle " + std::to_string(m_zoom.left) + "," + std::to_string(m_zoom.top) +
                               " " + std::to_string(m_zoom.width) + "x" + std::to_string(m_zoom.height) +
                               " lies outside the recorded " + std::to_string(w) + "x" + std::to_string(h) +
                               " window"};
                return out;
            }
            out.capture.region = ScreenRect{left, top, right - left, bottom - top};
        }
    } else if (m_zoom.isEmpty()) {
        out.capture.region = ScreenRect{0, 0, screenW, screenH};
    } else {
        const ScreenRect& z = m_zoom;
        if (z.left < 0 || z.top < 0 || z.left + z.width > screenW || z.top + z.height > screenH) {
            failure = {RecorderError::BadSetting,
                       "zoom rectangle " + std::to_string(z.left) + "," + std::to_string(z.top) + " " +
                           std::to_string(z.width) + "x" + std::to_string(z.height) + " is not inside the " +
                           std::to_string(screenW) + "x" + std::to_string(screenH) + " screen"};
            return out;
        }
        out.capture.region = z;
    }

    RecorderSettings s;
    s.outputFile = m_outputFile;
    s.format = m_format;
    s.frameRate = m_frameRate;
    s.hardware = m_hardware;
    s.videoCompressor = m_videoCompressors.Item(m_videoCompressor);
    s.audioCompressor = m_audioCompressors.Item(m_audioCompressor);
    s.aviAudioBitrate = m_aviAudioBitrate;
    s.aviAudioChannels = m_aviAudioChannels;
    s.aviAudioSampleRate = m_aviAudioSampleRate;
    s.aviWidth = m_aviWidth;
    s.aviHeight = m_aviHeight;
    s.wmvProfileIndex = m_wmvProfileIndex;
    s.wmvProfileFile = m_wmvProfileFile;
    s.flvAudioBitrate = m_flvAudioBitrate;
    s.flvVideoBitrate = m_flvVideoBitrate;
    s.flvWidth = m_flvWidth;
    s.flvHeight = m_flvHeight;
    s.swfAudioBitrate = m_swfAudioBitrate;
    s.swfVideoBitrate = m_swfVideoBitrate;
    s.swfWidth = m_swfWidth;
    s.swfHeight = m_swfHeight;
    s.outWidth = m_outWidth;
    s.outHeight = m_outHeight;
    s.audio = m_audioEnabled;
    const auto settings = m_compressorSettings.find(s.videoCompressor);
    if (settings != m_compressorSettings.end())
        s.videoCompressorSettings = settings->second;
    const auto h264 = m_compressorSettings.find(QStringLiteral("H.264"));
    if (h264 != m_compressorSettings.end())
        s.h264Settings = h264->second;
    failure = FormatPlanner::plan(s, out.capture.region.width, out.capture.region.height, out);
    return out;
}

bool Screen2Video::StartCapture()
{
    if (IsCapturing()) {
        remember({RecorderError::AlreadyCapturing, "a recording is running already"});
        return false;
    }
    m_failures->clearLast();
    // The last recording may still be collecting late sound; it finishes
    // on its own threads while this one starts.
    retireSession();
    settleFinishing(nullptr);
    RecorderFailure failure;
    RecordingPlan recording = plan(failure);
    if (failure) {
        remember(failure);
        return false;
    }
    if (recording.audio.enabled) {
        const auto& devices = m_devices->devices();
        if (m_audioDevice < 0 || m_audioDevice >= int(devices.size())) {
            // The sound track is kept, silent, so the file has the same
            // streams whatever the machine offers.
            remember({RecorderError::AudioDeviceUnavailable,
                      devices.empty() ? "no audio source found; recording silence"
                                      : "audio device " + std::to_string(m_audioDevice) +
                                            " is not in the list; recording silence"});
        } else {
            const AudioDeviceInfo& d = devices[std::size_t(m_audioDevice)];
            recording.source.backend = d.backend;
            recording.source.device = d.id;
            recording.source.label = d.name.toStdString();
            // Pins are listed with the active port first (see SelectAudioDevice).
            const QString pinName = m_pins.Item(m_pin);
            const int pin = int(d.pins.indexOf(pinName));
            std::string error;
            if (pin >= 0 && pin != d.activePin && !m_devices->selectPin(d, pin, error))
                remember({RecorderError::AudioDeviceUnavailable, error});
        }
    }
    settleFinishing(&recording);
    auto session = std::make_unique<CaptureSession>(m_overlay, m_failures);
    if (RecorderFailure f = session->start(recording)) {
        remember(f);
        return false;
    }
    m_hardwareInUse = session->videoEncoder().hardware();
    m_encoderInUse = QString::fromStdString(session->videoEncoder().name());
    m_captureInUse = QString::fromStdString(session->captureBackend());
    if (m_hardware && !m_hardwareInUse && !session->videoEncoder().hardwareNote().empty())
        m_encoderInUse +=
            QStringLiteral(" (%1)").arg(QString::fromStdString(session->videoEncoder().hardwareNote()));
    std::lock_guard<std::mutex> lock(m_sessionMutex);
    m_session = std::move(session);
    return true;
}

void Screen2Video::StopCapture()
{
    std::lock_guard<std::mutex> lock(m_sessionMutex);
    if (m_session)
        m_session->stop();
}

void Screen2Video::StopCaptureInBackground()
{
    {
        std::lock_guard<std::mutex> lock(m_sessionMutex);
        if (m_session)
            m_session->end();
    }
    settleFinishing(nullptr);
}

bool Screen2Video::IsFinishing() const
{
    for (const auto& old : m_finishing) {
        if (!old->finished())
            return true;
    }
    std::lock_guard<std::mutex> lock(m_sessionMutex);
    return m_session && !m_session->running() && !m_session->finished();
}

void Screen2Video::WaitForFinish()
{
    for (auto& old : m_finishing)
        old->stop();
    m_finishing.clear();
    std::lock_guard<std::mutex> lock(m_sessionMutex);
    if (m_session && !m_session->running())
        m_session->stop();
}

void Screen2Video::retireSession()
{
    std::unique_ptr<CaptureSession> old;
    {
        std::lock_guard<std::mutex> lock(m_sessionMutex);
        old = std::move(m_session);
    }
    if (!old)
        return;
    old->end();
    // What it meets from here on would be taken for the new recording's.
    old->stopReporting();
    m_finishing.push_back(std::move(old));
}

void Screen2Video::settleFinishing(const RecordingPlan* next)
{
    const auto collides = [next](const CaptureSession& old) {
        if (!next)
            return false;
        const RecordingPlan& was = old.plan();
        if (was.file == next->file)
            return true;
        // An ALSA capture device takes one reader at a time; a sound server
        // serves any number of streams from one source.
        return next->audio.enabled && was.source.backend == "alsa" && next->source.backend == "alsa" &&
               was.source.device == next->source.device;
    };
    for (auto it = m_finishing.begin(); it != m_finishing.end();) {
        if ((*it)->finished() || collides(**it)) {
            (*it)->stop();
            it = m_finishing.erase(it);
        } else {
            ++it;
        }
    }
}

void Screen2Video::PauseCapture()
{
    std::lock_guard<std::mutex> lock(m_sessionMutex);
    if (m_session)
        m_session->pause();
}

void Screen2Video::ResumeCapture()
{
    std::lock_guard<std::mutex> lock(m_sessionMutex);
    if (m_session)
        m_session->resume();
}

void Screen2Video::addChapter(const QString& title)
{
    std::lock_guard<std::mutex> lock(m_sessionMutex);
    if (m_session && m_session->running())
        m_session->addChapter(title.toStdString());
}

bool Screen2Video::IsCapturing() const
{
    std::lock_guard<std::mutex> lock(m_sessionMutex);
    return m_session && m_session->running();
}

bool Screen2Video::IsPaused() const
{
    std::lock_guard<std::mutex> lock(m_sessionMutex);
    return m_session && m_session->running() && m_session->paused();
}

RecorderCounters Screen2Video::Counters() const
{
    std::lock_guard<std::mutex> lock(m_sessionMutex);
    return m_session ? m_session->counters() : RecorderCounters{};
}

std::vector<RecorderFailure> Screen2Video::TakeFailures()
{
    return m_failures->take();
}
RecorderFailure Screen2Video::LastFailure() const
{
    return m_failures->last();
}

} // namespace mirabend
