#include "shell/camera/V4l2Input.h"

#include <QDir>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace mirabend {

namespace {

int xioctl(int fd, unsigned long request, void* arg) {
    int result;
    do {
        result = ioctl(fd, request, arg);
    } while (result == -1 && errno == EINTR);
    return result;
}

QString cardName(int fd) {
    v4l2_capability caps{};
    if (xioctl(fd, VIDIOC_QUERYCAP, &caps) != 0)
        return {};
    const std::uint32_t kinds =
        (caps.capabilities & V4L2_CAP_DEVICE_CAPS) ? caps.device_caps : caps.capabilities;
    if (!(kinds & V4L2_CAP_VIDEO_CAPTURE))
        return {};
    return QString::fromUtf8(
        reinterpret_cast<const char*>(caps.card),
        static_cast<int>(strnlen(reinterpret_cast<const char*>(caps.card), sizeof caps.card)));
}

} // namespace

std::unique_ptr<AnalogueInput> V4l2Input::open(const QString& deviceName) {
    if (deviceName.isEmpty())
        return nullptr;
    const QDir dev(QStringLiteral("/dev"));
    for (const QString& node : dev.entryList({QStringLiteral("video*")}, QDir::System, QDir::Name)) {
        const QByteArray path = dev.filePath(node).toLocal8Bit();
        const int fd = ::open(path.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0)
            continue;
        std::unique_ptr<AnalogueInput> input(new V4l2Input(fd));
        if (cardName(fd) == deviceName)
            return input;
    }
    return nullptr;
}

V4l2Input::~V4l2Input() {
    ::close(m_fd);
}

std::uint64_t V4l2Input::supportedStandards() const {
    std::uint64_t mask = 0;
    v4l2_standard standard{};
    for (standard.index = 0; xioctl(m_fd, VIDIOC_ENUMSTD, &standard) == 0; ++standard.index)
        mask |= standard.id;
    return mask;
}

bool V4l2Input::setStandard(std::uint64_t standard) {
    v4l2_std_id id = standard;
    return xioctl(m_fd, VIDIOC_S_STD, &id) == 0;
}

bool V4l2Input::hasMute() const {
    v4l2_queryctrl query{};
    query.id = V4L2_CID_AUDIO_MUTE;
    return xioctl(m_fd, VIDIOC_QUERYCTRL, &query) == 0 && !(query.flags & V4L2_CTRL_FLAG_DISABLED);
}

bool V4l2Input::setMute(bool muted) {
    v4l2_control control{};
    control.id = V4L2_CID_AUDIO_MUTE;
    control.value = muted ? 1 : 0;
    return xioctl(m_fd, VIDIOC_S_CTRL, &control) == 0;
}

} // namespace mirabend
