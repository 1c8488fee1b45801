#pragma once
// Captures 16-bit PCM from an audio input device and hands every filled
// buffer to its owner, in order, exactly once, through the GotData handler.
// Also lists the input devices and drives the recording source and volume
// on the device's mixer.
//
// The device is read on a capture thread into a queue of BufferCount buffers
// of BufferSize bytes. The owner receives them by calling DeliverPending()
// on its own thread, typically after the data-ready callback woke it; each
// buffer goes back to the queue as soon as the handler returns, so the
// handler must not keep the samples. If the owner falls behind by more than
// BufferCount buffers, further audio is dropped and counted, as a sound card
// would drop it.
//
// Thread contract:
//  - every public member except the data-ready callback runs on the owner
//    thread (the thread that created the object), GotData included;
//  - the data-ready callback (setDataReady) is called on the capture thread
//    whenever a buffer was filled or the capture failed; it must only wake
//    the owner (post an event, signal a condition), never call back in.

#include "audio/capture/CaptureError.h"
#include "audio/capture/WaveCaptureSession.h"
#include "audio/capture/InputDevices.h"
#include "audio/capture/MixerLines.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mirabend {

class WaveInRecorder {
public:
    // samples: the buffer's own array (BufferSize / 2 samples), bytes: how
    // many bytes the device wrote into it. Both may be changed in place.
    using GotDataHandler = std::function<void(std::vector<std::int16_t>& samples, int& bytesRecorded)>;

    static constexpr int kDeviceNameField = 32; // DeviceName() is this long, NUL padded
    static constexpr int kLineNameField = 64;   // MixerLineName() is this long, NUL padded

    WaveInRecorder();
    ~WaveInRecorder();
    WaveInRecorder(const WaveInRecorder&) = delete;
    WaveInRecorder& operator=(const WaveInRecorder&) = delete;

    bool IsRecording() const { return static_cast<bool>(m_session); }
    // Opens the selected device (the default device when none is selected)
    // and starts capture; false leaves the recorder idle, see lastFailure().
    bool StartRecord(int sampleRate, std::int16_t channels);
    // Stops capture and releases the device; buffers not yet delivered are
    // discarded. Always true.
    bool StopRecord();

    int BufferCount() const { return m_bufferCount; }
    void BufferCount(int count) { m_bufferCount = count; }
    int BufferSize() const { return m_bufferSize; }
    void BufferSize(int bytes) { m_bufferSize = bytes; }

    // Reads the device list anew.
    int DeviceCount();
    // The readable name in a 32-character field padded with NULs (longer
    // names are cut to 31 characters); stop at the first NUL for display.
    std::string DeviceName(int index);
    // Chooses a device and opens its mixer. False for an index outside the
    // list (nothing changes) or a device without a usable mixer (no device
    // is selected afterwards).
    bool SelectDevice(int index);
    int SelectedDevice() const { return m_selected; }

    int MixerLineCount();
    // The line's name in a 64-character field padded with NULs; empty
    // without a selected device.
    std::string MixerLineName(int index);
    bool SelectMixerLine(int index);
    int SelectedMixerLine();
    // MixerLineKind of a line; -1 means the selected line.
    int MixerLineType(int index);
    // Volume of the selected line in the mixer's own units.
    int MixerLineVolume();
    void MixerLineVolume(int value);

    // --- Beyond the classic interface ---
    void setGotData(GotDataHandler handler) { m_gotData = std::move(handler); }
    void setDataReady(std::function<void()> wake) { m_dataReady = std::move(wake); }
    // Raises GotData for every buffer filled so far, oldest first; returns
    // how many were delivered. The handler may stop the recording.
    int DeliverPending();

    // The devices as last read by DeviceCount().
    const std::vector<InputDevice>& devices() const { return m_devices; }
    // The range of the selected line's volume (0..0 when it has none).
    VolumeRange MixerLineVolumeRange();
    // Why the last StartRecord, SelectDevice or mixer change failed.
    const CaptureFailure& lastFailure() const { return m_lastFailure; }
    // A failure of the running capture (the device vanished); None while
    // capture is healthy or idle.
    CaptureFailure captureFailure() const;
    CaptureStats captureStats() const;

private:
    int m_selected = -1;
    int m_bufferSize = 10240;
    int m_bufferCount = 5;
    std::vector<InputDevice> m_devices;
    InputDevice m_selectedDevice;
    std::unique_ptr<CaptureMixer> m_mixer;
    std::shared_ptr<WaveCaptureSession> m_session;
    GotDataHandler m_gotData;
    std::function<void()> m_dataReady;
    CaptureFailure m_lastFailure;
};

} // namespace mirabend
