#pragma once
// Where the talk stands: "Slide 3 of 12" in the status bar and in the Slides
// bar, and a chapter of the running recording at every slide and pane
// change ("Slide 3: Results", "Whiteboard", ...).
//
// The slide fields `slideNow_txt` and `slide_txt` stay the source of truth:
// the counter follows their texts, whoever writes them (a navigation, "End
// Show", the slide show noticing a key pressed inside the pane). Changes
// are gathered until the event loop runs again, so a field that is
// rewritten and put back in one go (a rotation) neither flickers nor marks
// a chapter.
//
// Thread contract: UI thread only.

#include "shell/ShellContext.h"

#include <QObject>
#include <QString>

class QLabel;

namespace mirabend {

class SlideCounter : public QObject {
    Q_OBJECT
public:
    // Status panel 2 holds the counter; the label goes into the Slides bar
    // by attachTo().
    static constexpr int kPanel = 2;

    explicit SlideCounter(ShellContext& context, QObject* parent = nullptr);

    // Puts the counter label into the Slides bar (after the task pane exists).
    void attachTo(ExplorerBar& bar);
    // Reads the slide fields now (normally done from the event loop).
    void refresh();
    // A pane was chosen ("slides", "cam", "text", "draw", "web").
    void paneShown(const QString& key);

    // "Slide 3 of 12", or "No slide show" for a count of 0.
    static QString counterText(int current, int count);
    // "Slide 3: Results", or "Slide 3" without a title.
    static QString chapterTitle(int current, const QString& slideTitle);
    // The chapter of a pane other than the slides; empty for an unknown key.
    static QString paneChapter(const QString& key);

    QLabel* label() const { return m_label; }

private:
    void schedule();
    void markSlide(int current);

    ShellContext& m_ctx;
    QLabel* m_label;
    bool m_scheduled = false;
    int m_chapterSlide = 0; // the slide the last slide chapter named
};

} // namespace mirabend
