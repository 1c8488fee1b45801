#include "shell/SlideCounter.h"

#include "shell/MainStatusBar.h"
#include "util/ExplorerBar.h"

#include <QLabel>
#include <QLineEdit>
#include <QTimer>

namespace mirabend {

namespace {

int number(const QLineEdit* field) {
    return field ? field->text().toInt() : 0;
}

} // namespace

SlideCounter::SlideCounter(ShellContext& context, QObject* parent)
    : QObject(parent)
    , m_ctx(context)
    , m_label(new QLabel) {
    m_label->setObjectName(QStringLiteral("slideCounter_lb"));
    m_label->setAlignment(Qt::AlignCenter);
    m_label->setStyleSheet(QStringLiteral("font-weight: bold; padding: 4px;"));
    m_label->setToolTip(tr("The slide the show is on"));
    for (QLineEdit* field : {m_ctx.fields.slideNow_txt, m_ctx.fields.slide_txt}) {
        if (field)
            connect(field, &QLineEdit::textChanged, this, [this] { schedule(); });
    }
    if (QLabel* panel = m_ctx.status ? m_ctx.status->panel(kPanel) : nullptr) {
        panel->setMinimumWidth(120);
        panel->setToolTip(tr("The slide the show is on"));
    }
    refresh();
}

void SlideCounter::attachTo(ExplorerBar& bar) {
    if (ExplorerBarGroup* slides = bar.group(QStringLiteral("powerpoint")))
        slides->setPanel(m_label); // the group takes it
}

QString SlideCounter::counterText(int current, int count) {
    if (count <= 0)
        return tr("No slide show");
    return tr("Slide %1 of %2").arg(current).arg(count);
}

QString SlideCounter::chapterTitle(int current, const QString& slideTitle) {
    const QString slide = tr("Slide %1").arg(current);
    return slideTitle.isEmpty() ? slide : slide + QStringLiteral(": ") + slideTitle;
}

QString SlideCounter::paneChapter(const QString& key) {
    if (key == QLatin1String("cam"))
        return tr("Camera");
    if (key == QLatin1String("text"))
        return tr("Notes board");
    if (key == QLatin1String("draw"))
        return tr("Whiteboard");
    if (key == QLatin1String("web"))
        return tr("Web page");
    return {};
}

void SlideCounter::schedule() {
    if (m_scheduled)
        return;
    m_scheduled = true;
    QTimer::singleShot(0, this, [this] { refresh(); });
}

void SlideCounter::refresh() {
    m_scheduled = false;
    const int current = number(m_ctx.fields.slideNow_txt);
    const int count = number(m_ctx.fields.slide_txt);
    const QString text = counterText(current, count);
    m_label->setText(text);
    if (m_ctx.status)
        m_ctx.status->setPanelText(kPanel, text);
    if (count <= 0 || current <= 0) {
        m_chapterSlide = 0;
        return;
    }
    if (current != m_chapterSlide)
        markSlide(current);
}

void SlideCounter::markSlide(int current) {
    m_chapterSlide = current;
    m_ctx.ports.recording->addChapter(chapterTitle(current, m_ctx.ports.slides->slideTitle()));
}

void SlideCounter::paneShown(const QString& key) {
    if (key == QLatin1String("slides")) {
        // Back to the slides: the chapter names the slide they show.
        const int current = number(m_ctx.fields.slideNow_txt);
        if (current > 0 && number(m_ctx.fields.slide_txt) > 0)
            markSlide(current);
        return;
    }
    const QString title = paneChapter(key);
    if (!title.isEmpty())
        m_ctx.ports.recording->addChapter(title);
}

} // namespace mirabend
