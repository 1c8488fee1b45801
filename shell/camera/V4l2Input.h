#pragma once
// The analogue side of a V4L2 capture device (video standard, tuner mute),
// found by the name Qt Multimedia shows for the device: the V4L2 card name.
//
// Thread contract: UI thread only.

#include "shell/camera/AnalogueInput.h"

namespace mirabend {

class V4l2Input final : public AnalogueInput {
public:
    // The first /dev/video* capture node whose card is `deviceName`; null
    // when there is none.
    static std::unique_ptr<AnalogueInput> open(const QString& deviceName);

    ~V4l2Input() override;
    V4l2Input(const V4l2Input&) = delete;
    V4l2Input& operator=(const V4l2Input&) = delete;

    std::uint64_t supportedStandards() const override;
    bool setStandard(std::uint64_t standard) override;
    bool hasMute() const override;
    bool setMute(bool muted) override;

private:
    explicit V4l2Input(int fd)
        : m_fd(fd) {}
    int m_fd;
};

} // namespace mirabend
