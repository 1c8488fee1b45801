#include "shell/ImageList.h"

namespace mirabend {

namespace {

// 1-based, as the toolbar addresses them.
const char* const kNames[] = {
    nullptr,  "open",  "slides", "camera", "notes", "draw",    "pause", "web",  "single",
    "side",   "mixed", "record", "stop",   "options", "exit",  "resume", "mic", "rotate",
    "shrink",
};

} // namespace

QString ImageList::name(int index)
{
    constexpr int count = static_cast<int>(sizeof kNames / sizeof kNames[0]);
    if (index < 1 || index >= count)
        return {};
    return QString::fromLatin1(kNames[index]);
}

QIcon ImageList::icon(int index)
{
    const QString n = name(index);
    if (n.isEmpty())
        return {};
    return QIcon(QStringLiteral(":/icons/") + n + QStringLiteral(".svg"));
}

} // namespace mirabend
