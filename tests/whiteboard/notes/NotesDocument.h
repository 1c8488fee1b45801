#pragma once
// Builds small rich-text documents and describes them as text, so two
// documents compare with one EXPECT_EQ and a failure shows what differs.

#include <QColor>
#include <QTextDocument>
#include <string>

namespace mirabend::test {

struct Run {
    QString text;
    const char* style = ""; // any of "b", "i", "u"
    QColor colour = {};     // invalid: automatic
    double points = 12;
    QString family = QStringLiteral("DejaVu Serif");
};

struct Paragraph {
    std::vector<Run> runs;
    Qt::Alignment alignment = Qt::AlignLeft;
    bool bullet = false;
};

inline Run run(const QString& text, const char* style = "", QColor colour = {}, double points = 12,
               const QString& family = QStringLiteral("DejaVu Serif")) {
    return Run{text, style, colour, points, family};
}
inline Paragraph para(std::vector<Run> runs, Qt::Alignment alignment = Qt::AlignLeft, bool bullet = false) {
    return Paragraph{std::move(runs), alignment, bullet};
}

void build(QTextDocument& document, const std::vector<Paragraph>& paragraphs);
// One line a paragraph: "[align bullet] text{style colour size family}|...".
std::string describe(const QTextDocument& document);
std::string describe(const std::vector<Paragraph>& paragraphs);

} // namespace mirabend::test
