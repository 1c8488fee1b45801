// The list of recordings in progress: what a live recorder writes is not
// touched, what a dead one left is offered for repair, and an entry whose
// file has gone is dropped.
#include "recording/repair/RecordingJournal.h"

#include "support/ChildProcess.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mirabend::test {
namespace {

// Adds `file` to the journal from a process that then ends; a zombie (not
// reaped yet, as after a kill) when `reap` is false.
pid_t addFromAProcessThatDies(const RecordingJournal& journal, const std::string& file, bool reap = true) {
    const pid_t child = ::fork();
    if (child == 0) {
        journal.add(file);
        ::_exit(0);
    }
    siginfo_t info{};
    ::waitid(P_PID, id_t(child), &info, reap ? WEXITED : WEXITED | WNOWAIT);
    return child;
}

TEST(RecordingJournal, OnlyRecordingsWhoseRecorderIsGoneAreUnfinished) {
    TempFolder folder("mirabend-journal");
    const RecordingJournal journal(folder.file("state/mirabend/recordings"));
    const std::string live = folder.file("live.mkv");
    const std::string killed = folder.file("killed.avi");
    for (const std::string& f : {live, killed})
        std::ofstream(f) << "data";

    journal.add(live); // this process is still writing it
    const pid_t zombie = addFromAProcessThatDies(journal, killed, false);
    addFromAProcessThatDies(journal, folder.file("deleted-since.wmv"));
    EXPECT_EQ(journal.unfinished(), std::vector<std::string>({killed}));
    int status = 0;
    ::waitpid(zombie, &status, 0);

    journal.remove(killed);
    journal.remove(live);
    EXPECT_TRUE(journal.unfinished().empty());
    // The entry of the deleted file went with the first look.
    std::size_t left = 0;
    for (const auto& entry : std::filesystem::directory_iterator(journal.folder()))
        left += entry.path().extension() == ".rec";
    EXPECT_EQ(left, 0u);

    // No state folder that can be made: recording goes on unjournaled.
    const RecordingJournal nowhere("/proc/mirabend-cannot-be-here");
    nowhere.add(live);
    EXPECT_TRUE(nowhere.unfinished().empty());
}

} // namespace
} // namespace mirabend::test
