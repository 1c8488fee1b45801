#pragma once
// Everything one recording needs, resolved from the control's properties:
// which screen area, which encoders at which sizes and rates, which muxer.
// FormatPlanner makes it; the capture session only follows it.
//
// Thread contract: a plain value, copied to each thread that needs it.

#include "recording/engine/RecorderTypes.h"

#include <cstdint>
#include <string>

namespace mirabend {

struct CaptureTarget {
    std::string display;      // X display name, "" for $DISPLAY
    std::uint32_t window = 0; // X11 window id, 0 for the screen
    ScreenRect region;        // the screen area, or the part of the window (relative to it)
    bool cursor = false;
};

struct VideoTarget {
    std::string encoder;     // FFmpeg encoder name: "msvideo1", "wmv2", "flv", "mpeg4", "libx264"
    std::string pixelFormat; // the encoder's input: "rgb555le", "yuv420p"
    int width = 0;
    int height = 0;
    std::int64_t bitRate = 0; // 0: the encoder's own rate control
    int gopSize = 0;          // frames between key frames
    bool hardwareWanted = false;
    int quality = -1;         // H.264 constant rate factor; -1: the recorder's choice
    std::string preset;       // H.264 speed preset; "": the fastest
    int keyframeInterval = 0; // Microsoft Video 1: frames between whole pictures; 0: the encoder's
};

struct AudioTarget {
    bool enabled = false;
    std::string encoder; // "pcm_s16le", "libmp3lame", "aac", "wmav2"
    int sampleRate = 44100;
    int channels = 2;
    std::int64_t bitRate = 0;
};

struct AudioSourceChoice {
    std::string backend; // "pulse" or "alsa"
    std::string device;  // source or PCM name
    std::string port;    // sound server port to select, "" to leave as is
    std::string label;   // the name shown to the user
};

struct RecordingPlan {
    OutputFormatCode format = OutputFormatCode::Avi;
    std::string muxer; // libavformat short name
    std::string file;
    int fpsNum = 24;
    int fpsDen = 1;
    bool constantFrameRate = false; // repeat frames to fill every slot (SWF counts frames, not time)
    bool liveSafe = false;          // written so a file cut off mid-way still plays
    CaptureTarget capture;
    VideoTarget video;
    AudioTarget audio;
    AudioSourceChoice source;

    double frameRate() const { return double(fpsNum) / fpsDen; }
};

} // namespace mirabend
