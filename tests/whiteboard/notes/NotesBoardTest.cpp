// The notes board as the presenter uses it: toolbar keys on selections, the
// timer that follows the caret, the font picker, the property bag, and the
// kept, exported and imported notes files.
#include "whiteboard/notes/NotesBoard.h"

#include "NotesDocument.h"
#include "support/ChildProcess.h"
#include "support/ScriptedPrompts.h"
#include "util/FontComboControl.h"
#include "whiteboard/notes/NotesKeeper.h"
#include "whiteboard/notes/rtf/RtfReader.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextEdit>
#include <QTextList>
#include <QTimer>
#include <gtest/gtest.h>

namespace mirabend::test {
namespace {

const char* const kToggleKeys[] = {"bold", "italic", "underline"};
const char* const kAlignKeys[] = {"align_left", "align_center", "align_right"};

class NotesBoardTest : public ::testing::Test {
protected:
    NotesBoardTest()
        : notes(&board, prompts,
                new FontComboControl({QStringLiteral("DejaVu Serif"), QStringLiteral("DejaVu Sans")},
                                     nullptr)) {}

    void setDocument(const std::vector<Paragraph>& paragraphs) { build(*board.document(), paragraphs); }
    void select(int from, int to) {
        QTextCursor cursor(board.document());
        cursor.setPosition(from);
        cursor.setPosition(to, QTextCursor::KeepAnchor);
        board.setTextCursor(cursor);
    }
    bool pressed(const char* key) { return notes.button(QString::fromLatin1(key))->isChecked(); }
    std::string content() const { return describe(*board.document()); }

    QTextEdit board;
    ScriptedPrompts prompts;
    NotesBoard notes;
};

TEST_F(NotesBoardTest, TogglesSetAMixedSelectionOnAndTwoClicksRestoreIt) {
    for (int code = 0; code < 3; ++code) {
        SCOPED_TRACE(kToggleKeys[code]);
        const char* style = code == 0 ? "b" : code == 1 ? "i" : "u";
        setDocument({para({run(QStringLiteral("plain "), ""), run(QStringLiteral("styled"), style)})});
        const std::string before = content();
        select(0, 12);
        notes.tbEditor_ButtonClick(QString::fromLatin1(kToggleKeys[code]));
        EXPECT_TRUE(pressed(kToggleKeys[code]));
        EXPECT_EQ(content(), describe({para({run(QStringLiteral("plain styled"), style)})}));
        select(0, 6); // the formerly plain part alone
        notes.tbEditor_ButtonClick(QString::fromLatin1(kToggleKeys[code]));
        notes.tbEditor_ButtonClick(QString::fromLatin1(kToggleKeys[code]));
        EXPECT_TRUE(pressed(kToggleKeys[code])) << "twice: back on";
        notes.tbEditor_ButtonClick(QString::fromLatin1(kToggleKeys[code]));
        EXPECT_FALSE(pressed(kToggleKeys[code]));
        EXPECT_EQ(content(), before);
    }
}

TEST_F(NotesBoardTest, AlignmentKeysPressExactlyOneAndBulletsToggleEveryParagraph) {
    setDocument({para({run(QStringLiteral("one"))}), para({run(QStringLiteral("two"))})});
    select(1, 5);
    for (int i = 0; i < 3; ++i) {
        notes.tbEditor_ButtonClick(QString::fromLatin1(kAlignKeys[2 - i]));
        for (int j = 0; j < 3; ++j)
            EXPECT_EQ(pressed(kAlignKeys[j]), j == 2 - i) << kAlignKeys[2 - i] << " then " << kAlignKeys[j];
    }
    EXPECT_EQ(board.document()->lastBlock().blockFormat().alignment() & Qt::AlignHorizontal_Mask,
              Qt::AlignLeft);

    notes.tbEditor_ButtonClick(QStringLiteral("bullets"));
    EXPECT_TRUE(pressed("bullets"));
    EXPECT_EQ(content(),
              "[left bullet] one{ auto 12 DejaVu Serif}|\n[left bullet] two{ auto 12 DejaVu Serif}|\n");
    notes.tbEditor_ButtonClick(QStringLiteral("bullets"));
    EXPECT_FALSE(pressed("bullets"));
    EXPECT_EQ(board.document()->firstBlock().textList(), nullptr);
    EXPECT_EQ(board.document()->lastBlock().textList(), nullptr);
}

TEST_F(NotesBoardTest, CommandKeysActOnTheSelectionAndUnknownKeysDoNothing) {
    setDocument({para({run(QStringLiteral("small"), "", {}, 10), run(QStringLiteral("large"), "", {}, 20)})});
    select(0, 10);
    notes.tbEditor_ButtonClick(QStringLiteral(" font "));
    EXPECT_EQ(content(), "[left] small{ auto 14 DejaVu Serif}|large{ auto 24 DejaVu Serif}|\n");
    for (int i = 0; i < 4; ++i)
        notes.tbEditor_ButtonClick(QStringLiteral("fontSh"));
    EXPECT_EQ(content(), "[left] small{ auto 1 DejaVu Serif}|large{ auto 8 DejaVu Serif}|\n")
        << "the box's own lower limit holds";

    const std::string before = content();
    for (const char* key : {"Bold", "bold2", "", "exit"})
        notes.tbEditor_ButtonClick(QString::fromLatin1(key));
    prompts.answerColor(std::nullopt);
    notes.tbEditor_ButtonClick(QStringLiteral("text_color"));
    EXPECT_EQ(content(), before) << "unknown keys and a cancelled colour dialog change nothing";

    select(0, 5);
    prompts.answerColor(QColor(0, 0, 255));
    notes.tbEditor_ButtonClick(QStringLiteral("text_color"));
    EXPECT_EQ(content(), "[left] small{ #0000ff 1 DejaVu Serif}|large{ auto 8 DejaVu Serif}|\n");
    EXPECT_EQ(prompts.colorTitles.size(), 2);

    select(2, 3);
    notes.tbEditor_ButtonClick(QStringLiteral("clear"));
    EXPECT_TRUE(board.document()->isEmpty());
}

TEST_F(NotesBoardTest, TimerFollowsTheCaretAndThePickerSetsTheFont) {
    QComboBox* combo = notes.FontComboControl1()->FontCombo();
    EXPECT_GE(combo->findText(combo->currentText()), 0) << "a fresh board names a listed font, not an alias";
    setDocument(
        {para({run(QStringLiteral("plain")), run(QStringLiteral("rich"), "bi")}, Qt::AlignRight, true)});
    select(7, 7);
    notes.timEditor_Timer();
    const std::map<std::string, bool> expected{
        {"bold", true},        {"italic", true},        {"underline", false}, {"bullets", true},
        {"align_left", false}, {"align_center", false}, {"align_right", true}};
    for (const auto& [key, on] : expected)
        EXPECT_EQ(pressed(key.c_str()), on) << key;

    select(0, 5);
    combo->setCurrentIndex(combo->findText(QStringLiteral("DejaVu Sans")));
    Q_EMIT combo->activated(combo->currentIndex());
    EXPECT_EQ(content(), "[right bullet] plain{ auto 12 DejaVu Sans}|rich{bi auto 12 DejaVu Serif}|\n");
}

TEST_F(NotesBoardTest, PropertiesKeepTextAndRichTextAndRestoreLetsTheRichTextWin) {
    setDocument({para({run(QStringLiteral("Bold words"), "b")}, Qt::AlignHCenter)});
    PropertyBag saved;
    notes.WriteProperties(saved);
    EXPECT_EQ(saved.ReadProperty(QStringLiteral("Text")), QStringLiteral("Bold words"));
    EXPECT_TRUE(looksLikeRtf(saved.ReadProperty(QStringLiteral("TextRTF")).toLatin1()));

    struct Case {
        const char* text;
        const char* rtf;
        const char* expected;
    };
    const Case cases[] = {
        {"plain wins not", nullptr, "plain wins not"},
        {nullptr, "not rtf at all", "not rtf at all"},
        {nullptr, nullptr, ""},
    };
    board.setPlainText(QStringLiteral("old"));
    PropertyBag both = saved;
    both.WriteProperty(QStringLiteral("Text"), QStringLiteral("stale plain text"));
    EXPECT_FALSE(notes.ReadProperties(both).failure);
    EXPECT_EQ(content(), describe({para({run(QStringLiteral("Bold words"), "b")}, Qt::AlignHCenter)}));
    for (const Case& c : cases) {
        PropertyBag bag;
        if (c.text)
            bag.WriteProperty(QStringLiteral("Text"), QString::fromLatin1(c.text));
        if (c.rtf)
            bag.WriteProperty(QStringLiteral("TextRTF"), QString::fromLatin1(c.rtf));
        notes.ReadProperties(bag);
        EXPECT_EQ(board.toPlainText().toStdString(), c.expected);
    }
}

class NotesKeeperTest : public NotesBoardTest {
protected:
    QByteArray readFile(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void writeFile(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    TempFolder folder{"mirabend-notes"};
    QString path = QString::fromStdString(folder.file("data/mirabend/notes.rtf"));
    NotesKeeper keeper{notes, prompts, path};
};

TEST_F(NotesKeeperTest, DamagedFilesAndFailedSavesAreToldOnceAndTheLastGoodCopyStays) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    writeFile(path, "{\\rtf1 readable {\\b part");
    keeper.restore();
    EXPECT_EQ(board.toPlainText(), QStringLiteral("readable part"));
    ASSERT_EQ(prompts.messages.size(), 1);
    EXPECT_EQ(prompts.messages[0].title, QStringLiteral("Mirabend 1.0"));
    EXPECT_TRUE(prompts.messages[0].text.contains(path)) << prompts.messages[0].text.toStdString();

    // An imported file with several broken parts: one message names it.
    const QString foreign = QString::fromStdString(folder.file("foreign.rtf"));
    writeFile(foreign, "{\\rtf1 kept \\u99999999999 {\\*\\x{{{\\bin999999 lost");
    prompts.answerFile(foreign);
    keeper.importNotes();
    EXPECT_TRUE(board.toPlainText().startsWith(QStringLiteral("kept")));
    ASSERT_EQ(prompts.messages.size(), 2);
    EXPECT_TRUE(prompts.messages[1].text.contains(foreign)) << prompts.messages[1].text.toStdString();
    prompts.messages.removeLast();

    // The folder turns into a file: saving cannot succeed.
    const QString blocked = QString::fromStdString(folder.file("blocked"));
    writeFile(blocked, "not a folder");
    NotesKeeper stuck(notes, prompts, blocked + QStringLiteral("/notes.rtf"));
    board.setPlainText(QStringLiteral("edited"));
    EXPECT_FALSE(stuck.save());
    board.append(QStringLiteral("more"));
    EXPECT_FALSE(stuck.save());
    EXPECT_EQ(prompts.messages.size(), 2) << "one message for any number of failed saves";
    EXPECT_EQ(readFile(blocked), QByteArray("not a folder"));
}

TEST_F(NotesKeeperTest, KeepsOnlyChangedNotesExportsRtfHtmlAndTextAndImportsRtfAndText) {
    keeper.restore(); // nothing kept yet
    EXPECT_TRUE(keeper.save());
    EXPECT_FALSE(QFile::exists(path)) << "nothing changed, nothing written";
    setDocument({para({run(QStringLiteral("Kept"), "i", QColor(255, 0, 0))}, Qt::AlignRight)});
    const std::string kept = content();
    ASSERT_TRUE(keeper.save());
    board.clear();
    NotesKeeper(notes, prompts, path).restore();
    EXPECT_EQ(content(), kept) << "the next run finds the notes back";

    setDocument({para({run(QStringLiteral("Exported"), "b")})});
    struct Export {
        const char* file;
        int filterIndex;
        const char* starts;
    };
    for (const Export& e : {Export{"a.rtf", 1, "{\\rtf1"}, Export{"b.html", 1, "<!DOCTYPE HTML"},
                            Export{"c.txt", 1, "Exported"}, Export{"d", 2, "<!DOCTYPE HTML"}}) {
        const QString file = QString::fromStdString(folder.file(e.file));
        prompts.answerFile(file, e.filterIndex);
        keeper.exportNotes();
        EXPECT_TRUE(readFile(file).startsWith(e.starts)) << e.file;
    }
    prompts.answerFile(QString::fromStdString(folder.file("a.rtf")));
    board.clear();
    keeper.importNotes();
    EXPECT_EQ(content(), "[left] Exported{b auto 12 DejaVu Serif}|\n");

    writeFile(QString::fromStdString(folder.file("plain.txt")), "Gr\xC3\xBC\xC3\x9F"
                                                                "e\nzwei");
    prompts.answerFile(QString::fromStdString(folder.file("plain.txt")));
    keeper.importNotes();
    EXPECT_EQ(board.toPlainText(), QString::fromUtf8("Gr\xC3\xBC\xC3\x9F"
                                                     "e\nzwei"));

    keeper.importNotes(); // cancelled: nothing changes
    EXPECT_EQ(board.toPlainText(), QString::fromUtf8("Gr\xC3\xBC\xC3\x9F"
                                                     "e\nzwei"));
    EXPECT_TRUE(prompts.messages.isEmpty());
}

} // namespace
} // namespace mirabend::test
