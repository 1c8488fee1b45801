#include "whiteboard/notes/rtf/RtfWriter.h"

#include <QColor>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>
#include <cmath>
#include <vector>

namespace mirabend {
namespace {

constexpr double kFallbackPointSize = 12.0;

class Writer {
public:
    explicit Writer(const QTextDocument& document)
        : m_document(document) {}
    QByteArray run();

private:
    QString family(const QTextCharFormat& format) const;
    int fontIndex(const QString& family);
    int colourIndex(const QTextCharFormat& format);
    void collectTables();
    void paragraph(const QTextBlock& block);
    void textRun(const QTextFragment& fragment);
    void escape(const QString& text);

    const QTextDocument& m_document;
    std::vector<QString> m_fonts;
    std::vector<QColor> m_colours;
    QByteArray m_out;
};

QString Writer::family(const QTextCharFormat& format) const {
    const QStringList families = format.fontFamilies().toStringList();
    if (!families.isEmpty() && !families.first().isEmpty())
        return families.first();
    return m_document.defaultFont().family();
}

int Writer::fontIndex(const QString& name) {
    for (std::size_t i = 0; i < m_fonts.size(); ++i) {
        if (m_fonts[i] == name)
            return static_cast<int>(i);
    }
    m_fonts.push_back(name);
    return static_cast<int>(m_fonts.size() - 1);
}

// Index 0 of the colour table is the automatic colour.
int Writer::colourIndex(const QTextCharFormat& format) {
    if (format.foreground().style() == Qt::NoBrush)
        return 0;
    const QColor colour = format.foreground().color().toRgb();
    for (std::size_t i = 0; i < m_colours.size(); ++i) {
        if (m_colours[i] == colour)
            return static_cast<int>(i) + 1;
    }
    m_colours.push_back(colour);
    return static_cast<int>(m_colours.size());
}

void Writer::collectTables() {
    fontIndex(m_document.defaultFont().family());
    for (QTextBlock block = m_document.begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextCharFormat format = it.fragment().charFormat();
            fontIndex(family(format));
            colourIndex(format);
        }
    }
}

void Writer::escape(const QString& text) {
    for (int i = 0; i < text.size(); ++i) {
        const char16_t c = text.at(i).unicode();
        if (c == u'\\' || c == u'{' || c == u'}') {
            m_out += '\\';
            m_out += static_cast<char>(c);
        } else if (c == u'\t') {
            m_out += "\\tab ";
        } else if (c == QChar::LineSeparator) {
            m_out += "\\line ";
        } else if (c == QChar::ObjectReplacementCharacter || c < 0x20) {
            continue; // pictures and control characters have no RTF text
        } else if (c < 0x80) {
            m_out += static_cast<char>(c);
        } else {
            // \u takes a signed 16-bit number; '?' is the fallback that
            // readers without Unicode show.
            m_out += "\\u" + QByteArray::number(static_cast<qint16>(c)) + '?';
        }
    }
}

void Writer::textRun(const QTextFragment& fragment) {
    const QTextCharFormat format = fragment.charFormat();
    double points = format.fontPointSize();
    if (points <= 0)
        points = m_document.defaultFont().pointSizeF() > 0 ? m_document.defaultFont().pointSizeF()
                                                           : kFallbackPointSize;
    m_out += "{\\f" + QByteArray::number(fontIndex(family(format))) + "\\fs" +
             QByteArray::number(static_cast<int>(std::lround(points * 2)));
    if (format.fontWeight() >= QFont::DemiBold)
        m_out += "\\b";
    if (format.fontItalic())
        m_out += "\\i";
    if (format.fontUnderline())
        m_out += "\\ul";
    if (const int colour = colourIndex(format))
        m_out += "\\cf" + QByteArray::number(colour);
    m_out += ' ';
    escape(fragment.text());
    m_out += '}';
}

void Writer::paragraph(const QTextBlock& block) {
    m_out += "\\pard";
    const Qt::Alignment align = block.blockFormat().alignment() & Qt::AlignHorizontal_Mask;
    if (align & Qt::AlignHCenter)
        m_out += "\\qc";
    else if (align & Qt::AlignRight)
        m_out += "\\qr";
    else if (align & Qt::AlignJustify)
        m_out += "\\qj";
    else
        m_out += "\\ql";
    if (block.textList()) {
        // Word 97 bullets: LibreOffice, Word and WordPad all read them.
        m_out += "{\\pntext\\u8226?\\tab}{\\*\\pn\\pnlvlblt\\pnindent360{\\pntxtb\\u8226?}}\\fi-360\\li720";
    }
    m_out += ' ';
    for (auto it = block.begin(); !it.atEnd(); ++it)
        textRun(it.fragment());
    m_out += "\\par\n";
}

QByteArray Writer::run() {
    collectTables();
    m_out = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\n{\\fonttbl";
    for (std::size_t i = 0; i < m_fonts.size(); ++i) {
        m_out += "{\\f" + QByteArray::number(static_cast<int>(i)) + "\\fnil\\fcharset0 ";
        escape(m_fonts[i]);
        m_out += ";}";
    }
    m_out += "}\n{\\colortbl;";
    for (const QColor& c : m_colours) {
        m_out += "\\red" + QByteArray::number(c.red()) + "\\green" + QByteArray::number(c.green()) +
                 "\\blue" + QByteArray::number(c.blue()) + ';';
    }
    m_out += "}\n{\\*\\generator Mirabend;}\\viewkind4\n";
    for (QTextBlock block = m_document.begin(); block.isValid(); block = block.next())
        paragraph(block);
    m_out += "}\n";
    return m_out;
}

} // namespace

QByteArray writeRtf(const QTextDocument& document) {
    return Writer(document).run();
}

} // namespace mirabend
