#include "NotesDocument.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextList>
#include <cstring>

namespace mirabend::test {

void build(QTextDocument& document, const std::vector<Paragraph>& paragraphs) {
    document.clear();
    QTextCursor cursor(&document);
    bool first = true;
    for (const Paragraph& p : paragraphs) {
        if (!first)
            cursor.insertBlock();
        first = false;
        QTextBlockFormat block;
        block.setAlignment(p.alignment);
        cursor.setBlockFormat(block);
        if (p.bullet) {
            const QTextBlock previous = cursor.block().previous();
            if (previous.isValid() && previous.textList())
                previous.textList()->add(cursor.block());
            else
                cursor.createList(QTextListFormat::ListDisc);
        }
        for (const Run& r : p.runs) {
            QTextCharFormat format;
            format.setFontWeight(std::strchr(r.style, 'b') ? QFont::Bold : QFont::Normal);
            format.setFontItalic(std::strchr(r.style, 'i') != nullptr);
            format.setFontUnderline(std::strchr(r.style, 'u') != nullptr);
            if (r.colour.isValid())
                format.setForeground(r.colour);
            format.setFontPointSize(r.points);
            format.setFontFamilies(QStringList{r.family});
            cursor.insertText(r.text, format);
        }
    }
}

std::string describe(const QTextDocument& document) {
    std::string out;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const Qt::Alignment a = block.blockFormat().alignment() & Qt::AlignHorizontal_Mask;
        out += a & Qt::AlignHCenter   ? "[center"
               : a & Qt::AlignRight   ? "[right"
               : a & Qt::AlignJustify ? "[justify"
                                      : "[left";
        out += block.textList() ? " bullet] " : "] ";
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextCharFormat f = it.fragment().charFormat();
            std::string style;
            if (f.fontWeight() >= QFont::DemiBold)
                style += 'b';
            if (f.fontItalic())
                style += 'i';
            if (f.fontUnderline())
                style += 'u';
            const QStringList families = f.fontFamilies().toStringList();
            out += it.fragment().text().toStdString() + "{" + style + " " +
                   (f.foreground().style() == Qt::NoBrush ? std::string("auto")
                                                          : f.foreground().color().name().toStdString()) +
                   " " + QString::number(f.fontPointSize()).toStdString() + " " +
                   (families.isEmpty() ? std::string() : families.first().toStdString()) + "}|";
        }
        out += "\n";
    }
    return out;
}

std::string describe(const std::vector<Paragraph>& paragraphs) {
    QTextDocument document;
    build(document, paragraphs);
    return describe(document);
}

} // namespace mirabend::test
