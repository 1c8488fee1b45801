// The notes' RTF against a real LibreOffice Writer: a headless soffice with
// a private profile, stopped by its process id, converts our RTF to its own.
#include "NotesDocument.h"
#include "support/ChildProcess.h"
#include "whiteboard/notes/rtf/RtfReader.h"
#include "whiteboard/notes/rtf/RtfWriter.h"

#include <QFile>
#include <gtest/gtest.h>

namespace mirabend::test {
namespace {

const std::vector<Paragraph> kNotes = {
    para({run(QStringLiteral("Bold "), "b", {}, 14), run(QStringLiteral("italic "), "i", {}, 14),
          run(QStringLiteral("red"), "", QColor(255, 0, 0), 14)},
         Qt::AlignHCenter),
    para({run(QStringLiteral("right and underlined"), "u", QColor(0, 0, 255), 10)}, Qt::AlignRight),
    para({run(QStringLiteral("a bullet"))}, Qt::AlignLeft, true),
    para({run(QString::fromUtf8("Gr\xC3\xBC\xC3\x9F"
                                "e \xE2\x82\xAC"))}),
};

class NotesOffice : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(haveProgram("soffice")) << "LibreOffice (soffice) is not installed"; }

    // Writes our RTF of kNotes and has soffice convert it to `format`;
    // returns the converted file's bytes.
    QByteArray convertOurs(const std::string& format) {
        QTextDocument document;
        build(document, kNotes);
        const std::string input = folder.file("notes.rtf");
        QFile file(QString::fromStdString(input));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(writeRtf(document));
        file.close();
        const std::string out = folder.file("out");
        ChildProcess office;
        EXPECT_TRUE(
            office.start({"soffice", "-env:UserInstallation=file://" + folder.file("profile"), "--headless",
                          "--norestore", "--convert-to", format, "--outdir", out, input},
                         {}, folder.file("soffice.log")));
        EXPECT_EQ(office.wait(150000), 0) << "soffice did not finish the conversion";
        QFile converted(QString::fromStdString(out + "/notes." + format));
        return converted.open(QIODevice::ReadOnly) ? converted.readAll() : QByteArray();
    }

    TempFolder folder{"mirabend-notes-office"};
};

// Our RTF through LibreOffice and back: what soffice writes holds every
// format we wrote, so a writer fault (say, a control word soffice does not
// know) shows as a difference here.
TEST_F(NotesOffice, OurRtfThroughLibreOfficeComesBackWithItsFormatting) {
    const QByteArray rtf = convertOurs("rtf");
    ASSERT_TRUE(rtf.contains("LibreOffice")) << "the file is LibreOffice's own RTF";
    QTextDocument back;
    const RtfReadResult result = readRtf(rtf, back);
    EXPECT_FALSE(result.failure) << result.failure.detail;
    EXPECT_EQ(describe(back), describe(kNotes));
}

} // namespace
} // namespace mirabend::test
