#pragma once
// The time source for everything that measures or shows time, so tests can
// move time by hand.
//
// Thread contract: now() may be called from any thread.

#include <QDateTime>

namespace mirabend {

class Clock {
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
};

class SystemClock final : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

} // namespace mirabend
