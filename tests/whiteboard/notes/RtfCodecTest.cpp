// The RTF writer and reader: round trips of everything the board produces,
// the subset other word processors write, and damaged input.
#include "NotesDocument.h"
#include "whiteboard/notes/rtf/RtfReader.h"
#include "whiteboard/notes/rtf/RtfWriter.h"

#include <QTextBlock>
#include <gtest/gtest.h>

namespace mirabend::test {
namespace {

const QColor kRed(255, 0, 0);
const QColor kTeal(0, 128, 128);

struct RoundTrip {
    const char* name;
    std::vector<Paragraph> paragraphs;
};

// Names a case in test listings (a byte dump would differ every run).
void PrintTo(const RoundTrip& c, std::ostream* os) {
    *os << c.name;
}

class RtfRoundTrip : public ::testing::TestWithParam<RoundTrip> {};

TEST_P(RtfRoundTrip, WriterAndReaderKeepTheDocument) {
    QTextDocument original;
    build(original, GetParam().paragraphs);
    const QByteArray rtf = writeRtf(original);
    for (char c : rtf)
        ASSERT_LT(static_cast<unsigned char>(c), 0x80) << "the file is 7-bit ASCII";
    QTextDocument back;
    const RtfReadResult result = readRtf(rtf, back);
    EXPECT_FALSE(result.failure) << result.failure.detail;
    EXPECT_EQ(describe(back), describe(original)) << rtf.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Documents, RtfRoundTrip,
    ::testing::Values(
        RoundTrip{"CharacterStyles",
                  {para({run(QStringLiteral("plain ")), run(QStringLiteral("bold "), "b"),
                         run(QStringLiteral("italic "), "i"), run(QStringLiteral("under "), "u"),
                         run(QStringLiteral("all"), "biu")})}},
        RoundTrip{"ColoursSizesFonts",
                  {para({run(QStringLiteral("red"), "", kRed, 20),
                         run(QStringLiteral("teal"), "b", kTeal, 8.5, QStringLiteral("DejaVu Sans Mono")),
                         run(QStringLiteral("auto"), "", {}, 36, QStringLiteral("DejaVu Sans"))})}},
        RoundTrip{"AlignmentAndBullets",
                  {para({run(QStringLiteral("left"))}),
                   para({run(QStringLiteral("centre"))}, Qt::AlignHCenter),
                   para({run(QStringLiteral("right"))}, Qt::AlignRight),
                   para({run(QStringLiteral("justified"))}, Qt::AlignJustify),
                   para({run(QStringLiteral("one"))}, Qt::AlignLeft, true),
                   para({run(QStringLiteral("two"))}, Qt::AlignHCenter, true),
                   para({run(QStringLiteral("after the list"))})}},
        RoundTrip{"UnicodeAndEscapes",
                  {para({run(QString::fromUtf8("Gr\xC3\xBC\xC3\x9F"
                                               "e \xE2\x82\xAC \xE6\x97\xA5\xE6\x9C\xAC "
                                               "\xF0\x9F\x98\x80 {braces} back\\slash\ttab") +
                             QChar::LineSeparator + QStringLiteral("next line"))})}},
        RoundTrip{"EmptyParagraphs",
                  {para({run(QStringLiteral("a"))}), para({}), para({}), para({run(QStringLiteral("b"))})}},
        RoundTrip{"EmptyDocument", {para({})}}),
    [](const auto& param) { return std::string(param.param.name); });

struct Foreign {
    const char* name;
    QByteArray rtf;
    const char* expected; // describe() of what is read, or only the text when it has no '{'
    RtfProblem problem = RtfProblem::None;
};

void PrintTo(const Foreign& c, std::ostream* os) {
    *os << c.name;
}

class RtfForeign : public ::testing::TestWithParam<Foreign> {};

// Other writers' RTF reads in its subset and skips the rest; damaged input
// keeps what can be read and says so.
TEST_P(RtfForeign, ReadsTheSubsetSkipsTheRestAndKeepsWhatSurvivesDamage) {
    const Foreign& c = GetParam();
    QTextDocument document;
    const RtfReadResult result = readRtf(c.rtf, document);
    EXPECT_EQ(result.failure.code, c.problem) << result.failure.detail;
    if (c.problem == RtfProblem::Damaged) {
        EXPECT_GE(result.skippedParts, 1);
    }
    const std::string expected = c.expected;
    if (c.problem == RtfProblem::NotRtf)
        return;
    if (expected.find('{') == std::string::npos) {
        EXPECT_EQ(document.toPlainText().toStdString(), expected);
    } else {
        EXPECT_EQ(describe(document), expected);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Subset, RtfForeign,
    ::testing::Values(
        // As LibreOffice Writer writes it: styles, lists, \plain, \loch, rsid noise.
        Foreign{"LibreOfficeParagraph",
                "{\\rtf1\\ansi\\deff3\\adeflang1025{\\fonttbl{\\f0\\froman\\fprq2\\fcharset0 Times New "
                "Roman;}{\\f3\\fswiss\\fprq2\\fcharset0 Liberation Sans{\\*\\falt Arial};}}"
                "{\\colortbl;\\red0\\green0\\blue0;\\red255\\green0\\blue0;}{\\stylesheet{\\s0\\snext0 "
                "Normal;}}{\\*\\generator LibreOffice/7.4}{\\info{\\author x}}{\\*\\listtable{\\list}}"
                "\\pard\\plain \\s0\\qc\\widctlpar\\cf0\\dbch\\af5\\loch\\f3\\fs24{\\b\\cf2\\loch Red bold}"
                "{\\i\\loch  and italic}\\par}",
                "[center] Red bold{b #ff0000 12 Liberation Sans}| and italic{i auto 12 Liberation Sans}|\n"},
        Foreign{"LibreOfficeBullets",
                "{\\rtf1{\\fonttbl{\\f0 DejaVu Sans;}}{\\*\\listtable{\\list\\listid1{\\listlevel"
                "\\levelnfc23{\\leveltext \\'01\\u8226 ?;}}}}"
                "{\\listtext\\pard\\plain \\'95\\tab}\\pard\\plain\\ls1\\f0\\fs20 first\\par"
                "{\\listtext\\pard\\plain \\'95\\tab}\\pard\\plain\\ls1\\f0\\fs20 second\\par"
                "\\pard\\plain\\f0\\fs20 plain\\par}",
                "[left bullet] first{ auto 10 DejaVu Sans}|\n[left bullet] second{ auto 10 DejaVu Sans}|\n"
                "[left] plain{ auto 10 DejaVu Sans}|\n"},
        Foreign{"CodePageAndUnicode",
                "{\\rtf1\\ansi\\ansicpg1252 \\'e4\\'80 \\u8364\\'80 {\\uc2\\u26085\\'93\\'fa}\\uc0\\u8212 }",
                "\xC3\xA4\xE2\x82\xAC \xE2\x82\xAC \xE6\x97\xA5\xE2\x80\x94"},
        Foreign{
            "SpecialCharacters",
            "{\\rtf1 a\\tab b\\line c\\~d\\emdash\\endash\\lquote\\rquote\\ldblquote\\rdblquote\\bullet\\-e}",
            "a\tb\nc d\xE2\x80\x94\xE2\x80\x93\xE2\x80\x98\xE2\x80\x99\xE2\x80\x9C"
            "\xE2\x80\x9D\xE2\x80\xA2"
            "e"},
        Foreign{"FieldsPicturesAndUnknownDestinations",
                "{\\rtf1{\\field{\\*\\fldinst HYPERLINK \"x\"}{\\fldrslt link}} "
                "{\\pict\\pngblip 89504e47}{\\*\\unknown hidden}{\\header head}\\bin3 {}}x\\par}",
                "link x"},
        Foreign{"PlainResetsAndFlatFontTable",
                "{\\rtf1{\\fonttbl\\f0\\fnil Mono;\\f1\\fnil Serif;}\\f1\\b\\i\\ul\\fs40 A\\plain B\\ulnone}",
                "[left] A{biu auto 20 Serif}|B{ auto 12 }|\n"},
        Foreign{"HugeNumbers", "{\\rtf1\\fs99999999999999\\cf-5\\f2147483647\\uc99999\\uc1 \\u-99999?x}",
                "x"},
        Foreign{"Truncated", "{\\rtf1{\\b kept text", "kept text", RtfProblem::Damaged},
        Foreign{"BrokenHex", "{\\rtf1 a\\'zzb}", "azzb", RtfProblem::Damaged},
        Foreign{"TooDeep", "{\\rtf1 a" + QByteArray(100000, '{') + "lost" + QByteArray(100000, '}') + "b}",
                "ab", RtfProblem::Damaged},
        Foreign{"BinaryPastTheEnd", "{\\rtf1 x\\bin999999 }", "x", RtfProblem::Damaged},
        Foreign{"BackslashAtEnd", "{\\rtf1 x\\", "x", RtfProblem::Damaged},
        Foreign{"NotRtf", "Hello {world}", "", RtfProblem::NotRtf}),
    [](const auto& param) { return std::string(param.param.name); });

} // namespace
} // namespace mirabend::test
