#include "whiteboard/notes/rtf/RtfReader.h"

#include "whiteboard/notes/rtf/RtfLexer.h"

#include <QColor>
#include <QHash>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <algorithm>
#include <utility>
#include <vector>

namespace mirabend {
namespace {

// Nesting deeper than this is not written by any word processor; content
// below it is left out so a hostile file cannot exhaust the stack of states.
constexpr std::size_t kMaxDepth = 200;
constexpr int kMinHalfPoints = 2;
constexpr int kMaxHalfPoints = 3276; // Qt's largest point size, doubled

enum class Destination { Body, FontTable, ColourTable, ListStyle, Skip };

struct GroupState {
    Destination destination = Destination::Body;
    int font = -1;
    int halfPoints = 24;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    int colour = 0;
    int unicodeSkip = 1;
};

struct ParagraphState {
    Qt::Alignment alignment = Qt::AlignLeft;
    bool bullet = false;
};

// Windows-1252 differs from Latin-1 only in 0x80..0x9F.
const char16_t kCp1252High[32] = {0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
                                  0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

QChar fromCodePage(unsigned char byte) {
    if (byte >= 0x80 && byte < 0xA0)
        return QChar(kCp1252High[byte - 0x80]);
    return QChar(byte);
}

// Destinations whose text is not part of the document.
bool isSkippedDestination(const QByteArray& word) {
    static const char* const kSkipped[] = {
        "stylesheet",   "info",       "pict",    "header",    "headerl",    "headerr",   "headerf",
        "footer",       "footerl",    "footerr", "footerf",   "footnote",   "listtable", "listoverridetable",
        "listtext",     "pntext",     "object",  "objdata",   "nonshppict", "shppict",   "xe",
        "tc",           "annotation", "atnid",   "atnauthor", "fldinst",    "themedata", "colorschememapping",
        "latentstyles", "datastore",  "revtbl",  "rsidtbl",   "generator",  "filetbl",   "private",
        "template",     "mmathPr",    "xmlnstbl"};
    for (const char* name : kSkipped) {
        if (word == name)
            return true;
    }
    return false;
}

class Reader {
public:
    Reader(const QByteArray& rtf, QTextDocument& document)
        : m_lexer(rtf)
        , m_document(document)
        , m_cursor(&document) {}

    RtfReadResult run();

private:
    GroupState& state() { return m_stack.back(); }
    void damaged(const char* what);
    void word(const RtfToken& token);
    void symbol(char c);
    void text(const QString& text);
    void character(QChar c);
    void bodyWord(const QByteArray& word, bool hasParam, int param);
    void endParagraph();
    void applyParagraph();
    QTextCharFormat charFormat() const;

    RtfLexer m_lexer;
    QTextDocument& m_document;
    QTextCursor m_cursor;
    std::vector<GroupState> m_stack;
    ParagraphState m_paragraph;
    QHash<int, QString> m_fonts;
    std::vector<QColor> m_colours;
    int m_fontEntry = -1;
    QString m_fontName;
    int m_red = -1, m_green = -1, m_blue = -1;
    bool m_starPending = false;
    bool m_paragraphPending = false;
    int m_skipChars = 0;
    int m_deepDrops = 0;
    RtfReadResult m_result;
};

void Reader::damaged(const char* what) {
    if (m_result.skippedParts++ == 0)
        m_result.failure = {RtfProblem::Damaged, what};
}

QTextCharFormat Reader::charFormat() const {
    const GroupState& s = m_stack.back();
    QTextCharFormat format;
    const auto font = m_fonts.constFind(s.font);
    if (font != m_fonts.cend() && !font->isEmpty())
        format.setFontFamilies({*font});
    format.setFontPointSize(s.halfPoints / 2.0);
    format.setFontWeight(s.bold ? QFont::Bold : QFont::Normal);
    format.setFontItalic(s.italic);
    format.setFontUnderline(s.underline);
    if (s.colour > 0 && s.colour < static_cast<int>(m_colours.size()) && m_colours[s.colour].isValid())
        format.setForeground(m_colours[s.colour]);
    return format;
}

void Reader::text(const QString& text) {
    if (text.isEmpty())
        return;
    switch (state().destination) {
    case Destination::Body:
        if (m_paragraphPending) {
            m_cursor.insertBlock(QTextBlockFormat(), charFormat());
            m_paragraphPending = false;
        }
        m_cursor.insertText(text, charFormat());
        break;
    case Destination::FontTable:
        for (QChar c : text) {
            if (c == QLatin1Char(';')) {
                if (m_fontEntry >= 0 && !m_fonts.contains(m_fontEntry))
                    m_fonts.insert(m_fontEntry, m_fontName.trimmed());
                m_fontName.clear();
            } else {
                m_fontName.append(c);
            }
        }
        break;
    case Destination::ColourTable:
        for (QChar c : text) {
            if (c != QLatin1Char(';'))
                continue;
            const bool set = m_red >= 0 || m_green >= 0 || m_blue >= 0;
            m_colours.push_back(set ? QColor(std::clamp(m_red, 0, 255), std::clamp(m_green, 0, 255),
                                             std::clamp(m_blue, 0, 255))
                                    : QColor());
            m_red = m_green = m_blue = -1;
        }
        break;
    case Destination::ListStyle:
    case Destination::Skip:
        break;
    }
}

void Reader::character(QChar c) {
    if (m_skipChars > 0) {
        --m_skipChars;
        return;
    }
    text(QString(c));
}

void Reader::applyParagraph() {
    QTextBlockFormat block = m_cursor.blockFormat();
    block.setAlignment(m_paragraph.alignment);
    m_cursor.setBlockFormat(block);
    const QTextBlock current = m_cursor.block();
    if (!m_paragraph.bullet) {
        if (QTextList* list = current.textList())
            list->remove(current);
        return;
    }
    if (current.textList())
        return;
    const QTextBlock previous = current.previous();
    if (previous.isValid() && previous.textList())
        previous.textList()->add(current);
    else
        m_cursor.createList(QTextListFormat::ListDisc);
}

void Reader::endParagraph() {
    if (m_paragraphPending) {
        m_cursor.insertBlock(QTextBlockFormat(), charFormat());
        m_paragraphPending = false;
    }
    applyParagraph();
    m_paragraphPending = true;
}

void Reader::symbol(char c) {
    switch (c) {
    case '\\':
    case '{':
    case '}':
        character(QLatin1Char(c));
        break;
    case '~':
        character(QChar(0x00A0));
        break;
    case '_':
        character(QChar(0x2011));
        break;
    case '\n':
        if (state().destination == Destination::Body)
            endParagraph();
        break;
    case '*':
        m_starPending = true;
        break;
    default: // \- (optional hyphen), \| and the like carry no text
        break;
    }
}

void Reader::bodyWord(const QByteArray& w, bool hasParam, int param) {
    GroupState& s = state();
    const bool on = !hasParam || param != 0;
    if (w == "par" || w == "sect" || w == "page" || w == "row") {
        endParagraph();
    } else if (w == "pard") {
        m_paragraph = ParagraphState();
    } else if (w == "plain") {
        const GroupState kept = s;
        s = GroupState();
        s.destination = kept.destination;
        s.unicodeSkip = kept.unicodeSkip;
    } else if (w == "ql") {
        m_paragraph.alignment = Qt::AlignLeft;
    } else if (w == "qc") {
        m_paragraph.alignment = Qt::AlignHCenter;
    } else if (w == "qr") {
        m_paragraph.alignment = Qt::AlignRight;
    } else if (w == "qj") {
        m_paragraph.alignment = Qt::AlignJustify;
    } else if (w == "ls") {
        m_paragraph.bullet = hasParam && param > 0;
    } else if (w == "b") {
        s.bold = on;
    } else if (w == "i") {
        s.italic = on;
    } else if (w == "ul" || w == "uld" || w == "uldb" || w == "ulw" || w == "ulth" || w == "uldash") {
        s.underline = on;
    } else if (w == "ulnone") {
        s.underline = false;
    } else if (w == "f") {
        s.font = hasParam ? param : -1;
    } else if (w == "fs") {
        if (hasParam)
            s.halfPoints = std::clamp(param, kMinHalfPoints, kMaxHalfPoints);
    } else if (w == "cf") {
        s.colour = hasParam ? param : 0;
    } else {
        // Words that stand for one character.
        static const std::pair<const char*, char16_t> kSymbols[] = {
            {"tab", u'\t'},        {"cell", u'\t'},    {"line", QChar::LineSeparator},
            {"emdash", 0x2014},    {"endash", 0x2013}, {"bullet", 0x2022},
            {"lquote", 0x2018},    {"rquote", 0x2019}, {"ldblquote", 0x201C},
            {"rdblquote", 0x201D},
        };
        for (const auto& [name, symbol] : kSymbols) {
            if (w == name) {
                character(QChar(symbol));
                break;
            }
        }
    }
}

void Reader::word(const RtfToken& token) {
    const QByteArray& w = token.word;
    GroupState& s = state();
    const bool starred = m_starPending;
    m_starPending = false;

    // Words that open a destination.
    if (w == "fonttbl") {
        s.destination = Destination::FontTable;
        return;
    }
    if (w == "colortbl") {
        s.destination = Destination::ColourTable;
        return;
    }
    if (w == "pn") {
        s.destination = Destination::ListStyle;
        return;
    }
    if (isSkippedDestination(w) || starred) {
        s.destination = Destination::Skip;
        return;
    }
    // Unicode and its fallback work in every destination.
    if (w == "uc") {
        s.unicodeSkip = std::clamp(token.hasParam ? token.param : 1, 0, 16);
        return;
    }
    if (w == "u" && token.hasParam) {
        const int code = token.param < 0 ? token.param + 65536 : token.param;
        m_skipChars = 0;
        if (code >= 0 && code <= 0xFFFF)
            character(QChar(static_cast<char16_t>(code)));
        m_skipChars = s.unicodeSkip;
        return;
    }
    switch (s.destination) {
    case Destination::Body:
        bodyWord(w, token.hasParam, token.param);
        break;
    case Destination::FontTable:
        if (w == "f" && token.hasParam) {
            m_fontEntry = token.param;
            m_fontName.clear();
        }
        break;
    case Destination::ColourTable:
        if (w == "red")
            m_red = token.param;
        else if (w == "green")
            m_green = token.param;
        else if (w == "blue")
            m_blue = token.param;
        break;
    case Destination::ListStyle:
        if (w == "pnlvlblt" || w == "pnlvlbody" || w == "pnlvl")
            m_paragraph.bullet = true;
        break;
    case Destination::Skip:
        break;
    }
}

RtfReadResult Reader::run() {
    m_document.clear();
    m_cursor = QTextCursor(&m_document);
    m_stack.push_back(GroupState());
    bool started = false;
    for (;;) {
        const RtfToken token = m_lexer.next();
        if (token.kind == RtfToken::Kind::End)
            break;
        if (token.kind == RtfToken::Kind::GroupStart) {
            if (m_stack.size() > kMaxDepth) {
                if (m_deepDrops++ == 0)
                    damaged("groups nested too deep");
                continue;
            }
            m_stack.push_back(m_stack.back());
            started = true;
            continue;
        }
        if (token.kind == RtfToken::Kind::GroupEnd) {
            if (m_deepDrops > 0) {
                --m_deepDrops;
                continue;
            }
            if (m_stack.back().destination == Destination::FontTable) {
                // An entry without its ';'.
                if (m_fontEntry >= 0 && !m_fontName.trimmed().isEmpty() && !m_fonts.contains(m_fontEntry))
                    m_fonts.insert(m_fontEntry, m_fontName.trimmed());
                m_fontName.clear();
            }
            if (m_stack.size() > 1)
                m_stack.pop_back();
            if (m_stack.size() == 1 && started)
                break; // the document's own group is closed
            continue;
        }
        if (m_deepDrops > 0)
            continue;
        switch (token.kind) {
        case RtfToken::Kind::Word:
            word(token);
            break;
        case RtfToken::Kind::Symbol:
            symbol(token.symbol);
            break;
        case RtfToken::Kind::HexByte:
            character(fromCodePage(token.byte));
            break;
        case RtfToken::Kind::Text: {
            m_starPending = false;
            QString decoded;
            decoded.reserve(token.word.size());
            for (char c : token.word) {
                if (m_skipChars > 0) {
                    --m_skipChars;
                    continue;
                }
                decoded.append(fromCodePage(static_cast<unsigned char>(c)));
            }
            text(decoded);
            break;
        }
        default:
            break;
        }
    }
    if (m_stack.size() > 1 || m_deepDrops > 0)
        damaged("the text ends before its last group is closed");
    for (int i = 0; i < m_lexer.damage(); ++i)
        damaged("a broken escape sequence");
    if (!m_paragraphPending)
        applyParagraph();
    m_document.setModified(false);
    return m_result;
}

} // namespace

bool looksLikeRtf(const QByteArray& bytes) {
    QByteArray head = bytes.left(64);
    if (head.startsWith("\xEF\xBB\xBF"))
        head.remove(0, 3);
    return head.trimmed().startsWith("{\\rtf");
}

RtfReadResult readRtf(const QByteArray& rtf, QTextDocument& document) {
    if (!looksLikeRtf(rtf)) {
        RtfReadResult result;
        result.failure = {RtfProblem::NotRtf, "no RTF header"};
        return result;
    }
    return Reader(rtf, document).run();
}

} // namespace mirabend
