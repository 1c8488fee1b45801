#pragma once
// Every control of the options window carries its design name as its Qt
// object name, so tests and tools find it by name.

#include <QLatin1String>
#include <QObject>

namespace mirabend {

template <typename W>
W* named(W* widget, const char* name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

} // namespace mirabend
