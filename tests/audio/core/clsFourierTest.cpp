#include "audio/core/clsFourier.h"

#include "audio/core/AudioError.h"
#include "audio/core/clsSmooth.h"

#include <cmath>
#include <complex>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace mirabend::test {
namespace {

std::vector<std::complex<double>> naiveDft(const std::vector<std::complex<double>>& x) {
    const std::size_t n = x.size();
    std::vector<std::complex<double>> out(n);
    for (std::size_t k = 0; k < n; ++k) {
        std::complex<double> sum;
        for (std::size_t t = 0; t < n; ++t)
            sum +=
                x[t] * std::polar(1.0, -2 * M_PI * static_cast<double>(k * t % n) / static_cast<double>(n));
        out[k] = sum;
    }
    return out;
}

TEST(clsFourier, BadSizesAndIndicesRaiseTheirErrors) {
    clsFourier f;
    const struct {
        const char* what;
        std::function<void()> action;
        int number; // 0: no error
    } rows[] = {
        {"index before a size", [&] { f.RealIn(1, 1.0); }, 381},
        {"size 1", [&] { f.NumberOfSamples(1); }, 380},
        {"size 0", [&] { f.NumberOfSamples(0); }, 380},
        {"size 1000", [&] { f.NumberOfSamples(1000); }, 380},
        {"size -2", [&] { f.NumberOfSamples(-2); }, 380},
        {"size 8", [&] { f.NumberOfSamples(8); }, 0},
        {"index 0", [&] { f.RealOut(0); }, 381},
        {"index 9", [&] { f.RealOut(9); }, 381},
        {"imaginary index 9", [&] { f.ImagIn(9, 0.0); }, 381},
        {"magnitude index -1", [&] { f.MagnitudeOut(-1); }, 381},
        {"index 8", [&] { f.RealOut(8); }, 0},
    };
    for (const auto& row : rows) {
        std::string text;
        int number = 0;
        try {
            row.action();
        } catch (const AudioError& e) {
            number = e.number();
            text = e.what();
        }
        EXPECT_EQ(number, row.number) << row.what;
        const char* expected = number == 380 ? "Number of samples must be a positive value of the form 2 ^ n"
                               : number == 381 ? "Index out of range or number of samples unknown"
                                               : "";
        EXPECT_EQ(text, expected) << row.what;
    }
    EXPECT_EQ(f.NumberOfSamples(), 8);
}

TEST(clsFourier, MatchesANaiveDftWithAndWithoutWindow) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> dist(-32768.0, 32767.0);
    for (const int n : {2, 4, 8, 32, 64, 1024}) {
        for (const bool window : {false, true}) {
            clsFourier f;
            f.NumberOfSamples(n);
            f.WithTimeWindow(window);
            std::vector<std::complex<double>> x(static_cast<std::size_t>(n));
            for (int i = 0; i < n; ++i) {
                const double v = dist(rng);
                f.RealIn(i + 1, v);
                const double weight = window ? 0.42 - 0.5 * std::cos(2 * M_PI * i / (n - 1)) +
                                                   0.08 * std::cos(4 * M_PI * i / (n - 1))
                                             : 0.5;
                x[static_cast<std::size_t>(i)] = v * weight;
            }
            const std::vector<std::complex<double>> ref = naiveDft(x);
            for (int k = 0; k < n; ++k) {
                const std::complex<double> got = f.ComplexOut(k + 1);
                const double tolerance = 1e-9 * n * 32768.0;
                ASSERT_NEAR(got.real(), ref[static_cast<std::size_t>(k)].real(), tolerance)
                    << "n " << n << " window " << window << " bin " << k;
                ASSERT_NEAR(got.imag(), ref[static_cast<std::size_t>(k)].imag(), tolerance);
                ASSERT_NEAR(f.MagnitudeOut(k + 1), std::abs(ref[static_cast<std::size_t>(k)]), tolerance);
            }
        }
    }
}

TEST(clsFourier, ComplexInputAndARepeatedTransform) {
    clsFourier f;
    f.NumberOfSamples(32);
    std::vector<std::complex<double>> x(32);
    for (int i = 0; i < 32; ++i) {
        f.RealIn(i + 1, 2.0 * i);      // halved: i
        f.ImagIn(i + 1, -3.0 * i + 1); // taken as it stands
        x[static_cast<std::size_t>(i)] = {static_cast<double>(i), -3.0 * i + 1};
    }
    std::vector<std::complex<double>> ref = naiveDft(x);
    for (int k = 0; k < 32; ++k) {
        EXPECT_NEAR(f.RealOut(k + 1), ref[static_cast<std::size_t>(k)].real(), 1e-9);
        EXPECT_NEAR(f.ImagOut(k + 1), ref[static_cast<std::size_t>(k)].imag(), 1e-9);
    }

    // New inputs after a transform are transformed again.
    for (int i = 0; i < 32; ++i)
        f.RealIn(i + 1, 2.0);
    EXPECT_NEAR(f.RealOut(1), 32.0, 1e-9);
    EXPECT_NEAR(f.MagnitudeOut(2), 0.0, 1e-9);
}

TEST(clsSmooth, AveragesWhatItHoldsAndRemembersTheLargestFullAverage) {
    clsSmooth s;
    EXPECT_FLOAT_EQ(s.SmoothGetMax(), 0.0f); // no ring yet
    s.SmoothAdd(5.0f);                       // ignored without a ring
    s.SmoothNew(5);
    EXPECT_FLOAT_EQ(s.SmoothGetMax(), 0.0f);
    // Each value added, then the average held and the largest full one; the
    // sixth value replaces the first.
    const float steps[][3] = {{1, 1, 0},  {2, 1.5f, 0}, {6, 3, 0},    {1, 2.5f, 0}, {5, 3, 3},
                              {11, 5, 5}, {0, 4.6f, 5}, {0, 3.4f, 5}, {0, 3.2f, 5}, {0, 2.2f, 5}};
    for (const auto& [value, average, largest] : steps) {
        s.SmoothAdd(value);
        EXPECT_FLOAT_EQ(s.SmoothGetMax(), average) << "after " << value;
        EXPECT_FLOAT_EQ(s.LargestAverage(), largest) << "after " << value;
    }
    s.SmoothNew(2);
    EXPECT_FLOAT_EQ(s.LargestAverage(), 0.0f);
}

} // namespace
} // namespace mirabend::test
