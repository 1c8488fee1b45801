#include "recording/engine/CaptureSession.h"

#include "recording/engine/FrameRepeater.h"
#include "recording/engine/StampedGrabs.h"
#include "recording/repair/RecordingJournal.h"

#include <QDateTime>
#include <QGuiApplication>
#include <chrono>

namespace mirabend {

namespace {

// Queue depths: a few frames of slack for the video encoder (each frame is
// width*height*4 bytes; a deeper queue only holds more whole pictures while
// the encoder is behind, and a frame dropped here is filled by repeating the
// previous one), about two seconds of audio blocks, and enough encoded
// packets for the interleaver to pick from.
constexpr std::size_t kVideoQueueFrames = 4;
constexpr std::size_t kAudioQueueBlocks = 100;
constexpr std::size_t kMuxQueuePackets = 512;
// Audio blocks of about 20 ms.
constexpr int kAudioBlockMs = 20;
// How far the sample count may wander from the stamps before it is pulled
// back (stamps jitter by a few milliseconds).
constexpr std::int64_t kAudioToleranceUs = 60000;
// How long a stop waits for sound the server has not delivered yet.
constexpr std::int64_t kAudioGraceUs = 2500000;

std::string displayName(const std::string& display)
{
    if (!display.empty())
        return display;
    const char* env = std::getenv("DISPLAY");
    return env && *env ? env : ":0";
}

} // namespace

CaptureSession::CaptureSession(std::shared_ptr<OverlayBoard> overlay, std::shared_ptr<FailureLog> failures)
    : m_overlay(std::move(overlay))
    , m_failures(std::move(failures))
    , m_videoQueue(kVideoQueueFrames)
    , m_audioQueue(kAudioQueueBlocks)
    , m_muxQueue(kMuxQueuePackets)
{
}

CaptureSession::~CaptureSession()
{
    stop();
}

void CaptureSession::fail(RecorderError code, const std::string& detail)
{
    std::lock_guard<std::mutex> lock(m_failuresMutex);
    if (m_failures)
        m_failures->add({code, detail});
}

void CaptureSession::stopReporting()
{
    std::lock_guard<std::mutex> lock(m_failuresMutex);
    m_failures.reset();
}

RecorderFailure CaptureSession::start(const RecordingPlan& plan)
{
    m_plan = plan;
    const CaptureTarget& target = plan.capture;
    const std::string display = displayName(target.display);

    RecorderFailure screenFailure;
    m_screen = openScreenSource(display, target, plan.fpsNum, plan.fpsDen, screenFailure, m_captureNote);
    if (!m_screen)
        return screenFailure;
    m_screenWidth = m_screen->width();
    m_screenHeight = m_screen->height();

    if (plan.audio.enabled) {
        const int rate = plan.audio.sampleRate;
        const int channels = plan.audio.channels;
        DeviceInput::Options soundOptions = {{"sample_rate", std::to_string(rate)},
                                             {"channels", std::to_string(channels)}};
        if (plan.source.backend == "pulse") {
            const int blockBytes = rate * channels * 2 * kAudioBlockMs / 1000;
            soundOptions.push_back({"fragment_size", std::to_string(blockBytes)});
            soundOptions.push_back({"name", "Mirabend"});
            soundOptions.push_back({"stream_name", "Screen recording"});
        }
        std::string soundError = "no audio source";
        if (!plan.source.backend.empty() &&
            m_sound.open(plan.source.backend.c_str(), plan.source.device, soundOptions, soundError)) {
            const AVCodecParameters* p = m_sound.parameters();
            if (p->codec_id != AV_CODEC_ID_PCM_S16LE) {
                soundError = "the audio source does not deliver 16-bit samples";
            } else {
                m_haveAudio = true;
            }
        }
        if (!m_haveAudio) {
            // Without a source the sound track is recorded silent: a missing
            // microphone costs the sound, not the recording or its layout.
            m_sound.close();
            m_soundMissing = true;
            m_haveAudio = true;
            if (!plan.source.backend.empty())
                fail(RecorderError::AudioDeviceUnavailable,
                     "\"" + plan.source.label + "\": " + soundError + "; recording silence");
        }
    }

    const bool globalHeader = MuxWriter::needsGlobalHeader(plan.muxer);
    if (RecorderFailure f = m_videoEncoder.open(plan, m_screenWidth, m_screenHeight, globalHeader))
        return f;
    if (m_haveAudio) {
        // An audio encoder that refuses costs the sound, not the recording.
        const AVCodecParameters* p = m_soundMissing ? nullptr : m_sound.parameters();
        const int rate = p ? p->sample_rate : plan.audio.sampleRate;
        const int channels = p ? p->ch_layout.nb_channels : plan.audio.channels;
        if (RecorderFailure f = m_audioEncoder.open(plan.audio, rate, channels, globalHeader)) {
            fail(f.code, f.detail + "; recording without sound");
            m_haveAudio = false;
            m_sound.close();
        }
    }
    if (RecorderFailure f =
            m_mux.open(plan, m_videoEncoder.context(), m_haveAudio ? m_audioEncoder.context() : nullptr))
        return f;
    // Listed as in progress until closed: a kill or crash before that is
    // repaired at the next start.
    RecordingJournal().add(plan.file);

    // Both devices are read from now on. The recording's time starts with
    // the first frame, so the picture begins at once; sound before it is cut.
    m_started = true;
    m_muxProducers = m_haveAudio ? 2 : 1;
    m_muxThread = std::thread([this] { muxLoop(); });
    m_videoEncode = std::thread([this] { videoEncodeLoop(); });
    m_videoCapture = std::thread([this] { videoCaptureLoop(); });
    if (m_haveAudio) {
        m_audioEncode = std::thread([this] { audioEncodeLoop(); });
        m_audioCapture = std::thread([this] { audioCaptureLoop(); });
    }
    return {};
}

void CaptureSession::endNow()
{
    std::int64_t none = 0;
    if (m_endStamp.compare_exchange_strong(none, av_gettime()))
        m_clock.pause(m_endStamp); // nothing after the end is recorded
    m_ending = true;
}

void CaptureSession::pause()
{
    m_clock.pause(av_gettime());
}
void CaptureSession::resume()
{
    m_clock.resume(av_gettime());
}

void CaptureSession::end()
{
    if (!m_started)
        return;
    m_endRequested = true;
    endNow();
}

void CaptureSession::stop()
{
    if (!m_started)
        return;
    end();
    for (std::thread* t : {&m_videoCapture, &m_audioCapture, &m_videoEncode, &m_audioEncode, &m_muxThread}) {
        if (t->joinable())
            t->join();
    }
    m_started = false;
}

RecorderCounters CaptureSession::counters() const
{
    RecorderCounters c;
    c.framesCaptured = m_framesCaptured;
    c.framesWritten = m_framesWritten;
    c.framesDropped = m_framesDropped;
    c.framesDuplicated = m_framesDuplicated;
    c.audioOverruns = m_audioOverruns;
    c.audioSamplesWritten = m_audioSamples;
    c.bytesWritten = m_mux.bytesWritten();
    const std::int64_t end = m_endStamp;
    c.secondsRecorded = double(m_clock.mediaNow(end ? end : av_gettime())) / 1e6;
    return c;
}

// ---- capture ----------------------------------------------------------------

void CaptureSession::videoCaptureLoop()
{
    FrameGrid grid(m_plan.fpsNum, m_plan.fpsDen);
    const bool canPaint = qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
    const bool scaled = !m_videoEncoder.convertsRows();
    StampedGrabs stamps(m_screenWidth, m_screenHeight, !m_screen->grabsWholePictures());
    int epoch = 0;
    while (!m_ending) {
        const bool overlay = canPaint && m_overlay->active();
        const ScreenSource::Want want = stamps.want(
            overlay, scaled ? ScreenSource::Want::WholeOnChange : ScreenSource::Want::Changes);
        ScreenGrab grab;
        int ret = 0;
        {
            StageProfile::Scope scope(m_profile, StageProfile::Grab);
            ret = m_screen->read(grab, want);
        }
        if (ret == AVERROR(EAGAIN)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            continue;
        }
        if (ret < 0) {
            if (!m_ending) {
                if (m_plan.capture.window)
                    fail(RecorderError::WindowClosed,
                         "the recorded window " + std::to_string(m_plan.capture.window) +
                             " cannot be read any more (" + avErrorText(ret) + ")");
                else
                    fail(RecorderError::CaptureFailed,
                         "the screen cannot be read any more: " + avErrorText(ret));
                endNow();
            }
            break;
        }
        m_clock.start(grab.stamp);
        const std::optional<std::int64_t> media = m_clock.mediaTime(grab.stamp);
        if (!media) {
            m_screen->unread(grab); // paused
            continue;
        }
        ++m_framesCaptured;
        if (const int now = m_clock.pauseCount(); now != epoch) {
            grid.reanchor();
            epoch = now;
        }
        const std::optional<std::int64_t> slot = grid.place(*media);
        if (!slot) {
            m_screen->unread(grab);
            ++m_framesDropped;
            continue;
        }
        if (overlay) {
            StageProfile::Scope scope(m_profile, StageProfile::Overlay);
            if (!stamps.stamp(grab, *m_overlay, QDateTime::currentDateTime(), scaled)) {
                m_screen->unread(grab);
                ++m_framesDropped;
                continue;
            }
        }
        const std::vector<RowBand> bands = grab.bands;
        if (!m_videoQueue.tryPush(VideoItem{std::move(grab.pixels), std::move(grab.bands), *slot})) {
            ScreenGrab lost;
            lost.bands = bands;
            m_screen->unread(lost);
            ++m_framesDropped;
            continue;
        }
        stamps.recorded(overlay);
    }
    m_videoQueue.close();
}

void CaptureSession::audioCaptureLoop()
{
    const int channels = m_audioEncoder.inputChannels();
    const int rate = m_audioEncoder.inputRate();
    bool lost = m_soundMissing;
    std::int64_t nextSilence = m_soundMissing ? av_gettime() : 0;
    std::int64_t received = 0; // wall clock up to which sound has arrived
    for (;;) {
        if (m_ending) {
            // Sound servers deliver late (a sine source in 2 s blocks): wait
            // for the sound up to the end of the recording, but not forever.
            const std::int64_t end = m_endStamp;
            if (lost || received >= end || av_gettime() > end + kAudioGraceUs)
                break;
        }
        PacketPtr packet;
        std::int64_t stamp = 0;
        std::int64_t samples = 0;
        if (!lost) {
            packet = makePacket();
            const int ret = packet ? m_sound.read(packet.get()) : AVERROR(ENOMEM);
            if (ret == AVERROR(EAGAIN)) {
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
                continue;
            }
            if (ret < 0) {
                if (m_ending)
                    break;
                // The source went away (unplugged, server restarted): the
                // recording goes on with silence so the picture is kept.
                fail(RecorderError::AudioSourceLost, "\"" + m_plan.source.label +
                                                         "\" stopped delivering sound (" + avErrorText(ret) +
                                                         "); recording silence from here on");
                lost = true;
                nextSilence = std::max(received, av_gettime());
                continue;
            }
            stamp = m_sound.stampOf(packet.get());
            samples = packet->size / (2 * channels);
        } else {
            const std::int64_t now = av_gettime();
            if (now < nextSilence) {
                std::this_thread::sleep_for(std::chrono::microseconds(nextSilence - now));
                continue;
            }
            stamp = nextSilence;
            samples = std::int64_t(rate) * kAudioBlockMs / 1000;
            nextSilence += kAudioBlockMs * 1000;
        }
        const std::int64_t length = samples * 1000000 / rate;
        received = stamp + length;
        for (const RecordingClock::Segment& seg : m_clock.segments(stamp, length)) {
            AudioItem item;
            item.offset = seg.offsetUs * rate / 1000000;
            item.samples = std::min(samples - item.offset, (seg.lengthUs * rate + 500000) / 1000000);
            item.mediaUs = seg.mediaUs;
            item.pauseEpoch = seg.epoch;
            if (item.samples <= 0)
                continue;
            if (packet)
                item.packet.reset(av_packet_clone(packet.get()));
            if (!m_audioQueue.tryPush(std::move(item)))
                ++m_audioOverruns;
        }
    }
    m_audioQueue.close();
}

// ---- encode -----------------------------------------------------------------

void CaptureSession::pushToMux(PacketPtr packet, int stream)
{
    // The encoders may wait here: the writer is behind, and a full video
    // queue in front of them turns that into counted drops at capture.
    while (!m_writeFailed) {
        PacketPtr copy(av_packet_clone(packet.get()));
        if (!copy)
            return;
        if (m_muxQueue.tryPush(MuxItem{std::move(copy), stream}))
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

void CaptureSession::producerDone()
{
    if (--m_muxProducers == 0)
        m_muxQueue.close();
}

void CaptureSession::videoEncodeLoop()
{
    FrameRepeater out(m_videoEncoder, m_plan.video.gopSize, [&](PacketPtr p) { pushToMux(std::move(p), 0); });
    // Fill short gaps with the previous picture so players see a steady
    // rate, unless a full queue says the encoder is already behind; SWF
    // counts frames, not time, so there every gap is filled.
    const std::int64_t maxFill = m_plan.constantFrameRate ? INT64_MAX : std::max(1, m_plan.video.gopSize) * 2;
    FramePtr last;
    std::int64_t lastSlot = -1;
    bool failed = false;
    const auto stop = [&](int ret) {
        fail(RecorderError::CaptureFailed, "the video encoder failed: " + avErrorText(ret));
        failed = true;
        endNow();
    };
    while (std::optional<VideoItem> item = m_videoQueue.pop()) {
        if (m_writeFailed || failed)
            continue;
        const std::int64_t gap = lastSlot >= 0 ? item->slot - lastSlot - 1 : 0;
        const bool fill = gap > 0 && last &&
                          (m_plan.constantFrameRate ||
                           (gap <= maxFill && m_videoQueue.size() < m_videoQueue.capacity()));
        for (std::int64_t s = lastSlot + 1; fill && s < item->slot && !m_writeFailed; ++s) {
            StageProfile::Scope scope(m_profile, StageProfile::Encode);
            if (out.repeat(last.get(), s) < 0)
                break;
            ++m_framesDuplicated;
            ++m_framesWritten;
            lastSlot = s;
        }
        int ret = 0;
        if (item->bands.empty() && last) {
            // Nothing changed: the last picture again, skipped where the
            // codec allows.
            StageProfile::Scope scope(m_profile, StageProfile::Encode);
            ret = out.repeat(last.get(), item->slot);
        } else {
            // Changed rows are converted into the last picture; a whole
            // picture is converted anew.
            if (last && (ret = out.beforeChange(last.get())) < 0) {
                stop(ret);
                continue;
            }
            FramePtr frame;
            {
                StageProfile::Scope scope(m_profile, StageProfile::Convert);
                frame = nextPicture(*item, last);
            }
            item->packet.reset();
            if (!frame) {
                ++m_framesDropped;
                continue;
            }
            StageProfile::Scope scope(m_profile, StageProfile::Encode);
            frame->pts = item->slot;
            ret = out.encodeNew(frame.get());
            last = std::move(frame);
        }
        if (ret < 0) {
            stop(ret);
            continue;
        }
        ++m_framesWritten;
        lastSlot = item->slot;
    }
    // A stall just before the end leaves the last slots empty: they get the
    // last picture, like any other short gap.
    const std::int64_t end = m_endStamp;
    if (last && end && !failed && !m_writeFailed) {
        const std::int64_t endSlot = FrameGrid(m_plan.fpsNum, m_plan.fpsDen).slotOf(m_clock.mediaNow(end));
        for (std::int64_t s = lastSlot + 1; s < endSlot && s - lastSlot <= maxFill && !m_writeFailed; ++s) {
            if (out.repeat(last.get(), s) < 0)
                break;
            ++m_framesDuplicated;
            ++m_framesWritten;
        }
    }
    last.reset();
    if (!m_writeFailed)
        out.finish();
    producerDone();
}

FramePtr CaptureSession::nextPicture(const VideoItem& item, FramePtr& last)
{
    const std::int64_t stride = std::int64_t(m_screenWidth) * 4;
    if (item.bands.empty() || !item.packet)
        return last ? FramePtr(av_frame_clone(last.get())) : nullptr;
    if (item.bands.size() == 1 && item.bands[0].height == m_screenHeight)
        return m_videoEncoder.convert(item.packet->data, int(stride));
    // The encoder may still hold the last frame's buffers: write into a
    // copy then.
    if (!last || av_frame_make_writable(last.get()) < 0)
        return nullptr;
    const std::uint8_t* rows = item.packet->data;
    for (const RowBand& band : item.bands) {
        if (!m_videoEncoder.convertRows(last.get(), rows, int(stride), band))
            return nullptr;
        rows += stride * band.height;
    }
    return FramePtr(av_frame_clone(last.get()));
}

void CaptureSession::audioEncodeLoop()
{
    const auto sink = [&](PacketPtr p) {
        pushToMux(std::move(p), 1);
    };
    AudioTimeline timeline(m_audioEncoder.inputRate(), kAudioToleranceUs);
    const int channels = m_audioEncoder.inputChannels();
    int epoch = 0;
    bool failed = false;
    while (std::optional<AudioItem> item = m_audioQueue.pop()) {
        if (m_writeFailed || failed)
            continue;
        if (item->pauseEpoch != epoch) {
            timeline.resync();
            epoch = item->pauseEpoch;
        }
        const AudioTimeline::Placement p = timeline.place(item->mediaUs, item->samples);
        int ret = 0;
        if (p.silence > 0)
            ret = m_audioEncoder.write(nullptr, p.silence, sink);
        const std::int64_t keep = item->samples - p.skip;
        if (ret >= 0 && keep > 0) {
            const auto* samples = item->packet ? reinterpret_cast<const std::int16_t*>(item->packet->data) +
                                                     (item->offset + p.skip) * channels
                                               : nullptr;
            ret = m_audioEncoder.write(samples, keep, sink);
        }
        if (ret < 0) {
            fail(RecorderError::CaptureFailed, "the audio encoder failed: " + avErrorText(ret));
            failed = true;
        }
        m_audioSamples = std::uint64_t(m_audioEncoder.samplesEncoded());
    }
    if (!m_writeFailed && !failed)
        m_audioEncoder.finish(sink);
    m_audioSamples = std::uint64_t(m_audioEncoder.samplesEncoded());
    producerDone();
}

// ---- mux ----------------------------------------------------------------------

void CaptureSession::muxLoop()
{
    const AVRational timeBases[2] = {m_videoEncoder.context()->time_base,
                                     m_haveAudio ? m_audioEncoder.context()->time_base : AVRational{1, 1}};
    while (std::optional<MuxItem> item = m_muxQueue.pop()) {
        if (m_writeFailed)
            continue; // drain so the encoders can finish
        int ret = 0;
        {
            StageProfile::Scope scope(m_profile, StageProfile::Mux);
            ret = m_mux.write(item->packet.get(), item->stream, timeBases[item->stream]);
        }
        if (ret < 0) {
            // Stop at once: a full disk does not get better. What was
            // written stays a valid file.
            m_writeFailed = true;
            endNow();
            fail(RecorderError::WriteFailed, "writing " + m_plan.file + " failed: " + avErrorText(ret));
        }
    }
    std::int64_t none = 0;
    m_endStamp.compare_exchange_strong(none, av_gettime());
    const int ret = m_mux.close();
    RecordingJournal().remove(m_plan.file);
    if (ret < 0 && !m_writeFailed)
        fail(RecorderError::WriteFailed, "closing " + m_plan.file + " failed: " + avErrorText(ret));
    if (m_profile.enabled())
        std::fprintf(stderr, "mirabend: capture %s%s%s: %s\n", m_screen->name(),
                     m_captureNote.empty() ? "" : " because ", m_captureNote.c_str(),
                     m_profile.report(m_framesWritten).c_str());
    m_finished = true;
}

} // namespace mirabend
