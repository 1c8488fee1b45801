#include "shell/camera/FrameImage.h"

#include <algorithm>
#include <vector>

namespace mirabend {

namespace {

// BT.601 studio range, as cameras deliver it, by table: one sum and a
// clamp per channel.
struct YuvTables {
    int luma[256], redV[256], greenU[256], greenV[256], blueU[256];
    uchar clamp[1024]; // (sum >> 8) + kClampOffset
    static constexpr int kClampOffset = 384;

    YuvTables() {
        for (int i = 0; i < 256; ++i) {
            luma[i] = 298 * (i - 16) + 128;
            redV[i] = 409 * (i - 128);
            greenU[i] = -100 * (i - 128);
            greenV[i] = -208 * (i - 128);
            blueU[i] = 516 * (i - 128);
        }
        for (int i = 0; i < 1024; ++i)
            clamp[i] = static_cast<uchar>(std::clamp(i - kClampOffset, 0, 255));
    }
    QRgb rgb(int y, int u, int v) const {
        const int c = luma[y];
        const auto channel = [this](int sum) {
            return uint(clamp[(sum >> 8) + kClampOffset]);
        };
        return 0xff000000u | channel(c + redV[v]) << 16 | channel(c + greenU[u] + greenV[v]) << 8 |
               channel(c + blueU[u]);
    }
};

const YuvTables& yuvTables() {
    static const YuvTables tables;
    return tables;
}

enum class Layout { Packed422, Planar420, SemiPlanar420, Other };

struct Sampling {
    Layout layout = Layout::Other;
    int yOffset = 0, uOffset = 0, vOffset = 0; // bytes in a packed pair, or plane numbers
};

Sampling samplingOf(QVideoFrameFormat::PixelFormat format) {
    using F = QVideoFrameFormat;
    switch (format) {
    case F::Format_YUYV:
        return {Layout::Packed422, 0, 1, 3};
    case F::Format_UYVY:
        return {Layout::Packed422, 1, 0, 2};
    case F::Format_YUV420P:
        return {Layout::Planar420, 0, 1, 2};
    case F::Format_YV12:
        return {Layout::Planar420, 0, 2, 1};
    case F::Format_NV12:
        return {Layout::SemiPlanar420, 0, 0, 1};
    case F::Format_NV21:
        return {Layout::SemiPlanar420, 0, 1, 0};
    default:
        return {};
    }
}

// Unmaps on every way out.
class MappedFrame {
public:
    explicit MappedFrame(const QVideoFrame& frame)
        : m_frame(frame)
        , m_mapped(m_frame.map(QVideoFrame::ReadOnly)) {}
    ~MappedFrame() {
        if (m_mapped)
            m_frame.unmap();
    }
    MappedFrame(const MappedFrame&) = delete;
    MappedFrame& operator=(const MappedFrame&) = delete;

    bool mapped() const { return m_mapped; }
    const uchar* row(int plane, int y) const { return m_frame.bits(plane) + y * m_frame.bytesPerLine(plane); }
    int bytesPerLine(int plane) const { return m_frame.bytesPerLine(plane); }

private:
    QVideoFrame m_frame;
    bool m_mapped;
};

// The source position sampled for each target position (pixel centres).
std::vector<int> samplePositions(int source, int target) {
    std::vector<int> positions(static_cast<size_t>(target));
    for (int i = 0; i < target; ++i)
        positions[static_cast<size_t>(i)] =
            std::min(source - 1, static_cast<int>((2LL * i + 1) * source / (2LL * target)));
    return positions;
}

void convertYuv(const MappedFrame& in, QSize source, QImage& out, const Sampling& s) {
    const QSize size = out.size();
    const YuvTables& t = yuvTables();
    const std::vector<int> xs = samplePositions(source.width(), size.width());
    const std::vector<int> ys = samplePositions(source.height(), size.height());
    // Packed: each target column's pair of pixels, and its luma byte in the pair.
    std::vector<int> pairs(xs.size()), lumas(xs.size());
    for (size_t x = 0; x < xs.size(); ++x) {
        pairs[x] = (xs[x] & ~1) * 2;
        lumas[x] = s.yOffset + (xs[x] & 1) * 2;
    }
    for (int y = 0; y < size.height(); ++y) {
        const int sy = ys[static_cast<size_t>(y)];
        auto* line = reinterpret_cast<QRgb*>(out.scanLine(y));
        switch (s.layout) {
        case Layout::Packed422: {
            const uchar* row = in.row(0, sy);
            for (int x = 0; x < size.width(); ++x) {
                const uchar* pair = row + pairs[static_cast<size_t>(x)];
                line[x] = t.rgb(pair[lumas[static_cast<size_t>(x)]], pair[s.uOffset], pair[s.vOffset]);
            }
            break;
        }
        case Layout::Planar420: {
            const uchar* luma = in.row(0, sy);
            const uchar* u = in.row(s.uOffset, sy / 2);
            const uchar* v = in.row(s.vOffset, sy / 2);
            for (int x = 0; x < size.width(); ++x) {
                const int sx = xs[static_cast<size_t>(x)];
                line[x] = t.rgb(luma[sx], u[sx / 2], v[sx / 2]);
            }
            break;
        }
        case Layout::SemiPlanar420: {
            const uchar* luma = in.row(0, sy);
            const uchar* chroma = in.row(1, sy / 2);
            for (int x = 0; x < size.width(); ++x) {
                const int sx = xs[static_cast<size_t>(x)];
                const uchar* pair = chroma + (sx & ~1);
                line[x] = t.rgb(luma[sx], pair[s.uOffset], pair[s.vOffset]);
            }
            break;
        }
        case Layout::Other:
            break;
        }
    }
}

} // namespace

QImage frameImage(const QVideoFrame& frame, QSize size, QImage reuse) {
    if (!frame.isValid() || size.isEmpty())
        return {};
    const QSize source = frame.size();
    const Sampling sampling = samplingOf(frame.pixelFormat());
    const QImage::Format rgb = QVideoFrameFormat::imageFormatFromPixelFormat(frame.pixelFormat());
    if (sampling.layout != Layout::Other || rgb != QImage::Format_Invalid) {
        const MappedFrame in(frame);
        if (!in.mapped() || source.isEmpty())
            return {};
        if (sampling.layout != Layout::Other) {
            QImage out = reuse.size() == size && reuse.format() == QImage::Format_RGB32
                             ? std::move(reuse)
                             : QImage(size, QImage::Format_RGB32);
            convertYuv(in, source, out, sampling);
            return out;
        }
        // RGB or grey: a view on the mapped bytes, scaled into a copy of our own.
        const QImage view(in.row(0, 0), source.width(), source.height(), in.bytesPerLine(0), rgb);
        return view.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation)
            .convertToFormat(QImage::Format_RGB32);
    }
    const QImage image = frame.toImage();
    return image.isNull() ? image : image.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
}

} // namespace mirabend
