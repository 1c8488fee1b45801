#include "shell/slideshow/SlideShow.h"

#include "util/ProgramFolder.h"
#include "util/Prompts.h"
#include "util/WindowStyle.h"
#include "util/WindowSystem.h"

#include <QFileInfo>
#include <QLineEdit>
#include <QMainWindow>
#include <QWidget>
#include <QtDebug>

namespace mirabend {

namespace {

const QString kInitialFileName = QStringLiteral("*.ppt; *.pptx; *.pps");
const QString kMessageTitle = QStringLiteral("Mirabend 1.0");

void setText(QLineEdit* field, const QString& text) {
    if (field)
        field->setText(text);
}

} // namespace

const QString& SlideShow::failureText() {
    static const QString text = QStringLiteral("Mirabend can't open the presentation!");
    return text;
}

const QString& SlideShow::captionPrefix() {
    static const QString text = QStringLiteral("Mirabend 1.0 ");
    return text;
}

const QString& SlideShow::welcomeName() {
    static const QString text = QStringLiteral("\\Welcome.ppt");
    return text;
}

FileRequest SlideShow::openDialogRequest() {
    FileRequest request;
    request.title = QStringLiteral("Open PowerPoint File");
    request.filter = QStringLiteral("PowerPoint 2003 (*.ppt)|*.ppt|PowerPoint 2007/2010 (*.pptx)|*.pptx|"
                                    "PowerPointShow (*.pps)|*.pps");
    request.filterIndex = 1;
    request.initialFileName = kInitialFileName;
    request.defaultExtension = QStringLiteral("ppt; ppx, pps");
    return request;
}

SlideShow::SlideShow(const ShellFields& fields, std::unique_ptr<PresentationProgram> program,
                     WindowSystem* system, QObject* parent)
    : QObject(parent)
    , m_fields(fields)
    , m_program(std::move(program))
    , m_system(system)
    , m_poll(new QTimer(this)) {
    m_poll->setInterval(kPollMs);
    connect(m_poll, &QTimer::timeout, this, [this] { PPTInfo(); });
    connect(m_program.get(), &PresentationProgram::prepared, this, &SlideShow::onPrepared);
    connect(m_program.get(), &PresentationProgram::lost, this, &SlideShow::onLost);
}

SlideShow::~SlideShow() {
    disconnect(m_program.get(), nullptr, this, nullptr);
    m_program->shutdown();
}

void SlideShow::openSlides() {
    if (!m_fields.prompts)
        return;
    const FileAnswer answer = m_fields.prompts->openFile(openDialogRequest());
    // A dialog that comes back with its own pattern as the name was cancelled.
    if (!answer.accepted() || answer.fileName == kInitialFileName)
        return;
    const QString title =
        answer.fileTitle.isEmpty() ? QFileInfo(answer.fileName).fileName() : answer.fileTitle;
    beginOpen(answer.fileName, title);
}

void SlideShow::openSlidesStart() {
    QString path = ProgramFolder::dataFile(welcomeName());
    if (path.isEmpty())
        path = ProgramFolder::writableFile(welcomeName()); // fails below, with the path in the detail
    beginOpen(path, ProgramFolder::normalise(welcomeName()));
}

bool SlideShow::openFile(const QString& path) {
    const QFileInfo info(path);
    if (!info.isFile())
        return false;
    beginOpen(info.absoluteFilePath(), info.fileName());
    return true;
}

void SlideShow::beginOpen(const QString& path, const QString& title) {
    if (m_fields.window)
        m_fields.window->setWindowTitle(captionPrefix() + title);
    setText(m_fields.Text1, path);
    if (!QFileInfo(path).isFile()) {
        // Nothing to show: no reason to start the presentation program for it.
        m_pending.reset();
        fail({ShowError::OpenFailed, "no such file: " + path.toStdString()});
        return;
    }
    const bool waiting = m_pending.has_value();
    m_pending = Pending{path, title};
    if (m_program->isReady())
        showPending();
    else if (!waiting)
        m_program->prepare(); // showPending() follows from onPrepared()
}

void SlideShow::onPrepared(const ShowFailure& failure) {
    if (!m_pending)
        return;
    if (failure) {
        m_pending.reset();
        m_retrying = false;
        fail(failure);
        return;
    }
    showPending();
}

void SlideShow::showPending() {
    const Pending pending = *m_pending;
    m_pending.reset();
    if (m_showRunning)
        clearPosition(); // the show that ran ends with this open
    setRunning(false);
    if (!m_fields.frmSS) {
        fail({ShowError::ShowFailed, "no slide pane"});
        return;
    }
    const auto pane = static_cast<NativeHandle>(m_fields.frmSS->winId());
    const ShowFailure failure = m_program->startShow(pending.path, pane, paneSize());
    if (failure.code == ShowError::ProgramLost && !m_retrying) {
        // The program died under the open (an office can still end itself
        // just after it started): once more, on a fresh one.
        m_retrying = true;
        m_pending = pending;
        m_program->prepare();
        return;
    }
    m_retrying = false;
    if (failure) {
        fail(failure);
        return;
    }
    setRunning(true);
    if (!m_program->showIsEmbedded())
        embedTopLevelShow();
    m_fields.frmSS->update();
    setText(m_fields.ppt_txt, QStringLiteral("ppt"));
    PPTInfo();
    Q_EMIT finished(true);
}

void SlideShow::fail(const ShowFailure& failure) {
    qWarning("Mirabend: slide show failed (%d): %s", static_cast<int>(failure.code), failure.detail.c_str());
    setRunning(false);
    setText(m_fields.ppt_txt, QStringLiteral("no"));
    if (m_fields.prompts)
        m_fields.prompts->show(failureText(), kMessageTitle, PromptIcon::Critical);
    Q_EMIT finished(false);
}

void SlideShow::onLost() {
    if (!m_showRunning)
        return;
    // The pane is empty now (the show's window went with the program); the
    // next open starts a fresh program.
    clearPosition();
    fail({ShowError::ProgramLost, "the presentation program ended during the show"});
}

QSize SlideShow::paneSize() const {
    if (!m_fields.frmSS)
        return {};
    const qreal ratio = m_fields.frmSS->devicePixelRatioF();
    return QSize(qRound(m_fields.frmSS->width() * ratio), qRound(m_fields.frmSS->height() * ratio));
}

void SlideShow::embedTopLevelShow() {
    if (!m_fields.frmSS)
        return;
    WindowSystem& system = m_system ? *m_system : windowSystem();
    const NativeHandle show = system.findWindowByClass(m_program->showWindowClass());
    if (!show)
        return;
    const auto pane = static_cast<NativeHandle>(m_fields.frmSS->winId());
    system.setParent(show, pane);
    if (m_fields.window)
        system.setWindowText(show, m_fields.window->windowTitle());
    WindowStyle style(&system);
    style.Border(WindowStyle::kFalse);
    style.Sysmenu(WindowStyle::kFalse);
    style.Minimize(WindowStyle::kFalse);
    style.Maximize(WindowStyle::kFalse);
    style.Sizebox(WindowStyle::kFalse);
    style.popup(WindowStyle::kFalse);
    style.HWnd(show);
    style.Update_Style();
    const QSize size = paneSize();
    system.moveResize(show, 0, 0, size.width(), size.height());
}

void SlideShow::fitShow() {
    if (!m_showRunning)
        return;
    m_program->resizeShow(paneSize());
    if (!m_program->showIsEmbedded())
        embedTopLevelShow();
    if (m_fields.frmSS)
        m_fields.frmSS->update();
}

void SlideShow::OpenSlidesResize() {
    fitShow();
    // The show keeps its slide through the refit; the fields say so again.
    PPTInfo();
}

void SlideShow::PresentSize() {
    fitShow();
    // A rotation rewrites the slide number field; the show still knows.
    PPTInfo();
}

QString SlideShow::slideTitle() {
    return m_showRunning ? m_program->slideTitle() : QString();
}

void SlideShow::setRunning(bool running) {
    m_showRunning = running;
    if (running)
        m_poll->start();
    else
        m_poll->stop();
}

void SlideShow::clearPosition() {
    setText(m_fields.slideNow_txt, QStringLiteral("0"));
    setText(m_fields.slide_txt, QStringLiteral("0"));
}

void SlideShow::PPTInfo() {
    if (!m_showRunning)
        return;
    const std::optional<SlidePosition> position = m_program->position();
    if (!position)
        return;
    setText(m_fields.slideNow_txt, QString::number(position->current));
    setText(m_fields.slide_txt, QString::number(position->count));
}

void SlideShow::navigate(const QString& key) {
    std::optional<SlideMove> move;
    if (key == QLatin1String("first"))
        move = SlideMove::First;
    else if (key == QLatin1String("next"))
        move = SlideMove::Next;
    else if (key == QLatin1String("previous"))
        move = SlideMove::Previous;
    else if (key == QLatin1String("last"))
        move = SlideMove::Last;
    else if (key != QLatin1String("exit"))
        return;

    if (m_showRunning) {
        if (move) {
            const ShowFailure failure = m_program->go(*move);
            if (failure.code == ShowError::ProgramLost) {
                fail(failure);
                return;
            }
        } else {
            // Ended here, the show has no slide to report any more.
            m_program->endShow();
            setRunning(false);
            clearPosition();
        }
    }
    PPTInfo();
    if (m_fields.Text3 && m_fields.slideNow_txt)
        m_fields.Text3->setText(m_fields.slideNow_txt->text());
}

void SlideShow::shutdown() {
    m_pending.reset();
    setRunning(false);
    m_program->shutdown();
}

} // namespace mirabend
