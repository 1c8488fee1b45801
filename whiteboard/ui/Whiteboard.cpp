#include "whiteboard/ui/Whiteboard.h"

#include "util/Prompts.h"
#include "whiteboard/model/ToolTable.h"
#include "whiteboard/ui/CanvasTextBox.h"
#include "whiteboard/ui/CanvasView.h"
#include "whiteboard/ui/DrawPanel.h"

#include <QApplication>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QLayout>
#include <QLineEdit>
#include <QMimeData>

namespace mirabend {

Whiteboard::Whiteboard(Prompts& prompts, QObject* parent)
    : QObject(parent)
    , m_prompts(prompts)
    , m_editor(std::make_unique<CanvasEditor>(QSize(580, 435))) {
    setObjectName(QStringLiteral("whiteboard"));
    m_editor->changed = [this](QRect area) {
        onCanvasChanged(area);
    };
    m_editor->stateChanged = [this] {
        onStateChanged();
    };
    m_editor->placeText = [this](QPoint p) {
        if (m_textBox)
            m_textBox->place(p);
    };
    m_pages.resize(1);
}

Whiteboard::~Whiteboard() {
    // The canvas widgets work on the editor: they go with it, before it.
    m_editor->changed = nullptr;
    m_editor->stateChanged = nullptr;
    m_editor->placeText = nullptr;
    delete m_picProg.data();
    delete m_picPaint.data();
}

void Whiteboard::attachCanvas(QWidget* parentPic) {
    m_picPaint = new CanvasView(*m_editor, m_cursors, QStringLiteral("picPaint"), parentPic);
    // `picProg` carries the same handlers; the layout does not show it.
    m_picProg = new CanvasView(*m_editor, m_cursors, QStringLiteral("picProg"), parentPic);
    m_picProg->hide();
    if (QLayout* layout = parentPic->layout()) {
        // The pane's placeholder gives way to the canvas.
        while (QLayoutItem* item = layout->takeAt(0)) {
            if (item->widget())
                item->widget()->deleteLater();
            delete item;
        }
        layout->addWidget(m_picPaint);
    } else {
        m_picPaint->setGeometry(parentPic->rect());
    }
    m_textBox = new CanvasTextBox(*m_editor, m_picPaint);
    for (CanvasView* view : {m_picPaint, m_picProg}) {
        connect(view, &CanvasView::toolKeyPressed, this, &Whiteboard::chooseTool);
        connect(view, &CanvasView::undoRequested, this, &Whiteboard::undo);
        connect(view, &CanvasView::redoRequested, this, &Whiteboard::redo);
        connect(view, &CanvasView::pasteRequested, this, &Whiteboard::paste);
        connect(view, &CanvasView::pageRequested, this,
                [this](int step) { step > 0 ? nextPage() : previousPage(); });
    }
    m_editor->setViewport(parentPic->size());
    parentPic->installEventFilter(this);
}

bool Whiteboard::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show && m_picPaint && watched == m_picPaint->parentWidget()) {
        // After the pane has shown its children. Someone typing elsewhere
        // (notes, a field, the web page) keeps the keys.
        QMetaObject::invokeMethod(
            this,
            [this] {
                const QWidget* typing = QApplication::focusWidget();
                while (typing && !typing->inherits("QLineEdit") && !typing->inherits("QTextEdit") &&
                       !typing->inherits("QPlainTextEdit") && !typing->inherits("QAbstractSpinBox") &&
                       !typing->inherits("QWebEngineView"))
                    typing = typing->parentWidget();
                if (m_picPaint && m_picPaint->isVisible() && !typing)
                    m_picPaint->setFocus(Qt::OtherFocusReason);
            },
            Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

QWidget* Whiteboard::createDrawPanel() {
    m_panel = new DrawPanel(*this);
    connect(this, &Whiteboard::stateChanged, m_panel, &DrawPanel::refresh);
    m_panel->refresh();
    return m_panel;
}

void Whiteboard::setFilters(FilterOperation operation, std::vector<FilterChoice> choices) {
    m_editor->setFilterOperation(std::move(operation));
    m_filters = std::move(choices);
    if (!m_filters.empty())
        m_editor->setFilterNumber(m_filters.front().number);
    if (m_panel)
        m_panel->refresh();
}

void Whiteboard::optTools_MouseDown(int tool) {
    if (m_textBox)
        m_textBox->commit();
    m_editor->selectTool(tool);
}

void Whiteboard::optTools_Click(int /*tool*/) {
    if (revealPane)
        revealPane();
    if (m_picPaint) {
        m_picPaint->refreshCursor();
        m_picPaint->setFocus(Qt::OtherFocusReason);
    }
    Q_EMIT stateChanged();
}

void Whiteboard::chooseTool(int tool) {
    optTools_MouseDown(tool);
    optTools_Click(tool);
}

void Whiteboard::lblForeColor_DblClick() {
    if (const auto color = m_prompts.chooseColor(QColor(m_editor->state().foreColor), tr("Drawing colour")))
        m_editor->setForeColor(color->rgb());
}

void Whiteboard::lblFillColor_DblClick() {
    if (const auto color = m_prompts.chooseColor(QColor(m_editor->state().fillColor), tr("Fill colour")))
        m_editor->setFillColor(color->rgb());
}

void Whiteboard::undo() {
    if (m_textBox)
        m_textBox->discard();
    m_editor->undo();
    if (m_picPaint)
        m_editor->setViewport(m_picPaint->size());
}

void Whiteboard::redo() {
    m_editor->redo();
    if (m_picPaint)
        m_editor->setViewport(m_picPaint->size());
}

void Whiteboard::paste() {
    const QClipboard* clipboard = QGuiApplication::clipboard();
    QImage image = clipboard ? clipboard->image() : QImage();
    if (image.isNull()) {
        m_prompts.show(tr("The clipboard holds no picture to paste."), QStringLiteral("Mirabend 1.0"),
                       PromptIcon::Information);
        return;
    }
    // The picture lands at the top left of what the pane shows; one larger
    // than that (a screenshot) is made to fit, keeping its proportions.
    const QPointF corner = m_editor->toCanvas(QPointF(0, 0));
    const QSize shown = (QSizeF(m_editor->view().viewport) / m_editor->view().zoom)
                            .toSize()
                            .boundedTo(m_editor->surface().image().size());
    if (!shown.isEmpty() && (image.width() > shown.width() || image.height() > shown.height()))
        image = image.scaled(shown, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    if (m_textBox)
        m_textBox->commit();
    m_editor->pasteImage(image, QPoint(qRound(corner.x()), qRound(corner.y())));
    // The canvas takes the keys again, so Escape drops the picture.
    if (m_picPaint)
        m_picPaint->setFocus(Qt::OtherFocusReason);
    Q_EMIT stateChanged();
}

void Whiteboard::clearBoard() {
    if (m_textBox)
        m_textBox->discard();
    m_editor->clearBoard();
}

void Whiteboard::saveBoardAs() {
    if (m_textBox)
        m_textBox->commit();
    m_editor->commitSelection();
    FileRequest request;
    request.title = tr("Save board as");
    request.filter = QStringLiteral("PNG picture (*.png)|*.png");
    request.defaultExtension = QStringLiteral("png");
    request.initialFileName = QStringLiteral("board.png");
    const FileAnswer answer = m_prompts.saveFile(request);
    if (!answer.accepted())
        return;
    QString file = answer.fileName;
    if (!file.endsWith(QLatin1String(".png"), Qt::CaseInsensitive))
        file += QLatin1String(".png");
    if (!m_editor->surface().image().save(file, "PNG"))
        m_prompts.show(
            tr("Mirabend can't save the board to %1.\nCheck that the folder exists and that you may "
               "write there.")
                .arg(file),
            QStringLiteral("Mirabend 1.0"), PromptIcon::Exclamation);
}

void Whiteboard::chooseTextFont(const QFont& font) {
    m_editor->setTextFont(font);
    if (m_textBox)
        m_textBox->reposition();
}

void Whiteboard::switchToPage(int page) {
    if (page == m_page || page < 0)
        return;
    if (m_textBox)
        m_textBox->commit();
    m_editor->DblClick();
    m_editor->commitSelection();
    Page& leaving = m_pages[static_cast<std::size_t>(m_page)];
    leaving.image = m_editor->surface().image().copy();
    leaving.history = m_editor->history();
    if (page >= pageCount())
        m_pages.resize(static_cast<std::size_t>(page) + 1);
    m_page = page;
    Page& entering = m_pages[static_cast<std::size_t>(page)];
    if (entering.image.isNull()) {
        QImage blank(m_editor->surface().image().size(), QImage::Format_RGB32);
        blank.fill(m_editor->surface().BackColor());
        m_editor->loadImage(blank);
    } else {
        m_editor->loadImage(entering.image);
        m_editor->history() = entering.history;
    }
    if (m_picPaint)
        m_editor->setViewport(m_picPaint->size());
    Q_EMIT stateChanged();
}

void Whiteboard::nextPage() {
    switchToPage(m_page + 1);
}

void Whiteboard::previousPage() {
    switchToPage(m_page - 1);
}

void Whiteboard::onCanvasChanged(const QRect& area) {
    for (CanvasView* view : {m_picPaint, m_picProg}) {
        if (view && view->isVisible())
            view->repaintCanvas(area);
    }
}

void Whiteboard::onStateChanged() {
    for (CanvasView* view : {m_picPaint, m_picProg}) {
        if (view) {
            view->refreshCursor();
            view->update();
        }
    }
    if (m_textBox)
        m_textBox->reposition();
    Q_EMIT stateChanged();
}

} // namespace mirabend
