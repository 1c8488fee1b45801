#include "whiteboard/notes/NotesBoard.h"

#include "util/FontComboControl.h"
#include "util/Prompts.h"
#include "whiteboard/notes/EditorIcons.h"
#include "whiteboard/notes/rtf/RtfWriter.h"

#include <QAction>
#include <QComboBox>
#include <QEvent>
#include <QFontInfo>
#include <QGridLayout>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextEdit>
#include <QTextList>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <functional>

namespace mirabend {
namespace {

struct ButtonSpec {
    const char* key;
    const char* tip;
    const char* shortcut;
    bool checkable;
};

// In the order the click handler compares them.
const ButtonSpec kButtons[] = {
    {"bold", QT_TRANSLATE_NOOP("NotesBoard", "Bold"), "Ctrl+B", true},
    {"italic", QT_TRANSLATE_NOOP("NotesBoard", "Italic"), "Ctrl+I", true},
    {"underline", QT_TRANSLATE_NOOP("NotesBoard", "Underline"), "Ctrl+U", true},
    {"bullets", QT_TRANSLATE_NOOP("NotesBoard", "Bullets"), "Shift+F12", true},
    {"align_left", QT_TRANSLATE_NOOP("NotesBoard", "Align left"), "Ctrl+L", true},
    {"align_center", QT_TRANSLATE_NOOP("NotesBoard", "Centre"), "Ctrl+E", true},
    {"align_right", QT_TRANSLATE_NOOP("NotesBoard", "Align right"), "Ctrl+R", true},
    {"text_color", QT_TRANSLATE_NOOP("NotesBoard", "Text colour"), "", false},
    {"font", QT_TRANSLATE_NOOP("NotesBoard", "Larger text (+4 points)"), "Ctrl+]", false},
    {"fontSh", QT_TRANSLATE_NOOP("NotesBoard", "Smaller text (-4 points)"), "Ctrl+[", false},
    {"clear", QT_TRANSLATE_NOOP("NotesBoard", "Clear the board"), "", false},
};
constexpr int kFormatKeys = 7;

constexpr double kDefaultPoints = 14.0;
constexpr double kMinPoints = 1.0;
constexpr double kMaxPoints = 1638.0; // QFont's limit

// The character formats a selection covers; without a selection, the
// format the next typed character gets.
std::vector<QTextCharFormat> selectedFormats(const QTextEdit& board) {
    const QTextCursor cursor = board.textCursor();
    if (!cursor.hasSelection())
        return {board.currentCharFormat()};
    std::vector<QTextCharFormat> formats;
    const int start = cursor.selectionStart();
    const int end = cursor.selectionEnd();
    for (QTextBlock block = board.document()->findBlock(start); block.isValid() && block.position() < end;
         block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            if (fragment.position() < end && fragment.position() + fragment.length() > start)
                formats.push_back(fragment.charFormat());
        }
    }
    if (formats.empty())
        formats.push_back(board.currentCharFormat());
    return formats;
}

// The blocks a selection touches (the caret's block without one).
std::vector<QTextBlock> selectedBlocks(const QTextEdit& board) {
    const QTextCursor cursor = board.textCursor();
    std::vector<QTextBlock> blocks;
    const QTextBlock last = board.document()->findBlock(cursor.selectionEnd());
    for (QTextBlock block = board.document()->findBlock(cursor.selectionStart()); block.isValid();
         block = block.next()) {
        blocks.push_back(block);
        if (block == last)
            break;
    }
    return blocks;
}

bool hasCharacterAttribute(const QTextCharFormat& format, int code) {
    switch (code) {
    case NotesBoard::Bold:
        return format.fontWeight() >= QFont::DemiBold;
    case NotesBoard::Italic:
        return format.fontItalic();
    case NotesBoard::Underline:
        return format.fontUnderline();
    default:
        return false;
    }
}

Qt::Alignment alignmentFor(int code) {
    return code == NotesBoard::AlignCenter  ? Qt::AlignHCenter
           : code == NotesBoard::AlignRight ? Qt::AlignRight
                                            : Qt::AlignLeft;
}

int alignmentCode(Qt::Alignment alignment) {
    const Qt::Alignment h = alignment & Qt::AlignHorizontal_Mask;
    if (h & Qt::AlignHCenter)
        return NotesBoard::AlignCenter;
    if (h & Qt::AlignRight)
        return NotesBoard::AlignRight;
    return h & Qt::AlignJustify ? -1 : NotesBoard::AlignLeft;
}

} // namespace

NotesBoard::NotesBoard(QTextEdit* textBoard, Prompts& prompts, FontComboControl* picker)
    : QObject(textBoard)
    , m_board(textBoard)
    , m_prompts(prompts)
    , m_tools(new QWidget)
    , m_picker(picker ? picker : new FontComboControl(m_tools))
    , m_toolbar(new QWidget(m_tools))
    , m_timer(new QTimer(this)) {
    m_board->setAcceptRichText(true);
    // Notes are read on the stage and in the recording: larger than a form's text.
    QFont font = m_board->document()->defaultFont();
    font.setPointSizeF(kDefaultPoints);
    // The default is a generic name ("Sans Serif") that the picker does not
    // list and other programs read differently: name the family it stands for.
    font.setFamilies({QFontInfo(font).family()});
    m_board->document()->setDefaultFont(font);
    m_tools->setObjectName(QStringLiteral("notesTools"));
    m_picker->setParent(m_tools);
    m_picker->setObjectName(QStringLiteral("FontComboControl1"));
    auto* layout = new QVBoxLayout(m_tools);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(4);
    layout->addWidget(m_picker);
    layout->addWidget(m_toolbar);
    buildToolbar();

    connect(m_picker, &FontComboControl::Click, this, &NotesBoard::FontComboControl1_Click);
    connect(m_board, &QTextEdit::currentCharFormatChanged, this, [this] { followCaretFont(); });
    m_timer->setObjectName(QStringLiteral("timEditor"));
    m_timer->setInterval(kEditorIntervalMs);
    connect(m_timer, &QTimer::timeout, this, &NotesBoard::timEditor_Timer);
    m_timer->start();
    m_board->installEventFilter(this);
    followCaretFont();
}

bool NotesBoard::eventFilter(QObject* watched, QEvent* event) {
    // Showing the board means the presenter is about to write on it.
    if (watched == m_board && event->type() == QEvent::Show)
        m_board->setFocus();
    return QObject::eventFilter(watched, event);
}

NotesBoard::~NotesBoard() {
    if (m_tools && !m_tools->parent())
        delete m_tools;
}

void NotesBoard::buildToolbar() {
    m_toolbar->setObjectName(QStringLiteral("tbEditor"));
    auto* grid = new QGridLayout(m_toolbar);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(2);
    grid->setVerticalSpacing(2);
    int row = 0;
    int column = 0;
    for (const ButtonSpec& spec : kButtons) {
        const QString key = QString::fromLatin1(spec.key);
        // Character toggles, bullets and alignment on the first row; the
        // colour, size and clear commands on the second.
        if (key == QLatin1String("bullets") || key == QLatin1String("align_left"))
            ++column;
        if (key == QLatin1String("text_color")) {
            ++row;
            column = 0;
        }
        auto* action = new QAction(editorIcon(key), tr(spec.tip), m_toolbar);
        action->setObjectName(key);
        action->setData(key);
        action->setCheckable(spec.checkable);
        if (*spec.shortcut) {
            action->setShortcut(QKeySequence(QString::fromLatin1(spec.shortcut)));
            action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
            action->setToolTip(QStringLiteral("%1 (%2)").arg(
                tr(spec.tip), action->shortcut().toString(QKeySequence::NativeText)));
            // The keys work while the board has the focus.
            m_board->addAction(action);
        }
        m_toolbar->addAction(action);
        auto* toolButton = new QToolButton(m_toolbar);
        toolButton->setDefaultAction(action);
        toolButton->setAutoRaise(true);
        toolButton->setIconSize(QSize(16, 16));
        grid->addWidget(toolButton, row, column++);
        connect(action, &QAction::triggered, this,
                [this, action] { tbEditor_ButtonClick(action->data().toString()); });
    }
    grid->setColumnStretch(grid->columnCount(), 1);
    button(QStringLiteral("align_left"))->setChecked(true);
}

QAction* NotesBoard::button(const QString& key) const {
    for (QAction* action : m_toolbar->actions()) {
        if (action->data().toString() == key)
            return action;
    }
    return nullptr;
}

void NotesBoard::tbEditor_ButtonClick(const QString& clicked) {
    const QString key = clicked.trimmed();
    int index = 0;
    for (const ButtonSpec& spec : kButtons) {
        if (key == QLatin1String(spec.key))
            break;
        ++index;
    }
    if (index < kFormatKeys) {
        applyFormat(index);
        return;
    }
    if (key == QLatin1String("text_color"))
        chooseTextColour();
    else if (key == QLatin1String("font"))
        stepFontSize(kFontStep);
    else if (key == QLatin1String("fontSh"))
        stepFontSize(-kFontStep);
    else if (key == QLatin1String("clear"))
        clearText();
    // Any other key does nothing.
}

bool NotesBoard::selectionHas(int code) const {
    if (code == Bullets) {
        for (const QTextBlock& block : selectedBlocks(*m_board)) {
            if (!block.textList())
                return false;
        }
        return true;
    }
    if (code >= AlignLeft)
        return alignmentCode(m_board->textCursor().blockFormat().alignment()) == code;
    // A mixed selection counts as off.
    for (const QTextCharFormat& format : selectedFormats(*m_board)) {
        if (!hasCharacterAttribute(format, code))
            return false;
    }
    return true;
}

void NotesBoard::applyFormat(int code) {
    if (code < Bold || code > AlignRight)
        return;
    if (code <= Underline) {
        toggleCharacter(code);
    } else if (code == Bullets) {
        toggleBullets();
    } else {
        m_board->setAlignment(alignmentFor(code));
        for (int other = AlignLeft; other <= AlignRight; ++other)
            button(QString::fromLatin1(kButtons[other].key))->setChecked(other == code);
    }
    m_board->setFocus();
}

void NotesBoard::toggleCharacter(int code) {
    const bool on = !selectionHas(code);
    QTextCharFormat change;
    if (code == Bold)
        change.setFontWeight(on ? QFont::Bold : QFont::Normal);
    else if (code == Italic)
        change.setFontItalic(on);
    else
        change.setFontUnderline(on);
    m_board->mergeCurrentCharFormat(change);
    button(QString::fromLatin1(kButtons[code].key))->setChecked(on);
}

void NotesBoard::toggleBullets() {
    const bool on = !selectionHas(Bullets);
    QTextCursor cursor = m_board->textCursor();
    cursor.beginEditBlock();
    if (on) {
        cursor.createList(QTextListFormat::ListDisc);
    } else {
        for (const QTextBlock& block : selectedBlocks(*m_board)) {
            if (QTextList* list = block.textList())
                list->remove(block);
            QTextCursor at(block);
            QTextBlockFormat format = at.blockFormat();
            format.setIndent(0);
            at.setBlockFormat(format);
        }
    }
    cursor.endEditBlock();
    button(QStringLiteral("bullets"))->setChecked(on);
}

void NotesBoard::stepFontSize(int points) {
    const double fallback = m_board->document()->defaultFont().pointSizeF();
    auto stepped = [&](const QTextCharFormat& format) {
        const double now = format.fontPointSize() > 0 ? format.fontPointSize() : fallback;
        return std::clamp(now + points, kMinPoints, kMaxPoints);
    };
    QTextCursor cursor = m_board->textCursor();
    if (!cursor.hasSelection()) {
        QTextCharFormat change;
        change.setFontPointSize(stepped(m_board->currentCharFormat()));
        m_board->mergeCurrentCharFormat(change);
        return;
    }
    // Each run keeps its own size relation to the others.
    struct Run {
        int start, end;
        double points;
    };
    std::vector<Run> runs;
    const int start = cursor.selectionStart();
    const int end = cursor.selectionEnd();
    for (QTextBlock block = m_board->document()->findBlock(start); block.isValid() && block.position() < end;
         block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment f = it.fragment();
            const int from = std::max(start, f.position());
            const int to = std::min(end, f.position() + f.length());
            if (from < to)
                runs.push_back({from, to, stepped(f.charFormat())});
        }
    }
    cursor.beginEditBlock();
    for (const Run& run : runs) {
        QTextCursor part(m_board->document());
        part.setPosition(run.start);
        part.setPosition(run.end, QTextCursor::KeepAnchor);
        QTextCharFormat change;
        change.setFontPointSize(run.points);
        part.mergeCharFormat(change);
    }
    cursor.endEditBlock();
}

void NotesBoard::chooseTextColour() {
    const QTextCharFormat format = m_board->currentCharFormat();
    const QColor initial = format.foreground().style() == Qt::NoBrush ? m_board->palette().text().color()
                                                                      : format.foreground().color();
    const std::optional<QColor> colour = m_prompts.chooseColor(initial, tr("Text colour"));
    if (!colour || !colour->isValid())
        return;
    QTextCharFormat change;
    change.setForeground(*colour);
    m_board->mergeCurrentCharFormat(change);
}

void NotesBoard::clearText() {
    QTextCursor cursor(m_board->document());
    cursor.beginEditBlock();
    cursor.select(QTextCursor::Document);
    cursor.removeSelectedText();
    if (QTextList* list = cursor.block().textList())
        list->remove(cursor.block());
    cursor.setBlockFormat(QTextBlockFormat());
    cursor.endEditBlock();
    m_board->setTextCursor(cursor);
}

void NotesBoard::timEditor_Timer() {
    for (int code = Bold; code <= AlignRight; ++code) {
        QAction* action = button(QString::fromLatin1(kButtons[code].key));
        const bool pressed = selectionHas(code);
        if (action->isChecked() != pressed)
            action->setChecked(pressed);
    }
}

void NotesBoard::FontComboControl1_Click() {
    const QString family = m_picker->curfont();
    if (family.isEmpty())
        return;
    QTextCharFormat change;
    change.setFontFamilies(QStringList{family});
    m_board->mergeCurrentCharFormat(change);
    m_board->setFocus();
}

void NotesBoard::followCaretFont() {
    // The picker shows the caret's font, unless the user is typing in it.
    if (m_picker->FontCombo()->hasFocus())
        return;
    const QStringList families = m_board->currentCharFormat().fontFamilies().toStringList();
    m_picker->TheFont(families.isEmpty() ? m_board->document()->defaultFont().family() : families.first());
}

void NotesBoard::WriteProperties(PropertyBag& bag) const {
    bag.WriteProperty(QStringLiteral("Text"), m_board->toPlainText(), QString());
    bag.WriteProperty(QStringLiteral("TextRTF"), QString::fromLatin1(writeRtf(*m_board->document())),
                      QString());
}

RtfReadResult NotesBoard::ReadProperties(const PropertyBag& bag) {
    m_board->setPlainText(bag.ReadProperty(QStringLiteral("Text"), QString()));
    const QString rich = bag.ReadProperty(QStringLiteral("TextRTF"), QString());
    RtfReadResult result;
    if (rich.isEmpty())
        return result;
    result = readRtf(rich.toLatin1(), *m_board->document());
    if (result.failure.code == RtfProblem::NotRtf) {
        // Like the rich-text box: a value that is no RTF is taken as text.
        m_board->setPlainText(rich);
        result = {};
    }
    return result;
}

} // namespace mirabend
