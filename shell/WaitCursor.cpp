#include "shell/WaitCursor.h"

#include "util/CursorFile.h"
#include "util/ProgramFolder.h"

#include <QTimer>
#include <QWidget>

namespace mirabend {

WaitCursor::WaitCursor(QWidget* target)
    : QObject(target)
    , m_target(target)
    , m_poll(new QTimer(this)) {
    m_poll->setInterval(kPollMs);
    connect(m_poll, &QTimer::timeout, this, &WaitCursor::check);
}

QCursor WaitCursor::busyCursor() {
    return loadCursorFile(ProgramFolder::dataFile(QStringLiteral("\\C_WAIT05.CUR")), QCursor(Qt::BusyCursor));
}

void WaitCursor::hold(std::function<bool()> busy) {
    m_busy = std::move(busy);
    if (!holding()) {
        m_target->setCursor(busyCursor());
        m_poll->start();
    }
    check();
}

bool WaitCursor::holding() const {
    return m_poll->isActive();
}

void WaitCursor::check() {
    if (m_busy && m_busy())
        return;
    m_poll->stop();
    m_busy = nullptr;
    m_target->unsetCursor();
}

} // namespace mirabend
