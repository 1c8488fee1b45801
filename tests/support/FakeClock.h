#pragma once
// A clock that moves only when the test says so.

#include "util/Clock.h"

namespace mirabend::test {

class FakeClock final : public Clock {
public:
    explicit FakeClock(QDateTime start = QDateTime(QDate(2026, 1, 5), QTime(9, 0, 0)))
        : m_now(std::move(start)) {}
    QDateTime now() const override { return m_now; }
    void advanceMs(qint64 ms) { m_now = m_now.addMSecs(ms); }
    void set(const QDateTime& t) { m_now = t; }

private:
    QDateTime m_now;
};

} // namespace mirabend::test
