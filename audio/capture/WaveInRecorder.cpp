#include "audio/capture/WaveInRecorder.h"

namespace mirabend {
namespace {

std::string field(const std::string& text, int width)
{
    std::string out = text.substr(0, static_cast<std::size_t>(width - 1));
    while (!out.empty() && out.back() == ' ')
        out.pop_back();
    out.resize(static_cast<std::size_t>(width), '\0');
    return out;
}

} // namespace

WaveInRecorder::WaveInRecorder()
{
    m_devices = listInputDevices();
}

WaveInRecorder::~WaveInRecorder()
{
    if (IsRecording())
        StopRecord();
    m_mixer.reset();
}

bool WaveInRecorder::StartRecord(int sampleRate, std::int16_t channels)
{
    if (IsRecording())
        StopRecord();
    CaptureFormat format;
    format.rate = sampleRate > 0 ? static_cast<unsigned>(sampleRate) : 0;
    format.channels = channels > 0 ? static_cast<unsigned>(channels) : 0;
    format.bufferSize = m_bufferSize;
    format.bufferCount = m_bufferCount;
    const std::string pcm = m_selected >= 0 ? m_selectedDevice.pcm : std::string("default");
    auto wake = [this] {
        if (m_dataReady)
            m_dataReady();
    };
    m_lastFailure = {};
    m_session = WaveCaptureSession::start(pcm, format, wake, &m_lastFailure);
    return IsRecording();
}

bool WaveInRecorder::StopRecord()
{
    if (m_session) {
        m_session->stop();
        m_session.reset();
    }
    return true;
}

int WaveInRecorder::DeliverPending()
{
    // Keep the session alive while its buffer is in the handler, even when
    // the handler stops the recording.
    const std::shared_ptr<WaveCaptureSession> session = m_session;
    if (!session)
        return 0;
    int delivered = 0;
    while (m_session == session) {
        const std::optional<int> index = session->takeFilled();
        if (!index)
            break;
        CaptureBuffer& buffer = session->buffer(*index);
        if (m_gotData)
            m_gotData(buffer.samples, buffer.bytesRecorded);
        session->giveBack(*index);
        ++delivered;
    }
    return delivered;
}

CaptureFailure WaveInRecorder::captureFailure() const
{
    return m_session ? m_session->failure() : CaptureFailure{};
}

CaptureStats WaveInRecorder::captureStats() const
{
    return m_session ? m_session->stats() : CaptureStats{};
}

int WaveInRecorder::DeviceCount()
{
    m_devices = listInputDevices();
    return static_cast<int>(m_devices.size());
}

std::string WaveInRecorder::DeviceName(int index)
{
    if (index < 0 || index >= static_cast<int>(m_devices.size()))
        return std::string(kDeviceNameField, '\0');
    return field(m_devices[static_cast<std::size_t>(index)].name, kDeviceNameField);
}

bool WaveInRecorder::SelectDevice(int index)
{
    if (index < 0 || index >= static_cast<int>(m_devices.size())) {
        m_lastFailure = {CaptureError::NoSuchDevice, "device " + std::to_string(index) + " of " +
                                                         std::to_string(m_devices.size())};
        return false;
    }
    m_selected = -1;
    m_mixer.reset();
    const InputDevice& device = m_devices[static_cast<std::size_t>(index)];
    m_lastFailure = {};
    m_mixer = CaptureMixer::open(device.ctl, &m_lastFailure);
    if (!m_mixer)
        return false;
    m_selected = index;
    m_selectedDevice = device;
    return true;
}

int WaveInRecorder::MixerLineCount()
{
    return m_mixer ? m_mixer->lineCount() : 0;
}

std::string WaveInRecorder::MixerLineName(int index)
{
    if (!m_mixer)
        return {};
    return field(m_mixer->lineName(index), kLineNameField);
}

bool WaveInRecorder::SelectMixerLine(int index)
{
    if (!m_mixer)
        return false;
    if (!m_mixer->selectLine(index)) {
        m_lastFailure = {CaptureError::MixerFailed, "line " + std::to_string(index) + " of \"" +
                                                        m_selectedDevice.name + "\" could not be selected"};
        return false;
    }
    return true;
}

int WaveInRecorder::SelectedMixerLine()
{
    return m_mixer ? m_mixer->selectedLine() : 0;
}

int WaveInRecorder::MixerLineType(int index)
{
    return m_mixer ? m_mixer->lineType(index) : 0;
}

int WaveInRecorder::MixerLineVolume()
{
    long value = 0;
    if (!m_mixer || !m_mixer->volume(m_mixer->selectedLine(), &value))
        return 0;
    return static_cast<int>(value);
}

void WaveInRecorder::MixerLineVolume(int value)
{
    if (m_mixer && !m_mixer->setVolume(m_mixer->selectedLine(), value))
        m_lastFailure = {CaptureError::MixerFailed, "the volume could not be set"};
}

VolumeRange WaveInRecorder::MixerLineVolumeRange()
{
    return m_mixer ? m_mixer->volumeRange(m_mixer->selectedLine()) : VolumeRange{};
}

} // namespace mirabend
