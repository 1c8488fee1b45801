#include "audio/core/clsFourier.h"

#include "audio/core/AudioError.h"

#include <chrono>
#include <cmath>

namespace mirabend {

void clsFourier::throwIndexError() {
    throw AudioError(audio_error::kIndexOutOfRange, "Index out of range or number of samples unknown");
}

clsFourier::clsFourier()
    : m_pi(4.0 * std::atan(1.0))
    , m_twoPi(2.0 * m_pi) {}

void clsFourier::NumberOfSamples(std::int32_t n) {
    if (n < 2 || (n & (n - 1)) != 0)
        throw AudioError(audio_error::kInvalidSamples,
                         "Number of samples must be a positive value of the form 2 ^ n");
    m_n = n;
    m_bits = 0;
    while ((1 << m_bits) < n)
        ++m_bits;
    m_re.assign(static_cast<std::size_t>(n), 0.0);
    m_im.assign(static_cast<std::size_t>(n), 0.0);
    m_reversed.resize(static_cast<std::size_t>(n));
    m_window.resize(static_cast<std::size_t>(n));
    for (std::int32_t i = 0; i < n; ++i) {
        m_reversed[static_cast<std::size_t>(i)] = bitReverse(static_cast<std::uint32_t>(i));
        const double t = static_cast<double>(i) / (n - 1);
        m_window[static_cast<std::size_t>(i)] =
            0.42 - 0.5 * std::cos(m_twoPi * t) + 0.08 * std::cos(2.0 * m_twoPi * t);
    }
    // Stage h turns its twiddle factor by pi / h per step, starting at 1:
    // w *= exp(-i pi / h) with alpha = 2 sin^2(theta), beta = sin(2 theta),
    // theta = pi / (2 h).
    m_twiddleRe.assign(static_cast<std::size_t>(n), 0.0);
    m_twiddleIm.assign(static_cast<std::size_t>(n), 0.0);
    for (std::int32_t h = 1; h < n; h <<= 1) {
        const double theta = m_pi / (2.0 * h);
        const double s = std::sin(theta);
        const double alpha = 2.0 * s * s;
        const double beta = std::sin(2.0 * theta);
        double wr = 1.0;
        double wi = 0.0;
        for (std::int32_t j = 0; j < h; ++j) {
            m_twiddleRe[static_cast<std::size_t>(h - 1 + j)] = wr;
            m_twiddleIm[static_cast<std::size_t>(h - 1 + j)] = wi;
            const double nr = wr - (alpha * wr - beta * wi);
            wi = wi - (alpha * wi + beta * wr);
            wr = nr;
        }
    }
    m_samplesUnknown = false;
    m_needTransform = true;
}

// Shifts the lowest m_bits bits out to the right and into the result.
std::uint32_t clsFourier::bitReverse(std::uint32_t value) const {
    std::uint32_t result = 0;
    for (std::int32_t b = 0; b < m_bits; ++b) {
        result = (result << 1) | (value & 1u);
        value >>= 1;
    }
    return result;
}

void clsFourier::ImagIn(std::int32_t index, double value) {
    const auto i = static_cast<std::size_t>(checkedPlace(index));
    m_im[m_reversed[i]] = value;
    m_needTransform = true;
}

std::complex<double> clsFourier::ComplexOut(std::int32_t index) {
    const auto i = static_cast<std::size_t>(checkedPlace(index));
    if (m_needTransform)
        transform();
    return {m_re[i], m_im[i]};
}

double clsFourier::MagnitudeOut(std::int32_t index) {
    const std::complex<double> c = ComplexOut(index);
    return std::sqrt(c.real() * c.real() + c.imag() * c.imag());
}

// Iterative radix-2 decimation in time over the bit-reversed inputs, with
// the twiddle factors the recurrence made when the size was set. Two
// neighbouring stages are done in one pass over the data (the same
// butterflies in the same order per element, so the results do not change),
// which halves the memory traffic. Stages 1 and 2 need no multiplications:
// their factors are 1 and -i.
void clsFourier::transform() {
    const auto start = std::chrono::steady_clock::now();
    const std::size_t n = static_cast<std::size_t>(m_n);
    double* __restrict re = m_re.data();
    double* __restrict im = m_im.data();
    std::size_t h = 1;
    if (n >= 4) {
        for (std::size_t k = 0; k < n; k += 4) {
            // Stage h = 1: (0,1) and (2,3) with w = 1.
            const double r0 = re[k] + re[k + 1], i0 = im[k] + im[k + 1];
            const double r1 = re[k] - re[k + 1], i1 = im[k] - im[k + 1];
            const double r2 = re[k + 2] + re[k + 3], i2 = im[k + 2] + im[k + 3];
            const double r3 = re[k + 2] - re[k + 3], i3 = im[k + 2] - im[k + 3];
            // Stage h = 2: (0,2) with w = 1, (1,3) with w = -i.
            re[k] = r0 + r2;
            im[k] = i0 + i2;
            re[k + 2] = r0 - r2;
            im[k + 2] = i0 - i2;
            re[k + 1] = r1 + i3;
            im[k + 1] = i1 - r3;
            re[k + 3] = r1 - i3;
            im[k + 3] = i1 + r3;
        }
        h = 4;
    } else {
        const double br = re[1], bi = im[1];
        re[1] = re[0] - br;
        im[1] = im[0] - bi;
        re[0] += br;
        im[0] += bi;
        h = 2;
    }
    for (; h < n; h <<= 2) {
        const double* __restrict w1r = m_twiddleRe.data() + (h - 1);
        const double* __restrict w1i = m_twiddleIm.data() + (h - 1);
        if (2 * h >= n) {
            // The last stage on its own.
            double* __restrict ar = re;
            double* __restrict ai = im;
            double* __restrict br = re + h;
            double* __restrict bi = im + h;
#pragma GCC ivdep
            for (std::size_t j = 0; j < h; ++j) {
                const double tr = w1r[j] * br[j] - w1i[j] * bi[j];
                const double ti = w1r[j] * bi[j] + w1i[j] * br[j];
                br[j] = ar[j] - tr;
                bi[j] = ai[j] - ti;
                ar[j] += tr;
                ai[j] += ti;
            }
            break;
        }
        // Stages h and 2h together over blocks of 4h.
        const double* __restrict w2r = m_twiddleRe.data() + (2 * h - 1);
        const double* __restrict w2i = m_twiddleIm.data() + (2 * h - 1);
        for (std::size_t k = 0; k < n; k += 4 * h) {
            double* __restrict r0 = re + k;
            double* __restrict i0 = im + k;
            double* __restrict r1 = re + k + h;
            double* __restrict i1 = im + k + h;
            double* __restrict r2 = re + k + 2 * h;
            double* __restrict i2 = im + k + 2 * h;
            double* __restrict r3 = re + k + 3 * h;
            double* __restrict i3 = im + k + 3 * h;
#pragma GCC ivdep
            for (std::size_t j = 0; j < h; ++j) {
                // Stage h: (0,1) and (2,3), both with w1[j].
                double tr = w1r[j] * r1[j] - w1i[j] * i1[j];
                double ti = w1r[j] * i1[j] + w1i[j] * r1[j];
                const double b1r = r0[j] - tr, b1i = i0[j] - ti;
                const double b0r = r0[j] + tr, b0i = i0[j] + ti;
                tr = w1r[j] * r3[j] - w1i[j] * i3[j];
                ti = w1r[j] * i3[j] + w1i[j] * r3[j];
                const double b3r = r2[j] - tr, b3i = i2[j] - ti;
                const double b2r = r2[j] + tr, b2i = i2[j] + ti;
                // Stage 2h: (0,2) with w2[j], (1,3) with w2[j + h].
                tr = w2r[j] * b2r - w2i[j] * b2i;
                ti = w2r[j] * b2i + w2i[j] * b2r;
                r2[j] = b0r - tr;
                i2[j] = b0i - ti;
                r0[j] = b0r + tr;
                i0[j] = b0i + ti;
                tr = w2r[j + h] * b3r - w2i[j + h] * b3i;
                ti = w2r[j + h] * b3i + w2i[j + h] * b3r;
                r3[j] = b1r - tr;
                i3[j] = b1i - ti;
                r1[j] = b1r + tr;
                i1[j] = b1i + ti;
            }
        }
    }
    m_needTransform = false;
    m_seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace mirabend
