#include "audio/ui/clsDraw.h"

#include "audio/ui/PictureBox.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace mirabend {
namespace {

constexpr int kFftSize = 1024;
constexpr double kFall = 0.07;
constexpr double kCeiling = 0.2; // bin magnitudes above this count as full scale

int imin(int a, int b) { return a < b ? a : b; }
int imax(int a, int b) { return a > b ? a : b; }

} // namespace

void clsDraw::DrawRect(QPainter& dc, int left, int top, int right, int bottom, QColor colour)
{
    dc.fillRect(QRect(QPoint(left, top), QPoint(right - 1, bottom - 1)), colour);
}

void clsDraw::DrawAmplitudes(const std::vector<std::int16_t>& samples, PictureBox& picture)
{
    QImage& image = picture.image();
    const int w = picture.scaleWidth();
    const int h = picture.scaleHeight();
    const int c = h / 2;
    QPainter p(&image);
    DrawRect(p, 0, 0, w, h, Qt::black);
    p.setPen(QColor(40, 48, 60));
    p.drawLine(0, c, w, c);
    p.setPen(QColor(0xFF, 0xFF, 0xFF));

    QPainterPath path(QPointF(0, c));
    const double upper = static_cast<double>(samples.size()) - 1.0;
    const long k = std::max(1L, std::lround(upper / std::max(1, w)));
    std::size_t read = 0;
    int x = 1;
    for (; x <= w - 3; ++x) {
        double sum = 0;
        for (long i = 0; i < k; ++i, ++read)
            sum += read < samples.size() ? samples[read] : 0;
        const double value = std::clamp(sum / static_cast<double>(k) / 32767.0, -1.0, 1.0);
        // The y axis runs downward, so positive values lie below the centre.
        path.lineTo(x, std::lround((c - 2) * value + c));
    }
    if (w - 3 < 1)
        x = 1;
    path.lineTo(x, c);
    path.lineTo(x + 1, c);
    p.drawPath(path);
    p.end();
    picture.update();
}

QColor clsDraw::barColour(double level)
{
    return QColor(255, static_cast<int>(std::lround(std::clamp(level, 0.0, 1.0) * 255)), 50);
}

void clsDraw::updateLevels(const std::vector<std::int16_t>& samples)
{
    for (double& level : m_levels)
        level = std::max(0.0, level - kFall);
    if (!m_fourier) {
        m_fourier = std::make_unique<clsFourier>();
        m_fourier->NumberOfSamples(kFftSize);
        m_fourier->WithTimeWindow(true);
    }
    for (int i = 1; i <= kFftSize; ++i)
        m_fourier->RealIn(i, samples[static_cast<std::size_t>(i - 1)]);
    std::array<double, kFftSize / 2 + 1> bins{};
    for (int bin = 0; bin <= kFftSize / 2; ++bin) {
        const double m = m_fourier->MagnitudeOut(bin + 1) / (kFftSize / 4.0) / 32767.0;
        bins[static_cast<std::size_t>(bin)] = std::min(m, kCeiling) / kCeiling;
    }
    const double pi = 4.0 * std::atan(1.0);
    for (int b = 0; b < kBars; ++b) {
        double sum = 0;
        for (int bin = 4 * b + 1; bin <= 4 * b + 4; ++bin)
            sum += bins[static_cast<std::size_t>(bin)];
        // Higher bars carry less energy in speech and music; weight them up.
        const double weight = (1.0 - std::cos(2.0 * pi * (b + 3) / 25.0)) / 2.0;
        const double level = (weight + 1.0) * sum / 3.0;
        double& bar = m_levels[static_cast<std::size_t>(b)];
        if (level > bar)
            bar = std::min(level, 1.0);
    }
}

void clsDraw::DrawFrequencies(const std::vector<std::int16_t>& samples, PictureBox& picture)
{
    if (samples.size() < static_cast<std::size_t>(kFftSize))
        return;
    updateLevels(samples);
    picture.Cls();
    const int h = picture.scaleHeight();
    QPainter p(&picture.image());
    for (int b = 0; b < kBars; ++b) {
        const double level = m_levels[static_cast<std::size_t>(b)];
        const int top = imax(2, imin(h, static_cast<int>(std::lround(h - h * level))) - 2);
        DrawRect(p, 4 * b + 4, top, 4 * b + 7, h - 2, barColour(level));
    }
    p.end();
    picture.update();
}

} // namespace mirabend
