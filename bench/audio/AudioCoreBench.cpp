// Prints two ratios:
//  1. the whole per-buffer chain of the recorder (all four effects, the
//     analysis for the displays, PCM encoding to a file) on one 10,240-byte
//     block at 44.1 kHz stereo, against the 58 ms that block plays for;
//  2. clsFourier's 1024-point transform against FFTW's, run alternately on
//     the same input.
#include "audio/core/BlockPeaks.h"
#include "audio/core/EncoderWAV.h"
#include "audio/core/clsDSP.h"
#include "audio/core/clsFourier.h"
#include "audio/core/clsSmooth.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fftw3.h>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double seconds(Clock::time_point a, Clock::time_point b) {
    return std::chrono::duration<double>(b - a).count();
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

std::vector<std::int16_t> testBlock() {
    std::vector<std::int16_t> block(5120);
    for (std::size_t i = 0; i < block.size(); i += 2) {
        const double t = static_cast<double>(i / 2) / 44100.0;
        block[i] = static_cast<std::int16_t>(9000 * std::sin(2 * M_PI * 440 * t) +
                                             2000 * std::sin(2 * M_PI * 5000 * t));
        block[i + 1] = static_cast<std::int16_t>(9000 * std::sin(2 * M_PI * 660 * t));
    }
    return block;
}

// The recorder's work for one captured buffer.
struct Chain {
    mirabend::clsDSP dsp;
    mirabend::clsFourier fourier;
    mirabend::clsSmooth left, right;
    mirabend::EncoderWAV encoder;
    std::vector<std::int16_t> work;
    std::vector<double> magnitudes = std::vector<double>(513);
    double sink = 0;

    explicit Chain(const std::string& path) {
        dsp.samplerate(44100);
        dsp.Channels(2);
        dsp.EffectsUsed(mirabend::clsDSP::Echo | mirabend::clsDSP::PhaseShifter | mirabend::clsDSP::Amplify |
                        mirabend::clsDSP::Equalizer);
        dsp.AmplifyDB(-3.0f);
        for (int b = 0; b < dsp.EqualizerBands(); ++b)
            dsp.EqualizerBandGainDB(b, static_cast<float>(b % 3) * 2.0f - 2.0f);
        fourier.NumberOfSamples(1024);
        fourier.WithTimeWindow(true);
        left.SmoothNew(5);
        right.SmoothNew(5);
        if (encoder.Encoder_EncoderInit(44100, 2, path) != 0) {
            std::fprintf(stderr, "cannot open %s: %s\n", path.c_str(), encoder.lastErrorDetail().c_str());
            std::exit(1);
        }
    }

    void run(const std::vector<std::int16_t>& captured) {
        work = captured;
        dsp.ProcessSamples(work);
        for (int i = 0; i < 1024; ++i)
            fourier.RealIn(i + 1, work[static_cast<std::size_t>(i)]);
        for (int k = 0; k < 513; ++k)
            magnitudes[static_cast<std::size_t>(k)] = fourier.MagnitudeOut(k + 1);
        const mirabend::ChannelPeaks peaks = mirabend::blockPeaks(work.data(), work.size(), 2);
        left.SmoothAdd(static_cast<float>(peaks.left) / 32768.0f);
        right.SmoothAdd(static_cast<float>(peaks.right) / 32768.0f);
        sink += left.SmoothGetMax() + right.SmoothGetMax() + magnitudes[10];
        std::int32_t used = 0;
        if (encoder.Encoder_Encode(work.data(), static_cast<std::int32_t>(work.size() * 2), used) != 0) {
            std::fprintf(stderr, "encode failed: %s\n", encoder.lastErrorDetail().c_str());
            std::exit(1);
        }
    }
};

void benchChain() {
    char dir[] = "/tmp/mirabend-bench-XXXXXX";
    if (!mkdtemp(dir)) {
        std::perror("mkdtemp");
        std::exit(1);
    }
    const std::string path = std::string(dir) + "/chain.wav";
    const std::vector<std::int16_t> block = testBlock();
    const double blockSeconds = 10240.0 / (44100.0 * 4);
    std::vector<double> perBlock;
    {
        Chain chain(path);
        for (int warm = 0; warm < 20; ++warm)
            chain.run(block);
        for (int round = 0; round < 30; ++round) {
            const auto a = Clock::now();
            for (int i = 0; i < 20; ++i)
                chain.run(block);
            perBlock.push_back(seconds(a, Clock::now()) / 20);
        }
        chain.encoder.Encoder_EncoderClose();
        std::printf("chain checksum %.3f\n", chain.sink);
    }
    std::remove(path.c_str());
    rmdir(dir);
    const double t = median(perBlock);
    std::printf(
        "per-buffer chain: %.1f us per 10240-byte block, block plays %.1f ms: ratio %.2f %% (goal <= 1 %%)\n",
        t * 1e6, blockSeconds * 1e3, 100.0 * t / blockSeconds);
}

struct FftwFree {
    void operator()(void* p) const { fftw_free(p); }
};
struct PlanFree {
    void operator()(fftw_plan_s* p) const { fftw_destroy_plan(p); }
};

void benchTransform() {
    constexpr int n = 1024;
    std::vector<double> input(n);
    for (int i = 0; i < n; ++i)
        input[static_cast<std::size_t>(i)] = 10000 * std::sin(0.1 * i) + 3000 * std::cos(0.37 * i);

    std::unique_ptr<fftw_complex, FftwFree> in(
        static_cast<fftw_complex*>(fftw_malloc(sizeof(fftw_complex) * n)));
    std::unique_ptr<fftw_complex, FftwFree> out(
        static_cast<fftw_complex*>(fftw_malloc(sizeof(fftw_complex) * n)));
    std::unique_ptr<fftw_plan_s, PlanFree> plan(
        fftw_plan_dft_1d(n, in.get(), out.get(), FFTW_FORWARD, FFTW_MEASURE));

    mirabend::clsFourier ours;
    ours.NumberOfSamples(n);
    double sink = 0;
    constexpr int reps = 200;
    std::vector<double> oursTimes;
    std::vector<double> transformTimes; // the transform alone, as the class times it
    std::vector<double> fftwTimes;
    for (int round = 0; round < 40; ++round) {
        auto a = Clock::now();
        for (int r = 0; r < reps; ++r) {
            for (int i = 0; i < n; ++i)
                ours.RealIn(i + 1, input[static_cast<std::size_t>(i)]);
            sink += ours.RealOut(2);
            transformTimes.push_back(ours.Timing());
        }
        oursTimes.push_back(seconds(a, Clock::now()) / reps);

        a = Clock::now();
        for (int r = 0; r < reps; ++r) {
            for (int i = 0; i < n; ++i) {
                in.get()[i][0] = input[static_cast<std::size_t>(i)] * 0.5;
                in.get()[i][1] = 0;
            }
            fftw_execute(plan.get());
            sink += out.get()[1][0];
        }
        fftwTimes.push_back(seconds(a, Clock::now()) / reps);
    }
    const double o = median(oursTimes);
    const double f = median(fftwTimes);
    std::printf("1024-point transform: clsFourier %.2f us (butterflies alone %.2f us), FFTW %.2f us: "
                "ratio %.2f (goal <= 4) [checksum %.1f]\n",
                o * 1e6, median(transformTimes) * 1e6, f * 1e6, o / f, sink / 1e9);
}

} // namespace

int main() {
    benchChain();
    benchTransform();
    return 0;
}
