#pragma once
// Radix-2 FFT for the spectrum display. Inputs and outputs use 1-based
// indices 1..N; output index k is frequency bin k - 1. Without the time
// window every real input is halved (so the levels of both modes stay
// comparable); with it the input is weighted by a Blackman window. The
// transform runs at the first output query after an input changed.
//
// Errors: AudioError 380 for a size that is not 2^n with n >= 1, 381 for an
// index outside 1..N or any access before NumberOfSamples was set.
//
// Thread contract: one thread uses an object at a time.

#include <complex>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace mirabend {

class clsFourier {
public:
    clsFourier();

    std::int32_t NumberOfSamples() const { return m_n; }
    void NumberOfSamples(std::int32_t n);

    bool WithTimeWindow() const { return m_withWindow; }
    void WithTimeWindow(bool value) { m_withWindow = value; }

    // Stores a real input (weighted or halved), clearing its imaginary part.
    // Inline: the spectrum display calls it 1024 times per block.
    void RealIn(std::int32_t index, double value) {
        const auto i = static_cast<std::size_t>(checkedPlace(index));
        const std::uint32_t place = m_reversed[i];
        m_re[place] = m_withWindow ? value * m_window[i] : value * 0.5;
        m_im[place] = 0.0;
        m_needTransform = true;
    }
    // Stores the imaginary part of the same input as it stands; after RealIn.
    void ImagIn(std::int32_t index, double value);

    std::complex<double> ComplexOut(std::int32_t index);
    double RealOut(std::int32_t index) { return ComplexOut(index).real(); }
    double ImagOut(std::int32_t index) { return ComplexOut(index).imag(); }
    // sqrt(re^2 + im^2) of ComplexOut(index).
    double MagnitudeOut(std::int32_t index);

    // Seconds the last transform took.
    double Timing() const { return m_seconds; }

private:
    std::uint32_t bitReverse(std::uint32_t value) const;
    std::int32_t checkedPlace(std::int32_t index) const {
        if (m_samplesUnknown || index < 1 || index > m_n)
            throwIndexError();
        return index - 1;
    }
    [[noreturn]] static void throwIndexError();
    void transform();

    std::int32_t m_n = 0;
    std::int32_t m_bits = 0;
    std::vector<double> m_re;
    std::vector<double> m_im;
    std::vector<std::uint32_t> m_reversed; // bit reversal of 0..N-1
    std::vector<double> m_window;          // Blackman weights of 1..N
    // Twiddle factors of every stage h (h entries from offset h - 1), made by
    // the trigonometric recurrence once per size.
    std::vector<double> m_twiddleRe;
    std::vector<double> m_twiddleIm;
    bool m_withWindow = false;
    bool m_samplesUnknown = true;
    bool m_needTransform = false;
    double m_pi;
    double m_twoPi;
    double m_seconds = 0;
};

} // namespace mirabend
