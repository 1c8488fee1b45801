#pragma once
// The audio input devices the system offers, as alsa-lib's device hints
// describe them: the default device, sound servers (PulseAudio, PipeWire),
// every capture device of every sound card, and devices the user defined in
// an asoundrc with a hint. Converters and other helper plugins are left out.
//
// Thread contract: any thread; each call reads alsa-lib's configuration anew.

#include <string>
#include <vector>

namespace mirabend {

struct InputDevice {
    std::string name; // readable, e.g. "PulseAudio Sound Server" or "HDA Intel PCH: ALC892 Analog"
    std::string pcm;  // the PCM opened for capture, e.g. "pulse", "plughw:CARD=PCH,DEV=0"
    std::string ctl;  // the control device whose mixer belongs to it, e.g. "pulse", "hw:CARD=PCH"
};

std::vector<InputDevice> listInputDevices();

// Just the readable names, in the same order (the main window's start-up
// check and the recorder window's device list use them).
std::vector<std::string> audioInputDeviceNames();

// Index of the device whose readable name or PCM name equals `nameOrPcm`
// (case-insensitive), or -1.
int findInputDevice(const std::vector<InputDevice>& devices, const std::string& nameOrPcm);

} // namespace mirabend
