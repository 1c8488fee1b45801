#include "audio/capture/WaveCaptureSession.h"

#include <cerrno>
#include <chrono>

namespace mirabend {
namespace {

constexpr int kWaitMs = 100;    // how often the capture thread looks at the stop flag
constexpr unsigned kPeriods = 4; // device buffer, in capture buffers
constexpr int kLateWaitMs = 5;   // waiting for the owner to give a buffer back

std::string alsaText(const char* step, int err)
{
    return std::string(step) + ": " + snd_strerror(err);
}

// Sets up the device for interleaved 16-bit capture; returns a failure when
// the device refuses the format.
CaptureFailure configure(snd_pcm_t* pcm, const CaptureFormat& format, snd_pcm_uframes_t framesPerBuffer,
                         long* deviceFrames)
{
    snd_pcm_hw_params_t* rawHw = nullptr;
    if (snd_pcm_hw_params_malloc(&rawHw) < 0)
        return {CaptureError::OpenFailed, "out of memory"};
    alsa::HwParams hw(rawHw);
    int err = snd_pcm_hw_params_any(pcm, hw.get());
    if (err < 0)
        return {CaptureError::OpenFailed, alsaText("reading the device's formats", err)};
    if ((err = snd_pcm_hw_params_set_access(pcm, hw.get(), SND_PCM_ACCESS_RW_INTERLEAVED)) < 0 ||
        (err = snd_pcm_hw_params_set_format(pcm, hw.get(), SND_PCM_FORMAT_S16_LE)) < 0)
        return {CaptureError::FormatRefused, alsaText("16-bit samples", err)};
    if ((err = snd_pcm_hw_params_set_channels(pcm, hw.get(), format.channels)) < 0)
        return {CaptureError::FormatRefused, std::to_string(format.channels) + " channels: " + snd_strerror(err)};
    snd_pcm_hw_params_set_rate_resample(pcm, hw.get(), 1);
    if ((err = snd_pcm_hw_params_set_rate(pcm, hw.get(), format.rate, 0)) < 0)
        return {CaptureError::FormatRefused, std::to_string(format.rate) + " Hz: " + snd_strerror(err)};
    snd_pcm_uframes_t period = framesPerBuffer;
    int dir = 0;
    snd_pcm_hw_params_set_period_size_near(pcm, hw.get(), &period, &dir);
    snd_pcm_uframes_t bufferFrames = framesPerBuffer * kPeriods;
    snd_pcm_hw_params_set_buffer_size_near(pcm, hw.get(), &bufferFrames);
    *deviceFrames = static_cast<long>(bufferFrames);
    if ((err = snd_pcm_hw_params(pcm, hw.get())) < 0)
        return {CaptureError::FormatRefused, alsaText("setting the capture format", err)};

    snd_pcm_sw_params_t* rawSw = nullptr;
    if (snd_pcm_sw_params_malloc(&rawSw) < 0)
        return {CaptureError::OpenFailed, "out of memory"};
    alsa::SwParams sw(rawSw);
    snd_pcm_sw_params_current(pcm, sw.get());
    snd_pcm_sw_params_set_avail_min(pcm, sw.get(), std::min(period, framesPerBuffer));
    if ((err = snd_pcm_sw_params(pcm, sw.get())) < 0)
        return {CaptureError::OpenFailed, alsaText("setting the wake-up size", err)};
    return {};
}

} // namespace

std::unique_ptr<WaveCaptureSession> WaveCaptureSession::start(const std::string& pcmName, const CaptureFormat& format,
                                                      Wake wake, CaptureFailure* failure)
{
    const int frameBytes = 2 * static_cast<int>(format.channels);
    if (format.rate < 1 || format.channels < 1 || format.bufferCount < 1 || format.bufferSize < frameBytes) {
        *failure = {CaptureError::BadParameters, "rate " + std::to_string(format.rate) + ", channels " +
                                                     std::to_string(format.channels) + ", " +
                                                     std::to_string(format.bufferCount) + " buffers of " +
                                                     std::to_string(format.bufferSize) + " bytes"};
        return nullptr;
    }
    snd_pcm_t* raw = nullptr;
    int err = snd_pcm_open(&raw, pcmName.c_str(), SND_PCM_STREAM_CAPTURE, SND_PCM_NONBLOCK);
    alsa::Pcm pcm(raw);
    if (err < 0) {
        *failure = {CaptureError::OpenFailed, "\"" + pcmName + "\": " + snd_strerror(err)};
        return nullptr;
    }
    const auto framesPerBuffer = static_cast<snd_pcm_uframes_t>(format.bufferSize / frameBytes);
    long deviceFrames = 0;
    if (CaptureFailure refused = configure(pcm.get(), format, framesPerBuffer, &deviceFrames)) {
        refused.detail = "\"" + pcmName + "\": " + refused.detail;
        *failure = refused;
        return nullptr;
    }
    if ((err = snd_pcm_prepare(pcm.get())) < 0 || (err = snd_pcm_start(pcm.get())) < 0) {
        *failure = {CaptureError::StartFailed, "\"" + pcmName + "\": " + snd_strerror(err)};
        return nullptr;
    }
    std::unique_ptr<WaveCaptureSession> session(new WaveCaptureSession(std::move(pcm), format, std::move(wake)));
    session->m_deviceFrames = deviceFrames;
    session->m_thread = std::thread([s = session.get()] { s->run(); });
    return session;
}

WaveCaptureSession::WaveCaptureSession(alsa::Pcm pcm, const CaptureFormat& format, Wake wake)
    : m_pcm(std::move(pcm))
    , m_format(format)
    , m_wake(std::move(wake))
    , m_buffers(static_cast<std::size_t>(format.bufferCount))
    , m_free(static_cast<std::size_t>(format.bufferCount))
    , m_filled(static_cast<std::size_t>(format.bufferCount))
{
    for (int i = 0; i < format.bufferCount; ++i) {
        m_buffers[static_cast<std::size_t>(i)].samples.assign(static_cast<std::size_t>(format.bufferSize / 2), 0);
        m_free.tryPush(i);
    }
}

WaveCaptureSession::~WaveCaptureSession()
{
    stop();
}

void WaveCaptureSession::stop()
{
    m_stop = true;
    if (m_thread.joinable())
        m_thread.join();
    if (m_pcm) {
        snd_pcm_drop(m_pcm.get());
        m_pcm.reset();
    }
}

std::optional<int> WaveCaptureSession::takeFilled()
{
    return m_filled.popFor(std::chrono::milliseconds(0));
}

void WaveCaptureSession::giveBack(int index)
{
    m_free.tryPush(index);
}

CaptureFailure WaveCaptureSession::failure() const
{
    std::lock_guard<std::mutex> lock(m_failureMutex);
    return m_failure;
}

CaptureStats WaveCaptureSession::stats() const
{
    return {m_buffersFilled.load(), m_buffersDropped.load(), m_overruns.load()};
}

void WaveCaptureSession::fail(CaptureError code, std::string detail)
{
    {
        std::lock_guard<std::mutex> lock(m_failureMutex);
        m_failure = {code, std::move(detail)};
    }
    if (m_wake)
        m_wake();
}

// Overruns (EPIPE) and suspends (ESTRPIPE) are part of normal life; anything
// else means the device is gone or broken.
bool WaveCaptureSession::recover(int err)
{
    snd_pcm_t* pcm = m_pcm.get();
    if (err == -EPIPE) {
        ++m_overruns;
        if (snd_pcm_prepare(pcm) >= 0 && snd_pcm_start(pcm) >= 0)
            return true;
    } else if (err == -ESTRPIPE) {
        int r;
        while ((r = snd_pcm_resume(pcm)) == -EAGAIN && !m_stop)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        if (r >= 0 || (snd_pcm_prepare(pcm) >= 0 && snd_pcm_start(pcm) >= 0))
            return true;
    }
    fail(CaptureError::DeviceLost, snd_strerror(err));
    return false;
}

// True while the device can take more than one further capture buffer
// before it overruns.
bool WaveCaptureSession::deviceHasRoom(long framesPerBuffer)
{
    const snd_pcm_sframes_t avail = snd_pcm_avail_update(m_pcm.get());
    return avail >= 0 && avail + 2 * framesPerBuffer <= m_deviceFrames;
}

void WaveCaptureSession::run()
{
    const auto channels = m_format.channels;
    const auto frameBytes = static_cast<int>(2 * channels);
    const snd_pcm_sframes_t framesPerBuffer = m_format.bufferSize / frameBytes;
    std::vector<std::int16_t> scratch(static_cast<std::size_t>(framesPerBuffer) * channels);
    int current = -1; // buffer being filled, -1 while reading into scratch
    bool haveTarget = false;
    snd_pcm_sframes_t filled = 0;

    while (!m_stop) {
        if (!haveTarget) {
            const std::optional<int> next = m_free.popFor(std::chrono::milliseconds(0));
            if (!next && filled == 0 && deviceHasRoom(framesPerBuffer)) {
                // The owner is behind: let the device's own buffer hold the
                // audio a little longer before any of it is given up.
                const std::optional<int> late = m_free.popFor(std::chrono::milliseconds(kLateWaitMs));
                if (!late)
                    continue;
                current = *late;
            } else {
                current = next ? *next : -1;
            }
            haveTarget = true;
        }
        const int ready = snd_pcm_wait(m_pcm.get(), kWaitMs);
        if (ready == 0)
            continue;
        if (ready < 0) {
            if (!recover(ready))
                return;
            continue;
        }
        std::int16_t* target = current >= 0 ? m_buffers[static_cast<std::size_t>(current)].samples.data()
                                            : scratch.data();
        const snd_pcm_sframes_t got =
            snd_pcm_readi(m_pcm.get(), target + filled * channels, static_cast<snd_pcm_uframes_t>(framesPerBuffer - filled));
        if (got == -EAGAIN)
            continue;
        if (got < 0) {
            if (!recover(static_cast<int>(got)))
                return;
            continue;
        }
        filled += got;
        if (filled < framesPerBuffer)
            continue;
        if (current >= 0) {
            m_buffers[static_cast<std::size_t>(current)].bytesRecorded = static_cast<int>(filled) * frameBytes;
            m_filled.tryPush(current);
            ++m_buffersFilled;
            if (m_wake)
                m_wake();
        } else {
            ++m_buffersDropped;
        }
        filled = 0;
        haveTarget = false;
    }
}

} // namespace mirabend
