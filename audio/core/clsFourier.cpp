#include "audio/core/clsFourier.h"

#include "audio/core/AudioError.h"

#include <chrono>
#include <cmath>

namespace mirabend {

namespace {

[[noreturn]] void throwIndex()
{
    throw AudioError(audio_error::kIndexOutOfRange, "Index out of range or number of samples unknown");
}

} // namespace

clsFourier::clsFourier()
    : m_pi(4.0 * std::atan(1.0))
    , m_twoPi(2.0 * m_pi)
{
}

void clsFourier::NumberOfSamples(std::int32_t n)
{
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
    m_samplesUnknown = false;
    m_needTransform = true;
}

// Shifts the lowest m_bits bits out to the right and into the result.
std::uint32_t clsFourier::bitReverse(std::uint32_t value) const
{
    std::uint32_t result = 0;
    for (std::int32_t b = 0; b < m_bits; ++b) {
        result = (result << 1) | (value & 1u);
        value >>= 1;
    }
    return result;
}

std::int32_t clsFourier::checkedPlace(std::int32_t index) const
{
    if (m_samplesUnknown || index < 1 || index > m_n)
        throwIndex();
    return index - 1;
}

void clsFourier::RealIn(std::int32_t index, double value)
{
    const auto i = static_cast<std::size_t>(checkedPlace(index));
    const std::uint32_t place = m_reversed[i];
    m_re[place] = m_withWindow ? value * m_window[i] : value / 2.0;
    m_im[place] = 0.0;
    m_needTransform = true;
}

void clsFourier::ImagIn(std::int32_t index, double value)
{
    const auto i = static_cast<std::size_t>(checkedPlace(index));
    m_im[m_reversed[i]] = value;
    m_needTransform = true;
}

std::complex<double> clsFourier::ComplexOut(std::int32_t index)
{
    const auto i = static_cast<std::size_t>(checkedPlace(index));
    if (m_needTransform)
        transform();
    return {m_re[i], m_im[i]};
}

double clsFourier::MagnitudeOut(std::int32_t index)
{
    const std::complex<double> c = ComplexOut(index);
    return std::sqrt(c.real() * c.real() + c.imag() * c.imag());
}

// Iterative radix-2 decimation in time over the bit-reversed inputs. The
// twiddle factor of each stage is turned step by step with the
// trigonometric recurrence instead of calling sin and cos per butterfly.
void clsFourier::transform()
{
    const auto start = std::chrono::steady_clock::now();
    const std::size_t n = static_cast<std::size_t>(m_n);
    double* re = m_re.data();
    double* im = m_im.data();
    for (std::size_t h = 1; h < n; h <<= 1) {
        const double theta = m_pi / (2.0 * static_cast<double>(h));
        const double s = std::sin(theta);
        const double alpha = 2.0 * s * s;
        const double beta = std::sin(2.0 * theta);
        double wr = 1.0;
        double wi = 0.0;
        const std::size_t span = h << 1;
        for (std::size_t j = 0; j < h; ++j) {
            for (std::size_t k = j; k < n; k += span) {
                const std::size_t m = k + h;
                const double tr = wr * re[m] - wi * im[m];
                const double ti = wr * im[m] + wi * re[m];
                re[m] = re[k] - tr;
                im[m] = im[k] - ti;
                re[k] += tr;
                im[k] += ti;
            }
            // w *= exp(-i pi / h)
            const double nr = wr - (alpha * wr - beta * wi);
            wi = wi - (alpha * wi + beta * wr);
            wr = nr;
        }
    }
    m_needTransform = false;
    m_seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace mirabend
