#include "audio/ui/RecordAudioCommand.h"

#include "audio/capture/WaveInRecorder.h"
#include "audio/core/AudioError.h"
#include "audio/core/BlockPeaks.h"
#include "audio/core/EncoderWAV.h"
#include "audio/core/GaplessFeed.h"
#include "audio/core/FormatCatalog.h"
#include "audio/core/clsDSP.h"
#include "audio/ui/AudioText.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mirabend {
namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void onSignal(int)
{
    g_interrupted = 1;
}

bool parseNumber(const char* text, double& value)
{
    if (!text || !*text)
        return false;
    char* end = nullptr;
    value = std::strtod(text, &end);
    return end && *end == '\0' && std::isfinite(value);
}

struct FormatName {
    const char* option;
    const char* tag;
};
const FormatName kFormats[] = {{"pcm", "PCM"},           {"mulaw", "CCITT u-Law"},     {"alaw", "CCITT A-Law"},
                               {"ima-adpcm", "IMA ADPCM"}, {"ms-adpcm", "Microsoft ADPCM"}, {"gsm", "GSM 6.10"},
                               {"mp3", "MPEG Layer-3"}};

std::optional<std::string> parseEffects(const std::string& list, int& bits)
{
    bits = 0;
    std::size_t start = 0;
    while (start <= list.size()) {
        const std::size_t end = std::min(list.find(',', start), list.size());
        const std::string name = list.substr(start, end - start);
        if (name == "amplify")
            bits |= clsDSP::Amplify;
        else if (name == "echo")
            bits |= clsDSP::Echo;
        else if (name == "phaser")
            bits |= clsDSP::PhaseShifter;
        else if (name == "eq")
            bits |= clsDSP::Equalizer;
        else if (!name.empty() && name != "none")
            return "unknown effect \"" + name + "\" (amplify, echo, phaser, eq)";
        start = end + 1;
    }
    return std::nullopt;
}

void listDevices()
{
    WaveInRecorder rec;
    const int count = rec.DeviceCount();
    if (count == 0) {
        std::printf("No audio input devices.\n");
        return;
    }
    for (int i = 0; i < count; ++i) {
        const InputDevice& device = rec.devices()[static_cast<std::size_t>(i)];
        std::printf("%s  [%s]\n", device.name.c_str(), device.pcm.c_str());
        if (!rec.SelectDevice(i)) {
            std::printf("    (no mixer: %s)\n", rec.lastFailure().detail.c_str());
            continue;
        }
        const int selected = rec.SelectedMixerLine();
        for (int l = 0; l < rec.MixerLineCount(); ++l) {
            const std::string name = rec.MixerLineName(l);
            std::printf("    %c %s\n", l == selected ? '*' : '-', name.substr(0, name.find('\0')).c_str());
        }
    }
}

std::string meter(double level, int width)
{
    const int lit = static_cast<int>(std::lround(std::clamp(level, 0.0, 1.0) * width));
    return std::string(static_cast<std::size_t>(lit), '#') + std::string(static_cast<std::size_t>(width - lit), '-');
}

long long fileSize(const std::string& path)
{
    struct stat st {};
    return stat(path.c_str(), &st) == 0 ? static_cast<long long>(st.st_size) : 0;
}

int fail(const std::string& text)
{
    std::fprintf(stderr, "mirabend: %s\n", text.c_str());
    return 1;
}

// Chooses the device, the line and the volume as asked.
int prepareDevice(WaveInRecorder& rec, const RecordAudioOptions& o)
{
    rec.DeviceCount();
    if (o.device.empty())
        return 0;
    const int index = findInputDevice(rec.devices(), o.device);
    if (index < 0)
        return fail("no audio input device called \"" + o.device + "\" (see --list-devices)");
    if (!rec.SelectDevice(index))
        return fail("Couldn't select device! " + rec.lastFailure().detail);
    if (!o.line.empty()) {
        int line = -1;
        for (int l = 0; l < rec.MixerLineCount(); ++l) {
            const std::string name = rec.MixerLineName(l);
            if (strcasecmp(name.c_str(), o.line.c_str()) == 0 || std::to_string(l) == o.line)
                line = l;
        }
        if (line < 0 || !rec.SelectMixerLine(line))
            return fail("Couldn't select mixer line! No line \"" + o.line + "\" on \"" + o.device + "\"");
    }
    if (o.volume >= 0) {
        const VolumeRange range = rec.MixerLineVolumeRange();
        if (range.max <= range.min)
            return fail("the recording source has no volume control");
        if (o.volume < range.min || o.volume > range.max)
            return fail("--volume must lie between " + std::to_string(range.min) + " and " +
                        std::to_string(range.max) + " on this device");
        rec.MixerLineVolume(static_cast<int>(o.volume));
    }
    return 0;
}

int chooseFormat(EncoderWAV& encoder, const RecordAudioOptions& o)
{
    if (o.format == "pcm") {
        encoder.SetPCMFormat(o.rate, o.channels);
        return 0;
    }
    const FormatName* wanted = nullptr;
    for (const FormatName& f : kFormats) {
        if (o.format == f.option)
            wanted = &f;
    }
    for (const FormatChoice& choice : availableFormats(o.rate, o.channels)) {
        if (wanted && choice.tagName == wanted->tag) {
            encoder.SetFormat(choice.image.data(), choice.image.size(), choice.tagName, choice.description);
            return 0;
        }
    }
    return fail("the format " + o.format + " cannot be made from " + std::to_string(o.rate) + " Hz here");
}

} // namespace

std::optional<std::string> parseRecordAudioOptions(int argc, char** argv, RecordAudioOptions& o)
{
    bool sawRecord = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const char* next = i + 1 < argc ? argv[i + 1] : nullptr;
        auto value = [&](const char* what) -> std::optional<std::string> {
            if (!next)
                return std::string(arg) + " needs " + what;
            ++i;
            return std::nullopt;
        };
        double number = 0;
        if (arg == "--record-audio") {
            sawRecord = true;
            if (next && std::strncmp(next, "--", 2) != 0) {
                o.file = next;
                ++i;
            }
        } else if (arg == "--list-devices") {
            o.listDevices = true;
        } else if (arg == "--seconds") {
            if (auto e = value("a number of seconds"))
                return e;
            if (!parseNumber(next, number) || number <= 0)
                return "--seconds needs a positive number, not \"" + std::string(next) + "\"";
            o.seconds = number;
        } else if (arg == "--device") {
            if (auto e = value("a device name"))
                return e;
            o.device = next;
        } else if (arg == "--line") {
            if (auto e = value("a recording source name"))
                return e;
            o.line = next;
        } else if (arg == "--volume") {
            if (auto e = value("a volume"))
                return e;
            if (!parseNumber(next, number) || number < 0 || number != std::floor(number))
                return "--volume needs a whole number, not \"" + std::string(next) + "\"";
            o.volume = static_cast<long>(number);
        } else if (arg == "--rate") {
            if (auto e = value("a sample rate"))
                return e;
            // Sound cards and servers take 8000 to 192000 Hz; anything else is a typing slip.
            if (!parseNumber(next, number) || number < 8000 || number > 192000 || number != std::floor(number))
                return "--rate needs a sample rate from 8000 to 192000 Hz, not \"" + std::string(next) + "\"";
            o.rate = static_cast<int>(number);
        } else if (arg == "--channels") {
            if (auto e = value("1 or 2"))
                return e;
            if (std::strcmp(next, "1") != 0 && std::strcmp(next, "2") != 0)
                return "--channels needs 1 or 2, not \"" + std::string(next) + "\"";
            o.channels = next[0] - '0';
        } else if (arg == "--effects") {
            if (auto e = value("a list such as amplify,echo"))
                return e;
            if (auto e = parseEffects(next, o.effects))
                return e;
        } else if (arg == "--format") {
            if (auto e = value("a format"))
                return e;
            o.format = next;
            const bool known = std::any_of(std::begin(kFormats), std::end(kFormats),
                                           [&](const FormatName& f) { return o.format == f.option; });
            if (!known)
                return "--format needs pcm, mulaw, alaw, ima-adpcm, ms-adpcm, gsm or mp3, not \"" +
                       std::string(next) + "\"";
        } else {
            return "unknown option \"" + arg + "\"";
        }
    }
    if (!sawRecord)
        return std::string("--record-audio missing");
    if (o.file.empty() && !o.listDevices)
        return std::string("--record-audio needs a file name");
    return std::nullopt;
}

int recordAudioCommand(int argc, char** argv)
{
    RecordAudioOptions o;
    if (const auto error = parseRecordAudioOptions(argc, argv, o)) {
        std::fprintf(stderr, "mirabend: %s\n", error->c_str());
        return 2;
    }
    if (o.listDevices) {
        listDevices();
        return 0;
    }

    clsDSP dsp;
    try {
        dsp.samplerate(o.rate);
        dsp.Channels(static_cast<std::int16_t>(o.channels));
        dsp.EffectsUsed(o.effects);
    } catch (const AudioError& error) {
        std::fprintf(stderr, "mirabend: %s\n", error.what());
        return 2;
    }
    WaveInRecorder rec;
    if (const int code = prepareDevice(rec, o))
        return code;
    EncoderWAV encoder;
    if (const int code = chooseFormat(encoder, o))
        return code;
    if (encoder.Encoder_EncoderInit(o.rate, static_cast<std::int16_t>(o.channels), o.file) != encoder_result::kOk)
        return fail("Could not init the encoder! " + encoder.lastErrorDetail());

    std::mutex mutex;
    std::condition_variable wake;
    bool ready = false;
    rec.setDataReady([&] {
        std::lock_guard<std::mutex> lock(mutex);
        ready = true;
        wake.notify_one();
    });

    const std::int64_t byteRate = static_cast<std::int64_t>(o.rate) * o.channels * 2;
    const std::int64_t frameBytes = o.channels * 2;
    const std::int64_t limit = o.seconds > 0 ? static_cast<std::int64_t>(o.seconds * byteRate) / frameBytes * frameBytes : -1;
    std::int64_t written = 0;
    ChannelPeaks peaks;
    bool writeFailed = false;
    GaplessFeed feed(encoder);
    rec.setGotData([&](std::vector<std::int16_t>& samples, int& bytes) {
        if (writeFailed || (limit >= 0 && written >= limit))
            return;
        dsp.ProcessSamples(samples);
        std::int64_t take = bytes;
        if (limit >= 0)
            take = std::min(take, limit - written);
        const ChannelPeaks p = blockPeaks(samples.data(), static_cast<std::size_t>(take / 2), o.channels);
        peaks.left = std::max(peaks.left, p.left);
        peaks.right = std::max(peaks.right, p.right);
        if (feed.feed(samples.data(), static_cast<std::int32_t>(take)) == encoder_result::kWriteFailed)
            writeFailed = true;
        written += take;
    });

    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    struct sigaction oldInt {}, oldTerm {};
    sigaction(SIGINT, &action, &oldInt);
    sigaction(SIGTERM, &action, &oldTerm);
    g_interrupted = 0;

    if (!rec.StartRecord(o.rate, static_cast<std::int16_t>(o.channels))) {
        encoder.Encoder_EncoderClose();
        sigaction(SIGINT, &oldInt, nullptr);
        sigaction(SIGTERM, &oldTerm, nullptr);
        return fail("Could not start recording! " + rec.lastFailure().detail);
    }
    const bool terminal = isatty(STDERR_FILENO);
    auto lastStatus = std::chrono::steady_clock::now();
    std::string failure;
    while (!g_interrupted && !writeFailed && (limit < 0 || written < limit)) {
        {
            std::unique_lock<std::mutex> lock(mutex);
            wake.wait_for(lock, std::chrono::milliseconds(100), [&] { return ready; });
            ready = false;
        }
        rec.DeliverPending();
        if (const CaptureFailure lost = rec.captureFailure()) {
            failure = "the input device is no longer available (" + lost.detail + ")";
            break;
        }
        const auto now = std::chrono::steady_clock::now();
        if (terminal && now - lastStatus >= std::chrono::milliseconds(200)) {
            lastStatus = now;
            std::fprintf(stderr, "\r%6s  %10s  L %s  R %s ", elapsedText(written * 1000 / byteRate).c_str(),
                         sizeText(fileSize(o.file)).c_str(), meter(peaks.left / 32768.0, 20).c_str(),
                         meter(peaks.right / 32768.0, 20).c_str());
            std::fflush(stderr);
            peaks = {};
        }
    }
    const CaptureStats stats = rec.captureStats();
    rec.StopRecord();
    const std::int32_t closed = encoder.Encoder_EncoderClose();
    sigaction(SIGINT, &oldInt, nullptr);
    sigaction(SIGTERM, &oldTerm, nullptr);
    if (terminal)
        std::fprintf(stderr, "\n");
    if (writeFailed || closed == encoder_result::kWriteFailed)
        return fail("Write error (no disk space left?)! " + encoder.lastErrorDetail());
    if (stats.buffersDropped > 0)
        std::fprintf(stderr, "mirabend: %llu buffers were lost because recording fell behind\n",
                     static_cast<unsigned long long>(stats.buffersDropped));
    std::printf("Recorded %s (%s) to %s\n", elapsedText(written * 1000 / byteRate).c_str(),
                sizeText(fileSize(o.file)).c_str(), o.file.c_str());
    if (!failure.empty())
        return fail(failure);
    return 0;
}

} // namespace mirabend
