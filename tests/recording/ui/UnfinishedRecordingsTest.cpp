// At start-up the recordings a dead recorder left are repaired and the user
// is told once, in one message, what was finished and what was not.
#include "recording/ui/UnfinishedRecordings.h"

#include "support/ChildProcess.h"
#include "support/ScriptedPrompts.h"

#include <QFile>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mirabend::test {
namespace {

void addFromAProcessThatDies(const RecordingJournal& journal, const std::string& file) {
    const pid_t child = ::fork();
    if (child == 0) {
        journal.add(file);
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
}

TEST(UnfinishedRecordings, AreRepairedAtStartAndToldOnce) {
    if (!haveProgram("ffmpeg"))
        GTEST_SKIP() << "ffmpeg makes the test recording";
    TempFolder folder("mirabend-unfinished");
    const std::string good = folder.file("talk.mkv");
    const std::string broken = folder.file("notes.avi");
    ChildProcess maker;
    ASSERT_TRUE(maker.start({"ffmpeg", "-nostdin", "-v", "error", "-f", "lavfi", "-i",
                             "testsrc=size=160x120:rate=10", "-t", "2", "-c:v", "mpeg4", good}));
    ASSERT_EQ(maker.wait(60000), 0);
    std::ofstream(broken) << std::string(2048, 'x');

    const RecordingJournal journal(folder.file("state"));
    addFromAProcessThatDies(journal, good);
    addFromAProcessThatDies(journal, broken);
    ScriptedPrompts prompts;
    EXPECT_EQ(UnfinishedRecordings(prompts, journal).repairAll(nullptr), 1);
    ASSERT_EQ(prompts.messages.size(), 1);
    const QString text = prompts.messages[0].text;
    EXPECT_TRUE(text.contains(QString::fromStdString(good) + " (")) << text.toStdString();
    EXPECT_TRUE(text.contains("could not be repaired")) << text.toStdString();
    EXPECT_TRUE(text.contains(QString::fromStdString(broken)));
    EXPECT_EQ(prompts.messages[0].icon, PromptIcon::Exclamation);
    EXPECT_EQ(QFile(QString::fromStdString(broken)).size(), 2048) << "left as it was";

    // Told once: the next start has nothing to say.
    EXPECT_EQ(UnfinishedRecordings(prompts, journal).repairAll(nullptr), 0);
    EXPECT_EQ(prompts.messages.size(), 1);
}

} // namespace
} // namespace mirabend::test
