// The notes board in the real program on a private X display: type and
// format notes, end the program with SIGTERM, start it again with the same
// data folder, and find the notes back. Keys reach the window through
// xdotool (XTEST), as a user's keyboard would.
#include "support/ChildProcess.h"
#include "support/XvfbServer.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <thread>

namespace mirabend::test {
namespace {

void sleepMs(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

std::string readText(const std::string& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

class NotesEndToEnd : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(xvfb.ok()) << "Xvfb did not start";
        ASSERT_TRUE(haveProgram("xdotool")) << "xdotool is not installed";
        env = {"DISPLAY=" + xvfb.display(), "QT_QPA_PLATFORM=xcb", "HOME=" + home.path(),
               "XDG_DATA_HOME=" + home.file("data"), "XDG_RUNTIME_DIR=" + home.path()};
    }

    // Runs a helper (xdotool, xwininfo) to its end; returns its output.
    std::string tool(const std::vector<std::string>& argv) {
        ChildProcess process;
        const std::string out = home.file("tool.txt");
        if (!process.start(argv, env, out))
            return {};
        process.wait(10000);
        return readText(out);
    }

    // Starts the program and waits until the welcome show fills the slide
    // pane: from then on nothing else takes the stage over.
    bool startProgram() {
        const char* dir = std::getenv("MIRABEND_BINARY_DIR");
        if (!app.start({std::string(dir ? dir : ".") + "/bin/mirabend"}, env, home.file("mirabend.log")))
            return false;
        for (int i = 0; i < 240; ++i) {
            if (tool({"xwininfo", "-root", "-tree"}).find("(has no name): ()  580x435+0+0") !=
                std::string::npos)
                return true;
            sleepMs(250);
        }
        return false;
    }

    // Clicks the status bar so the main window takes the keyboard from the
    // show, then shows the notes board (Ctrl+3), which takes the focus. The
    // show may still grab the keyboard while it starts: try until the main
    // window keeps it.
    void openNotesBoard() {
        const std::string found = tool({"xdotool", "search", "--name", "^Mirabend 1.0"});
        const std::string id = found.substr(0, found.find('\n'));
        std::istringstream geometry(tool({"xdotool", "getwindowgeometry", "--shell", id}));
        std::map<std::string, int> shell;
        for (std::string line; std::getline(geometry, line);) {
            const auto eq = line.find('=');
            if (eq != std::string::npos)
                shell[line.substr(0, eq)] = std::atoi(line.c_str() + eq + 1);
        }
        ASSERT_GT(shell["WIDTH"], 0) << "no main window";
        const std::string x = std::to_string(shell["X"] + shell["WIDTH"] / 2);
        const std::string y = std::to_string(shell["Y"] + shell["HEIGHT"] - 6);
        int keptFor = 0; // checks in a row that found the keyboard with us
        for (int attempt = 0; attempt < 40 && keptFor < 3; ++attempt) {
            if (keptFor == 0) {
                tool({"xdotool", "mousemove", x, y, "click", "1"});
                sleepMs(300);
                tool({"xdotool", "key", "ctrl+3"});
            }
            sleepMs(1000);
            const std::string focus = tool({"xdotool", "getwindowfocus"});
            keptFor = focus.substr(0, focus.find('\n')) == id ? keptFor + 1 : 0;
        }
        if (keptFor >= 3)
            return;
        FAIL() << "the main window never kept the keyboard";
    }

    bool exportDialogShown() { return !tool({"xdotool", "search", "--name", "^Export notes"}).empty(); }

    bool waitFor(const std::function<bool()>& condition, int timeoutMs) {
        for (int waited = 0; waited < timeoutMs; waited += 250) {
            if (condition())
                return true;
            sleepMs(250);
        }
        return condition();
    }

    // Shows the board, sends `keys`, then opens the export dialog by its
    // shortcut: once the dialog shows, the program has handled every key
    // before it. The starting show may still take the keyboard away, so the
    // whole sequence is repeated until the dialog shows; `answer` then runs
    // with the dialog open.
    bool typeIntoBoard(const std::vector<std::vector<std::string>>& keys,
                       const std::vector<std::vector<std::string>>& answer = {{"key", "Escape"}}) {
        for (int attempt = 0; attempt < 5; ++attempt) {
            openNotesBoard();
            for (const auto& command : keys) {
                std::vector<std::string> argv{"xdotool"};
                argv.insert(argv.end(), command.begin(), command.end());
                tool(argv);
            }
            tool({"xdotool", "key", "ctrl+shift+e"});
            if (!waitFor([&] { return exportDialogShown(); }, 8000))
                continue;
            for (const auto& command : answer) {
                std::vector<std::string> argv{"xdotool"};
                argv.insert(argv.end(), command.begin(), command.end());
                tool(argv);
            }
            return waitFor([&] { return !exportDialogShown(); }, 30000);
        }
        return false;
    }

    // SIGTERM; the program ends through its event loop and saves.
    void endProgram() {
        kill(app.pid(), SIGTERM);
        EXPECT_EQ(app.wait(60000), 0) << readText(home.file("mirabend.log"));
        app.stop();
    }

    XvfbServer xvfb;
    TempFolder home{"mirabend-notes-e2e"};
    std::vector<std::string> env;
    ChildProcess app;
};

TEST_F(NotesEndToEnd, TypedNotesAndTheirFormattingSurviveSigtermAndARestart) {
    const std::string kept = home.file("data/mirabend/notes.rtf");
    ASSERT_TRUE(startProgram()) << readText(home.file("mirabend.log"));
    // Select all first: a repeated attempt replaces what an earlier one typed.
    ASSERT_TRUE(typeIntoBoard({{"key", "ctrl+a"},
                               {"type", "--delay", "20", "Agenda for today"},
                               {"key", "ctrl+a", "ctrl+b", "ctrl+e", "End"}}));
    endProgram();
    const std::string first = readText(kept);
    EXPECT_NE(first.find("Agenda for today"), std::string::npos) << first;
    EXPECT_NE(first.find("\\b"), std::string::npos) << "bold is kept: " << first;
    EXPECT_NE(first.find("\\qc"), std::string::npos) << "centred is kept: " << first;

    // The second run restores the board: its export holds the notes, still
    // bold and centred. Nothing was edited, so the kept file stays as it was.
    ASSERT_TRUE(startProgram()) << readText(home.file("mirabend.log"));
    const std::string exported = home.file("exported.rtf");
    // Tab leaves the file name field, so its completer cannot take the Return.
    ASSERT_TRUE(typeIntoBoard({}, {{"type", "--delay", "20", exported}, {"key", "Tab", "Return"}}));
    ASSERT_TRUE(waitFor([&] { return !readText(exported).empty(); }, 10000));
    const std::string second = readText(exported);
    EXPECT_NE(second.find("Agenda for today"), std::string::npos) << second;
    EXPECT_NE(second.find("\\b"), std::string::npos) << second;
    EXPECT_NE(second.find("\\qc"), std::string::npos) << second;
    endProgram();
    EXPECT_EQ(readText(kept), first);
}

} // namespace
} // namespace mirabend::test
