#pragma once
// The busy cursor "\C_WAIT05.CUR" over a widget for as long as a piece of
// work that finishes on its own (the slide show opening while the office
// starts) is under way.
//
// Thread contract: UI thread only.

#include <QCursor>
#include <QObject>
#include <functional>

class QTimer;
class QWidget;

namespace mirabend {

class WaitCursor : public QObject {
    Q_OBJECT
public:
    static constexpr int kPollMs = 100;

    // The cursor belongs to `target`, which owns this object.
    explicit WaitCursor(QWidget* target);

    // Shows the busy cursor now and takes it away as soon as `busy` answers
    // false (asked now and then every kPollMs). A second hold replaces the
    // first.
    void hold(std::function<bool()> busy);
    bool holding() const;

    // The program folder's "\C_WAIT05.CUR" with its own hot spot, or the
    // system's busy cursor when the file is missing.
    static QCursor busyCursor();

private:
    void check();

    QWidget* m_target;
    QTimer* m_poll;
    std::function<bool()> m_busy;
};

} // namespace mirabend
