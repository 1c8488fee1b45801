#include "recording/engine/RecordScreenTool.h"

#include "recording/engine/FormatPlanner.h"
#include "recording/engine/Screen2Video.h"
#include "recording/engine/WmvProfile.h"

extern "C" {
#include <libavutil/log.h>
}

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <atomic>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <thread>
#include <unistd.h>

namespace mirabend {

namespace {

std::atomic<bool> g_stopRequested{false};

void onStopSignal(int)
{
    g_stopRequested = true;
}

const char* errorName(RecorderError code)
{
    switch (code) {
    case RecorderError::None:
        return "no error";
    case RecorderError::BadSetting:
        return "setting refused";
    case RecorderError::DisplayUnavailable:
        return "no display";
    case RecorderError::WindowNotFound:
        return "no such window";
    case RecorderError::AudioDeviceUnavailable:
        return "audio source unavailable";
    case RecorderError::EncoderUnavailable:
        return "encoder unavailable";
    case RecorderError::OutputOpenFailed:
        return "cannot create the file";
    case RecorderError::WriteFailed:
        return "write failed";
    case RecorderError::WindowClosed:
        return "recorded window closed";
    case RecorderError::AudioSourceLost:
        return "audio source lost";
    case RecorderError::CaptureFailed:
        return "capture failed";
    case RecorderError::AlreadyCapturing:
        return "already recording";
    }
    return "error";
}

struct Options {
    QString file;
    int format = -1;
    double fps = 24;
    int width = 0;
    int height = 0;
    bool haveRegion = false;
    int region[4] = {0, 0, 0, 0};
    QString window;
    bool cursor = true;
    QString audioDevice;
    bool noAudio = false;
    QString videoCodec;
    QString audioCodec;
    QString videoBitrate;
    QString audioBitrate;
    int dateFormat = -1;
    QString text;
    QString image;
    double seconds = -1;
    bool hardware = false;
    bool listDevices = false;
    bool listCodecs = false;
};

// A bad command line gets one line that names the option and the reason.
int usage(const char* problem)
{
    std::fprintf(stderr, "mirabend: %s\n", problem);
    return 2;
}

bool positiveNumber(const QString& text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok && value > 0 && std::isfinite(value);
}

bool parseSize(const QString& text, int& w, int& h)
{
    const QStringList parts = text.toLower().split(QLatin1Char('x'));
    bool okW = false;
    bool okH = false;
    if (parts.size() != 2)
        return false;
    w = parts[0].toInt(&okW);
    h = parts[1].toInt(&okH);
    return okW && okH && w > 0 && h > 0;
}

// Returns an empty string on success, else the problem.
QString parse(int argc, char** argv, Options& o)
{
    for (int i = 1; i < argc; ++i) {
        const QString arg = QString::fromLocal8Bit(argv[i]);
        const auto value = [&](QString& out) {
            if (i + 1 >= argc)
                return false;
            out = QString::fromLocal8Bit(argv[++i]);
            return true;
        };
        QString v;
        if (arg == QLatin1String("--record-screen")) {
            if (i + 1 < argc && argv[i + 1][0] != '-')
                o.file = QString::fromLocal8Bit(argv[++i]);
        } else if (arg == QLatin1String("--list-devices")) {
            o.listDevices = true;
        } else if (arg == QLatin1String("--list-codecs")) {
            o.listCodecs = true;
        } else if (arg == QLatin1String("--no-cursor")) {
            o.cursor = false;
        } else if (arg == QLatin1String("--no-audio")) {
            o.noAudio = true;
        } else if (arg == QLatin1String("--hardware")) {
            o.hardware = true;
        } else if (!value(v)) {
            static const QStringList valued = {
                QStringLiteral("--seconds"),       QStringLiteral("--format"),        QStringLiteral("--fps"),
                QStringLiteral("--size"),          QStringLiteral("--region"),        QStringLiteral("--window"),
                QStringLiteral("--audio-device"),  QStringLiteral("--video-codec"),   QStringLiteral("--audio-codec"),
                QStringLiteral("--video-bitrate"), QStringLiteral("--audio-bitrate"), QStringLiteral("--date-format"),
                QStringLiteral("--text"),          QStringLiteral("--image")};
            return valued.contains(arg) ? QStringLiteral("%1 needs a value").arg(arg)
                                        : QStringLiteral("unknown option %1 (see mirabend --help)").arg(arg);
        } else if (arg == QLatin1String("--seconds")) {
            bool ok = false;
            o.seconds = v.toDouble(&ok);
            if (!ok || o.seconds <= 0)
                return QStringLiteral("--seconds: \"%1\" is not a positive number of seconds").arg(v);
        } else if (arg == QLatin1String("--format")) {
            o.format = FormatPlanner::formatForFile(QStringLiteral("x.") + v);
            if (o.format < 0)
                return QStringLiteral("--format: unknown format \"%1\" (avi, wmv, flv, swf, mp4, mkv)")
                    .arg(v);
        } else if (arg == QLatin1String("--fps")) {
            bool ok = false;
            o.fps = v.toDouble(&ok);
            if (!ok)
                return QStringLiteral("--fps: \"%1\" is not a number").arg(v);
            if (!(o.fps >= 1 && o.fps <= 240))
                return QStringLiteral("--fps: %1 is not a frame rate from 1 to 240").arg(v);
        } else if (arg == QLatin1String("--size")) {
            if (!parseSize(v, o.width, o.height))
                return QStringLiteral("--size: \"%1\" is not a picture size WxH with both sides above 0")
                    .arg(v);
        } else if (arg == QLatin1String("--region")) {
            const QStringList parts = v.split(QLatin1Char(','));
            bool ok = parts.size() == 4;
            for (int k = 0; ok && k < 4; ++k)
                o.region[k] = parts[k].trimmed().toInt(&ok);
            if (!ok || o.region[2] <= 0 || o.region[3] <= 0)
                return QStringLiteral("--region: \"%1\" is not X,Y,W,H with a width and height above 0")
                    .arg(v);
            o.haveRegion = true;
        } else if (arg == QLatin1String("--window")) {
            bool ok = false;
            v.toULongLong(&ok, 0);
            if (!ok)
                return QStringLiteral("--window: \"%1\" is not a window id").arg(v);
            o.window = v;
        } else if (arg == QLatin1String("--audio-device")) {
            o.audioDevice = v;
        } else if (arg == QLatin1String("--video-codec")) {
            o.videoCodec = v;
        } else if (arg == QLatin1String("--audio-codec")) {
            o.audioCodec = v;
        } else if (arg == QLatin1String("--video-bitrate") || arg == QLatin1String("--audio-bitrate")) {
            if (!positiveNumber(v))
                return QStringLiteral("%1: \"%2\" is not a positive bit rate").arg(arg, v);
            (arg == QLatin1String("--video-bitrate") ? o.videoBitrate : o.audioBitrate) = v;
        } else if (arg == QLatin1String("--date-format")) {
            bool ok = false;
            o.dateFormat = v.toInt(&ok);
            if (!ok || o.dateFormat < 0 || o.dateFormat > 18)
                return QStringLiteral("--date-format: \"%1\" is not a format number from 0 to 18").arg(v);
        } else if (arg == QLatin1String("--text")) {
            o.text = v;
        } else if (arg == QLatin1String("--image")) {
            o.image = v;
        } else {
            return QStringLiteral("unknown option %1 (see mirabend --help)").arg(arg);
        }
    }
    return {};
}

// The shipped profile files live next to the executable or in the data folder.
QString profileFile(const QString& name)
{
    QStringList folders;
    folders << QCoreApplication::applicationDirPath()
            << QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../share/mirabend"));
    const QString extra = qEnvironmentVariable("MIRABEND_DATA_DIR");
    if (!extra.isEmpty())
        folders << extra;
    for (const QString& folder : folders) {
        const QFileInfo info(QDir(folder).filePath(name));
        if (info.isFile())
            return info.absoluteFilePath();
    }
    return {};
}

void list(Screen2Video& recorder, const Options& o)
{
    if (o.listDevices) {
        std::printf("Audio devices (the first is the system default):\n");
        const NamedList& devices = recorder.AudioDevices();
        if (devices.Count() == 0)
            std::printf("  (none)\n");
        for (int i = 0; i < devices.Count(); ++i) {
            recorder.SelectAudioDevice(i);
            std::printf("  %d  %s\n", i, qPrintable(devices.Item(i)));
            for (int p = 0; p < recorder.AudioInputPins().Count(); ++p)
                std::printf("       pin %d  %s\n", p, qPrintable(recorder.AudioInputPins().Item(p)));
        }
        std::printf("Screen: %dx%d\n", recorder.ScreenWidth(), recorder.ScreenHeight());
    }
    if (o.listCodecs) {
        std::printf("Video compressors (AVI):\n");
        for (const QString& n : recorder.VideoCompressors().Names())
            std::printf("  %s\n", qPrintable(n));
        std::printf("Audio compressors (AVI):\n");
        for (const QString& n : recorder.AudioCompressors().Names())
            std::printf("  %s\n", qPrintable(n));
        std::printf(
            "Other formats: WMV Windows Media Video 8 + Windows Media Audio 2; FLV and SWF Sorenson Spark + "
            "MPEG Layer-3; MP4 and MKV H.264 + AAC\n");
        std::printf("WMV system profiles:\n");
        for (const QString& n : recorder.WmvSystemProfiles().Names())
            std::printf("  %s\n", qPrintable(n));
    }
}

// Sets up the recorder as the options window starts, then applies the options.
QString configure(Screen2Video& r, const Options& o)
{
    r.OutputFileName(o.file);
    r.OutputFormat(o.format);
    r.FrameRate(o.fps);
    r.CaptureMouseCursor(o.cursor ? 1 : 0);
    r.HardwareAcceleration(o.hardware);
    r.CaptureWindowHandle(o.window);
    if (o.haveRegion)
        r.ZoomRectangle(o.region[0], o.region[1], o.region[0] + o.region[2], o.region[1] + o.region[3]);
    r.AudioEnabled(!o.noAudio);
    if (!o.audioDevice.isEmpty()) {
        bool isNumber = false;
        const int number = o.audioDevice.toInt(&isNumber);
        const int index = isNumber ? number : r.AudioDevices().FindByName(o.audioDevice);
        if (index < 0 || index >= r.AudioDevices().Count())
            return QStringLiteral("--audio-device: no audio device \"%1\" (see --list-devices)")
                .arg(o.audioDevice);
        r.SelectAudioDevice(index);
    }
    const OutputFormatCode format = OutputFormatCode(o.format);
    if (format != OutputFormatCode::Avi && (!o.videoCodec.isEmpty() || !o.audioCodec.isEmpty()))
        return QStringLiteral(
            "--video-codec and --audio-codec choose AVI compressors; the other formats have "
            "fixed codecs (see --list-codecs)");
    const int width = o.width;
    const int height = o.height;
    switch (format) {
    case OutputFormatCode::Avi: {
        const QString video = o.videoCodec.isEmpty() ? QStringLiteral("Microsoft Video 1") : o.videoCodec;
        const QString audio = o.audioCodec.isEmpty() ? QStringLiteral("PCM") : o.audioCodec;
        const int vi = r.VideoCompressors().FindByName(video);
        const int ai = r.AudioCompressors().FindByName(audio);
        if (vi < 0)
            return QStringLiteral("--video-codec: no video compressor \"%1\" (see --list-codecs)").arg(video);
        if (ai < 0)
            return QStringLiteral("--audio-codec: no audio compressor \"%1\" (see --list-codecs)").arg(audio);
        r.VideoCompressorIndex(vi);
        r.AudioCompressorIndex(ai);
        r.AviUseVideoCompressor(true);
        r.AviUseAudioCompressor(true);
        r.AviAudioBitrate(o.audioBitrate.isEmpty() ? 128 : o.audioBitrate.toDouble());
        r.AviAudioChannels(1);
        r.AviAudioSampleRate(11025);
        r.AviWidth(width ? width : 560);
        r.AviHeight(height ? height : 420);
        break;
    }
    case OutputFormatCode::Wmv: {
        r.WmvUseProfile(true);
        const QString name =
            width ? QStringLiteral("%1x%2.prx").arg(width).arg(height) : QStringLiteral("640x480S.prx");
        const QString file = profileFile(name);
        if (!file.isEmpty()) {
            r.WmvProfileFile(file);
        } else {
            // No shipped profile of that size: the screen profile, which
            // records at the captured size.
            if (width)
                std::fprintf(stderr, "mirabend: no WMV profile %s; recording at the captured size\n",
                             qPrintable(name));
            r.WmvProfileFile(QString());
            r.WmvProfileIndex(0);
        }
        break;
    }
    case OutputFormatCode::Flv:
        r.FlvWidth(width ? width : 560);
        r.FlvHeight(height ? height : 420);
        if (!o.videoBitrate.isEmpty())
            r.FlvVideoBitrate(o.videoBitrate);
        if (!o.audioBitrate.isEmpty())
            r.FlvAudioBitrate(o.audioBitrate);
        break;
    case OutputFormatCode::Swf:
        r.SwfWidth(width ? width : 560);
        r.SwfHeight(height ? height : 420);
        if (!o.videoBitrate.isEmpty())
            r.SwfVideoBitrate(o.videoBitrate);
        if (!o.audioBitrate.isEmpty())
            r.SwfAudioBitrate(o.audioBitrate);
        break;
    case OutputFormatCode::Mp4:
    case OutputFormatCode::Matroska:
        r.OutputWidth(width);
        r.OutputHeight(height);
        break;
    }
    if (o.dateFormat >= 0) {
        r.DateTimeLayout(o.dateFormat, 10, 10);
        r.ShowDateTime(true);
    }
    if (!o.text.isEmpty()) {
        r.Text(o.text, 10, 60);
        r.ShowText(true);
    }
    if (!o.image.isEmpty()) {
        r.Image(o.image, 0, 10, 120, 0);
        r.ShowImage(true);
    }
    return {};
}

// Checked before the devices are listed, so the answer stays one line.
QString imageProblem(const QString& file)
{
    if (!QFileInfo(file).isFile())
        return QStringLiteral("--image: there is no file %1").arg(file);
    QImageReader reader(file);
    if (!reader.canRead())
        return QStringLiteral("--image: %1 is not an image (%2)").arg(file, reader.errorString());
    return {};
}

void report(const std::vector<RecorderFailure>& failures, bool& fatal)
{
    for (const RecorderFailure& f : failures) {
        std::fprintf(stderr, "mirabend: %s: %s\n", errorName(f.code), f.detail.c_str());
        if (f.code == RecorderError::WriteFailed || f.code == RecorderError::CaptureFailed)
            fatal = true;
    }
}

} // namespace

int runRecordScreen(int argc, char** argv)
{
    Options o;
    const QString problem = parse(argc, argv, o);
    if (!problem.isEmpty())
        return usage(qPrintable(problem));
    if (o.file.isEmpty() && !o.listDevices && !o.listCodecs)
        return usage("--record-screen needs a file name");
    if (o.format < 0 && !o.file.isEmpty()) {
        o.format = FormatPlanner::formatForFile(o.file);
        if (o.format < 0)
            return usage(qPrintable(
                QStringLiteral(
                    "--record-screen: unknown extension \"%1\" (avi, wmv, flv, swf, mp4, mkv; or give "
                    "--format)")
                    .arg(QFileInfo(o.file).suffix())));
    }
    // Stamps are painted with fonts, which need a QGuiApplication (no window
    // is shown); a plain recording does without its platform plugin and
    // font caches, several megabytes that a long recording would carry.
    const bool stamps = o.dateFormat >= 0 || !o.text.isEmpty() || !o.image.isEmpty();
    if (stamps && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    int qtArgc = 1;
    std::unique_ptr<QCoreApplication> app;
    if (stamps)
        app = std::make_unique<QGuiApplication>(qtArgc, argv);
    else
        app = std::make_unique<QCoreApplication>(qtArgc, argv);
    // FFmpeg's chatter is for developers; failures are reported below.
    av_log_set_level(qEnvironmentVariableIsSet("MIRABEND_FFMPEG_LOG") ? AV_LOG_INFO : AV_LOG_ERROR);

    if (!o.image.isEmpty()) {
        const QString imageError = imageProblem(o.image);
        if (!imageError.isEmpty())
            return usage(qPrintable(imageError));
    }
    Screen2Video recorder;
    if (o.listDevices || o.listCodecs) {
        list(recorder, o);
        if (o.file.isEmpty())
            return 0;
    }
    const QString setupProblem = configure(recorder, o);
    if (!setupProblem.isEmpty())
        return usage(qPrintable(setupProblem));

    struct sigaction action {};
    action.sa_handler = onStopSignal;
    sigemptyset(&action.sa_mask);
    struct sigaction oldInt {};
    struct sigaction oldTerm {};
    sigaction(SIGINT, &action, &oldInt);
    sigaction(SIGTERM, &action, &oldTerm);
    g_stopRequested = false;

    bool fatal = false;
    if (!recorder.StartCapture()) {
        report(recorder.TakeFailures(), fatal);
        std::fprintf(stderr, "mirabend: the recording did not start\n");
        sigaction(SIGINT, &oldInt, nullptr);
        sigaction(SIGTERM, &oldTerm, nullptr);
        return 1;
    }
    if (recorder.HardwareAcceleration())
        std::fprintf(stderr, "mirabend: video encoder %s\n", qPrintable(recorder.VideoEncoderInUse()));
    const bool terminal = isatty(STDERR_FILENO);
    while (!g_stopRequested && recorder.IsCapturing()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        report(recorder.TakeFailures(), fatal);
        const RecorderCounters c = recorder.Counters();
        if (o.seconds > 0 && c.secondsRecorded >= o.seconds)
            break;
        if (terminal) {
            const int s = int(c.secondsRecorded);
            std::fprintf(stderr, "\r%02d:%02d:%02d  frames %llu  dropped %llu  ", s / 3600, s / 60 % 60,
                         s % 60, static_cast<unsigned long long>(c.framesWritten),
                         static_cast<unsigned long long>(c.framesDropped));
        }
    }
    recorder.StopCapture();
    if (terminal)
        std::fprintf(stderr, "\n");
    report(recorder.TakeFailures(), fatal);
    sigaction(SIGINT, &oldInt, nullptr);
    sigaction(SIGTERM, &oldTerm, nullptr);
    const RecorderCounters c = recorder.Counters();
    std::fprintf(
        stderr,
        "mirabend: recorded %.1f s to %s: %llu frames written (%llu repeated), %llu captured, %llu dropped, "
        "%llu audio overruns\n",
        c.secondsRecorded, qPrintable(o.file), static_cast<unsigned long long>(c.framesWritten),
        static_cast<unsigned long long>(c.framesDuplicated),
        static_cast<unsigned long long>(c.framesCaptured), static_cast<unsigned long long>(c.framesDropped),
        static_cast<unsigned long long>(c.audioOverruns));
    return fatal ? 3 : 0;
}

const CommandLineTool kRecordScreenTool = {
    "--record-screen",
    "--record-screen FILE [options]",
    "  Records the screen with sound until --seconds have passed or Ctrl+C.\n"
    "  --format avi|wmv|flv|swf|mp4|mkv   default from the file name\n"
    "  --fps N                             frame rate (24)\n"
    "  --size WxH                          picture size (AVI/FLV/SWF 560x420, else the recorded size)\n"
    "  --region X,Y,W,H | --window ID      part of the screen or one window (whole screen)\n"
    "  --no-cursor                         leave the mouse pointer out\n"
    "  --audio-device NAME | --no-audio    sound source (the system default)\n"
    "  --video-codec NAME --audio-codec NAME   AVI compressors (Microsoft Video 1, PCM)\n"
    "  --video-bitrate BPS --audio-bitrate BPS  FLV/SWF bitrates; AVI MP3 rate in kbit/s\n"
    "  --hardware                          H.264 through VA-API or NVENC when present\n"
    "  --date-format N --text TEXT --image FILE  stamps drawn onto the video\n"
    "  --seconds N                         stop after N seconds of recording\n"
    "  --list-devices --list-codecs        show what can be chosen\n",
    &runRecordScreen,
};

} // namespace mirabend
