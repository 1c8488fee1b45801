#include "recording/engine/VideoEncoder.h"

extern "C" {
#include <libavutil/hwcontext.h>
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cstring>

namespace mirabend {

CodecContextPtr VideoEncoder::makeContext(const AVCodec* codec, const RecordingPlan& plan,
                                          AVPixelFormat format, bool globalHeader) const
{
    CodecContextPtr c(avcodec_alloc_context3(codec));
    if (!c)
        return nullptr;
    c->width = plan.video.width;
    c->height = plan.video.height;
    c->pix_fmt = format;
    c->time_base = AVRational{plan.fpsDen, plan.fpsNum};
    c->framerate = AVRational{plan.fpsNum, plan.fpsDen};
    c->gop_size = plan.video.gopSize;
    c->max_b_frames = 0; // AVI and the live-safe files want dts == pts
    c->sample_aspect_ratio = AVRational{1, 1};
    if (plan.video.bitRate > 0) {
        c->bit_rate = plan.video.bitRate;
    }
    if (globalHeader)
        c->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    return c;
}

bool VideoEncoder::openHardware(const RecordingPlan& plan, const char* encoder, bool globalHeader)
{
    const AVCodec* codec = avcodec_find_encoder_by_name(encoder);
    if (!codec)
        return false;
    const bool vaapi = std::string(encoder) == "h264_vaapi";
    BufferRefPtr device;
    if (vaapi) {
        AVBufferRef* raw = nullptr;
        if (av_hwdevice_ctx_create(&raw, AV_HWDEVICE_TYPE_VAAPI, nullptr, nullptr, 0) < 0)
            return false;
        device.reset(raw);
    }
    CodecContextPtr c = makeContext(codec, plan, vaapi ? AV_PIX_FMT_VAAPI : AV_PIX_FMT_YUV420P, globalHeader);
    if (!c)
        return false;
    if (vaapi) {
        BufferRefPtr frames(av_hwframe_ctx_alloc(device.get()));
        if (!frames)
            return false;
        auto* fc = reinterpret_cast<AVHWFramesContext*>(frames->data);
        fc->format = AV_PIX_FMT_VAAPI;
        fc->sw_format = AV_PIX_FMT_NV12;
        fc->width = plan.video.width;
        fc->height = plan.video.height;
        fc->initial_pool_size = 8;
        if (av_hwframe_ctx_init(frames.get()) < 0)
            return false;
        c->hw_frames_ctx = av_buffer_ref(frames.get());
    } else {
        av_opt_set(c->priv_data, "preset", "p1", 0);
    }
    if (avcodec_open2(c.get(), codec, nullptr) < 0)
        return false;
    m_codec = std::move(c);
    m_hwDevice = std::move(device);
    m_swFormat = vaapi ? AV_PIX_FMT_NV12 : AV_PIX_FMT_YUV420P;
    m_hardware = true;
    m_name = encoder;
    return true;
}

bool VideoEncoder::openSoftware(const RecordingPlan& plan, bool globalHeader, std::string& error)
{
    const AVCodec* codec = avcodec_find_encoder_by_name(plan.video.encoder.c_str());
    if (!codec) {
        error = "this FFmpeg has no " + plan.video.encoder + " encoder";
        return false;
    }
    const AVPixelFormat format = av_get_pix_fmt(plan.video.pixelFormat.c_str());
    CodecContextPtr c = makeContext(codec, plan, format, globalHeader);
    if (!c) {
        error = "out of memory";
        return false;
    }
    Dictionary options;
    if (plan.video.encoder == "libx264") {
        options.set("preset", plan.video.preset.empty() ? "ultrafast" : plan.video.preset.c_str());
        // Screen content: a constant quality instead of a bitrate guess.
        if (plan.video.quality >= 0)
            options.set("crf", std::to_string(plan.video.quality).c_str());
        else if (plan.video.bitRate <= 0)
            options.set("crf", "23");
        // One thread keeps up with ultrafast up to this size and costs a
        // quarter less than frame threads; bigger screens need the threads.
        if (std::int64_t(plan.video.width) * plan.video.height <= 1920 * 1200)
            options.set("threads", "1");
    }
    if (plan.video.encoder == "msvideo1" && plan.video.keyframeInterval > 0)
        c->keyint_min = plan.video.keyframeInterval;
    if (plan.video.encoder == "mjpeg")
        c->color_range = AVCOL_RANGE_JPEG;
    const int ret = avcodec_open2(c.get(), codec, options.slot());
    if (ret < 0) {
        error = plan.video.encoder + " refused " + std::to_string(plan.video.width) + "x" +
                std::to_string(plan.video.height) + ": " + avErrorText(ret);
        return false;
    }
    m_codec = std::move(c);
    m_swFormat = format;
    m_name = plan.video.encoder;
    return true;
}

RecorderFailure VideoEncoder::open(const RecordingPlan& plan, int sourceWidth, int sourceHeight,
                                   bool globalHeader)
{
    m_sourceWidth = sourceWidth;
    m_sourceHeight = sourceHeight;
    if (plan.video.hardwareWanted && plan.video.encoder == "libx264") {
        if (!openHardware(plan, "h264_vaapi", globalHeader) &&
            !openHardware(plan, "h264_nvenc", globalHeader))
            m_hardwareNote = "no VA-API or NVENC H.264 encoder works here; encoding in software";
    }
    std::string error;
    if (!m_codec && !openSoftware(plan, globalHeader, error))
        return {RecorderError::EncoderUnavailable, error};
    m_scaler.reset(sws_getContext(sourceWidth, sourceHeight, AV_PIX_FMT_BGR0, plan.video.width,
                                  plan.video.height, m_swFormat, SWS_BILINEAR, nullptr, nullptr, nullptr));
    if (!m_scaler)
        return {RecorderError::EncoderUnavailable, "cannot convert the screen picture to " + m_name};
    return {};
}

FramePtr VideoEncoder::convert(const std::uint8_t* bgr0, int linesize)
{
    FramePtr frame = makeFrame();
    if (!frame)
        return nullptr;
    frame->format = m_swFormat;
    frame->width = m_codec->width;
    frame->height = m_codec->height;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return nullptr;
    const std::uint8_t* src[4] = {bgr0, nullptr, nullptr, nullptr};
    const int srcStride[4] = {linesize, 0, 0, 0};
    sws_scale(m_scaler.get(), src, srcStride, 0, m_sourceHeight, frame->data, frame->linesize);
    if (m_codec->pix_fmt == AV_PIX_FMT_VAAPI) {
        FramePtr hw = makeFrame();
        if (!hw || av_hwframe_get_buffer(m_codec->hw_frames_ctx, hw.get(), 0) < 0 ||
            av_hwframe_transfer_data(hw.get(), frame.get(), 0) < 0)
            return nullptr;
        return hw;
    }
    return frame;
}

bool VideoEncoder::convertsRows() const
{
    return !m_hardware && m_codec && m_codec->width == m_sourceWidth && m_codec->height == m_sourceHeight;
}

bool VideoEncoder::convertRows(AVFrame* frame, const std::uint8_t* bgr0, int linesize, const RowBand& band)
{
    constexpr std::size_t kKeptScalers = 3;
    auto cached = std::find_if(m_bandScalers.begin(), m_bandScalers.end(),
                               [&](const auto& entry) { return entry.first == band.height; });
    if (cached == m_bandScalers.end()) {
        SwsPtr scaler(sws_getContext(m_sourceWidth, band.height, AV_PIX_FMT_BGR0, m_sourceWidth, band.height,
                                     m_swFormat, SWS_BILINEAR, nullptr, nullptr, nullptr));
        if (!scaler)
            return false;
        if (m_bandScalers.size() >= kKeptScalers)
            m_bandScalers.pop_back();
        m_bandScalers.insert(m_bandScalers.begin(), {band.height, std::move(scaler)});
    } else {
        std::rotate(m_bandScalers.begin(), cached, cached + 1);
    }
    // As tall as the tallest band so far: small changes keep it small.
    if (!m_bandFrame || m_bandFrame->height < band.height) {
        m_bandFrame = makeFrame();
        if (!m_bandFrame)
            return false;
        m_bandFrame->format = m_swFormat;
        m_bandFrame->width = m_sourceWidth;
        m_bandFrame->height = band.height;
        if (av_frame_get_buffer(m_bandFrame.get(), 0) < 0) {
            m_bandFrame.reset();
            return false;
        }
    }
    const std::uint8_t* src[4] = {bgr0, nullptr, nullptr, nullptr};
    const int srcStride[4] = {linesize, 0, 0, 0};
    sws_scale(m_bandScalers.front().second.get(), src, srcStride, 0, band.height, m_bandFrame->data,
              m_bandFrame->linesize);
    const RowBand inner = innerRows(band, m_sourceHeight);
    const AVPixFmtDescriptor* desc = av_pix_fmt_desc_get(m_swFormat);
    const int planes = av_pix_fmt_count_planes(m_swFormat);
    for (int p = 0; p < planes; ++p) {
        const int shift = (p == 1 || p == 2) ? desc->log2_chroma_h : 0;
        const int bytes = av_image_get_linesize(m_swFormat, m_sourceWidth, p);
        const int first = inner.top >> shift;
        const int end = (inner.bottom() + (1 << shift) - 1) >> shift;
        const int bandFirst = band.top >> shift;
        for (int row = first; row < end; ++row)
            std::memcpy(frame->data[p] + std::ptrdiff_t(row) * frame->linesize[p],
                        m_bandFrame->data[p] + std::ptrdiff_t(row - bandFirst) * m_bandFrame->linesize[p],
                        std::size_t(bytes));
    }
    return true;
}

int VideoEncoder::encode(const AVFrame* frame, const std::function<void(PacketPtr)>& sink)
{
    return encodeFrame(m_codec.get(), frame, sink);
}

} // namespace mirabend
