// The damage-tracking screen source against a real Xvfb: what it hands on
// equals a whole grab after a change, a still screen hands on nothing, the
// x11grab fallback takes over without the extension, and recordings of a
// still screen keep one frame per slot across pauses (read back with
// libavformat).
#include "recording/engine/DamageScreenSource.h"
#include "recording/engine/Screen2Video.h"
#include "recording/engine/ScreenSource.h"
#include "recording/engine/XcbHandles.h"
#include "support/ChildProcess.h"
#include "support/MediaProbe.h"
#include "support/XvfbServer.h"

#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>

namespace mirabend {
namespace {

using namespace std::chrono_literals;

std::string mainDisplay() {
    return std::getenv("DISPLAY");
}

// A second client that draws on the screen and grabs it whole.
class ScreenClient {
public:
    explicit ScreenClient(const std::string& display)
        : m_c(xcb_connect(display.c_str(), nullptr)) {
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_c.get())).data->root;
    }
    std::uint32_t root() const { return m_root; }
    std::uint32_t window(std::uint32_t parent, int x, int y, int w, int h, std::uint32_t background) {
        const std::uint32_t id = xcb_generate_id(m_c.get());
        const std::uint32_t values[] = {background, 1};
        xcb_create_window(m_c.get(), XCB_COPY_FROM_PARENT, id, parent, std::int16_t(x), std::int16_t(y),
                          std::uint16_t(w), std::uint16_t(h), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
        xcb_map_window(m_c.get(), id);
        sync();
        return id;
    }
    void fill(std::uint32_t drawable, int x, int y, int w, int h, std::uint32_t rgb) {
        const std::uint32_t gc = xcb_generate_id(m_c.get());
        const std::uint32_t values[] = {rgb, XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS};
        xcb_create_gc(m_c.get(), gc, drawable, XCB_GC_FOREGROUND | XCB_GC_SUBWINDOW_MODE, values);
        const xcb_rectangle_t r{std::int16_t(x), std::int16_t(y), std::uint16_t(w), std::uint16_t(h)};
        xcb_poly_fill_rectangle(m_c.get(), drawable, gc, 1, &r);
        xcb_free_gc(m_c.get(), gc);
        sync();
    }
    // The area as 0x00RRGGBB pixels, as x11grab would read it.
    std::vector<std::uint32_t> grab(std::uint32_t drawable, int x, int y, int w, int h) {
        XcbReply<xcb_get_image_reply_t> image(
            xcb_get_image_reply(m_c.get(),
                                xcb_get_image(m_c.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, std::int16_t(x),
                                              std::int16_t(y), std::uint16_t(w), std::uint16_t(h), ~0u),
                                nullptr));
        std::vector<std::uint32_t> out(std::size_t(w) * h);
        if (!image)
            return {};
        const auto* px = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image.get()));
        for (std::size_t i = 0; i < out.size(); ++i)
            out[i] = px[i] & 0xffffff;
        return out;
    }
    void sync() {
        XcbReply<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus_reply(m_c.get(), xcb_get_input_focus(m_c.get()), nullptr));
    }

private:
    XcbConnection m_c;
    std::uint32_t m_root = 0;
};

// Lays a grab's bands over the picture the test keeps.
void apply(std::vector<std::uint32_t>& picture, int width, const ScreenGrab& grab) {
    const auto* rows = reinterpret_cast<const std::uint32_t*>(grab.pixels->data);
    for (const RowBand& b : grab.bands) {
        for (int i = 0; i < b.height * width; ++i)
            picture[std::size_t(b.top) * width + i] = rows[i] & 0xffffff;
        rows += std::size_t(b.height) * width;
    }
}

// Reads until the source reports `changed` (or gives up after a while).
bool readUntil(ScreenSource& source, ScreenGrab& grab, bool changed) {
    for (int i = 0; i < 100; ++i) {
        if (source.read(grab, ScreenSource::Want::Changes) != 0)
            return false;
        if (grab.unchanged() != changed)
            return true;
    }
    return false;
}

TEST(DamageCaptureTest, ChangedRowsMatchAWholeGrabAndAStillScreenHandsOnNothing) {
    struct Case {
        const char* name;
        bool window;
    };
    constexpr int w = 320;
    constexpr int h = 240;
    for (const Case& c : {Case{"screen area", false}, Case{"window with a child window", true}}) {
        SCOPED_TRACE(c.name);
        ScreenClient screen(mainDisplay());
        CaptureTarget target;
        std::uint32_t drawable = screen.root();
        std::uint32_t paintOn = screen.root();
        int left = 0;
        int top = 0;
        if (c.window) {
            drawable = target.window = screen.window(screen.root(), 400, 300, w, h, 0x203040);
            // Drawing in a child must show: the damage covers inferiors.
            paintOn = screen.window(drawable, 100, 60, 150, 120, 0x405060);
        } else {
            target.region = {64, 48, w, h};
            left = 64;
            top = 48;
            screen.fill(screen.root(), left, top, w, h, 0x102030);
        }
        DamageScreenSource source;
        std::string why;
        ASSERT_TRUE(source.open(mainDisplay(), target, 25, 1, why)) << why;
        ScreenGrab grab;
        ASSERT_EQ(source.read(grab, ScreenSource::Want::Changes), 0);
        ASSERT_TRUE(grab.whole(h)) << "the first grab is the whole picture";
        std::vector<std::uint32_t> picture(std::size_t(w) * h);
        apply(picture, w, grab);
        ASSERT_TRUE(readUntil(source, grab, false)) << "a still screen must come back unchanged";

        // Painting a region: only rows around it are handed on, and the
        // picture equals a whole grab again.
        screen.fill(paintOn, left + 20, top + 30, 40, 16, 0xff8000);
        ASSERT_TRUE(readUntil(source, grab, true));
        int rows = 0;
        for (const RowBand& b : grab.bands)
            rows += b.height;
        EXPECT_LT(rows, h / 2) << "a small change must not be handed on as the whole picture";
        apply(picture, w, grab);
        EXPECT_EQ(picture, screen.grab(drawable, left, top, w, h));
        ScreenGrab after;
        EXPECT_TRUE(readUntil(source, after, false));
    }
}

TEST(DamageCaptureTest, WithoutTheExtensionOrWhenToldTheWholePictureIsGrabbed) {
    struct Case {
        const char* name;
        std::vector<std::string> xvfbArguments;
        const char* env;
        const char* backend;
    };
    const Case cases[] = {
        {"no DAMAGE extension", {"-extension", "DAMAGE"}, nullptr, "x11grab"},
        {"MIRABEND_CAPTURE=x11grab", {}, "x11grab", "x11grab"},
    };
    test::TempFolder folder("mirabend-damage");
    const std::string original = mainDisplay();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::XvfbServer xvfb(640, 480, 24, c.xvfbArguments);
        ASSERT_TRUE(xvfb.ok());
        setenv("DISPLAY", xvfb.display().c_str(), 1);
        if (c.env)
            setenv("MIRABEND_CAPTURE", c.env, 1);
        Screen2Video r;
        const std::string file = folder.file(std::string(c.backend) + ".mkv");
        r.OutputFileName(QString::fromStdString(file));
        r.OutputFormat(5);
        r.FrameRate(10);
        r.ZoomRectangle(0, 0, 160, 120);
        r.AudioEnabled(false);
        const bool started = r.StartCapture();
        unsetenv("MIRABEND_CAPTURE");
        setenv("DISPLAY", original.c_str(), 1);
        ASSERT_TRUE(started) << r.LastFailure().detail;
        EXPECT_EQ(r.CaptureBackendInUse().toStdString(), c.backend);
        while (r.IsCapturing() && r.Counters().secondsRecorded < 1.0)
            std::this_thread::sleep_for(20ms);
        r.StopCapture();
        const test::MediaInfo info = test::probe(file);
        EXPECT_NEAR(double(info.videoPackets), 10, 1);
    }
}

// The video packets' times in seconds, in file order, and how many
// pictures they decode to.
struct ReadBack {
    std::vector<double> times;
    int decoded = 0;
};

ReadBack readBack(const std::string& file) {
    ReadBack out;
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, file.c_str(), nullptr, nullptr) < 0)
        return out;
    InputContextPtr input(raw);
    avformat_find_stream_info(input.get(), nullptr);
    const int index = av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (index < 0)
        return out;
    const AVCodec* codec = avcodec_find_decoder(input->streams[index]->codecpar->codec_id);
    CodecContextPtr decoder(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(decoder.get(), input->streams[index]->codecpar);
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0)
        return out;
    PacketPtr packet = makePacket();
    FramePtr frame = makeFrame();
    const auto drain = [&] {
        while (avcodec_receive_frame(decoder.get(), frame.get()) >= 0)
            ++out.decoded;
    };
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        if (packet->stream_index == index) {
            out.times.push_back(double(packet->pts) * av_q2d(input->streams[index]->time_base));
            avcodec_send_packet(decoder.get(), packet.get());
            drain();
        }
        av_packet_unref(packet.get());
    }
    avcodec_send_packet(decoder.get(), nullptr);
    drain();
    return out;
}

TEST(DamageCaptureTest, AStillScreenKeepsEveryFrameOnTheGridAcrossPausesAndShowsWhatIsPainted) {
    struct Case {
        int format;
        const char* file;
    };
    test::TempFolder folder("mirabend-damage");
    ScreenClient screen(mainDisplay());
    constexpr double fps = 10;
    // H.264 in Matroska, WMV2 in ASF, and FLV1 scaled to 480x360; the
    // last two repeat a still picture with skipped pictures.
    for (const Case& c : {Case{5, "still.mkv"}, Case{1, "still.wmv"}, Case{3, "still.flv"}}) {
        SCOPED_TRACE(c.file);
        screen.fill(screen.root(), 0, 0, 320, 240, 0x000000);
        Screen2Video r;
        const std::string file = folder.file(c.file);
        r.OutputFileName(QString::fromStdString(file));
        r.OutputFormat(c.format);
        r.WmvUseProfile(true);
        r.WmvProfileIndex(0);
        r.FlvWidth(480);
        r.FlvHeight(360);
        r.FrameRate(fps);
        r.ZoomRectangle(0, 0, 320, 240);
        r.AudioEnabled(false);
        // A white stamp low on the left: drawn onto changed rows alone.
        r.TextColor(0xffffff);
        r.TextFontSize(20);
        r.Text(QString(3, QChar(0x2588)), 20, 190);
        r.ShowText(true);
        ASSERT_TRUE(r.StartCapture()) << r.LastFailure().detail;
        ASSERT_EQ(r.CaptureBackendInUse().toStdString(), "damage");
        const auto recordFor = [&](double seconds) {
            while (r.IsCapturing() && r.Counters().secondsRecorded < seconds)
                std::this_thread::sleep_for(20ms);
        };
        recordFor(0.8);
        r.PauseCapture();
        std::this_thread::sleep_for(300ms);
        r.ResumeCapture();
        recordFor(1.2);
        screen.fill(screen.root(), 200, 150, 60, 40, 0xffffff);
        screen.fill(screen.root(), 0, 180, 150, 40, 0x000000); // regrabs the stamp's rows
        recordFor(2.0);
        r.StopCapture();

        const ReadBack back = readBack(file);
        const std::vector<double>& times = back.times;
        EXPECT_NEAR(double(times.size()), 2.0 * fps, 1.0) << "one frame per slot on a still screen";
        EXPECT_EQ(back.decoded, int(times.size()))
            << "every packet, skipped pictures included, shows a frame";
        for (std::size_t i = 1; i < times.size(); ++i)
            EXPECT_NEAR(times[i] - times[i - 1], 1 / fps, 0.5 / fps) << "frame " << i << " left the grid";
        const int scale = c.format == 3 ? 480 : 320;
        const auto at = [&](int v) {
            return v * scale / 320;
        };
        EXPECT_GT(test::brightestLuma(file, at(205), at(155), at(50), at(30), 1.8), 200);
        EXPECT_LT(test::brightestLuma(file, 0, 0, at(150), at(100), 1.8), 40);
        EXPECT_GT(test::brightestLuma(file, at(25), at(200), at(40), at(10), 1.8), 200) << "the stamp";
    }
}

} // namespace
} // namespace mirabend
