#pragma once
// A helper process that a test fixture starts and stops by its process id.
// The process gets its own process group, so stop() ends whatever it forked.

#include <string>
#include <sys/types.h>
#include <vector>

namespace mirabend::test {

class ChildProcess {
public:
    ChildProcess() = default;
    ~ChildProcess() { stop(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Starts argv[0] (searched in PATH) with extra environment entries
    // ("NAME=value"). Output goes to `logFile` when given, else /dev/null.
    // `keepFd`, when not -1, stays open in the child.
    bool start(const std::vector<std::string>& argv, const std::vector<std::string>& env = {},
               const std::string& logFile = {}, int keepFd = -1);
    // Starts a server that reports on a file descriptor it is given ("{fd}"
    // in an argument), such as Xvfb -displayfd or dbus-daemon
    // --print-address; returns the first line it writes there, or "" (and
    // the process stopped) when none comes within `timeoutMs`.
    std::string startReportingLine(std::vector<std::string> argv, int timeoutMs = 10000);
    // SIGTERM, then SIGKILL after `graceMs`; reaps the process.
    void stop(int graceMs = 2000);
    bool running();
    pid_t pid() const { return m_pid; }
    // Waits up to `timeoutMs` for the process to end by itself; returns its
    // exit code, or -1 when it was killed by a signal or is still running.
    int wait(int timeoutMs);
    // The exit code of a process that ended on its own (-1 otherwise).
    int exitCode() const { return m_exitCode; }

private:
    void reaped(int status);
    pid_t m_pid = -1;
    int m_exitCode = -1;
};

// True when `program` is found in PATH.
bool haveProgram(const std::string& program);

// Runs a shell command line and returns what it wrote to standard output;
// `exitCode` gets its exit code (-1 when it did not end normally).
std::string runShell(const std::string& command, int* exitCode = nullptr);

// A fresh private folder under $TMPDIR, removed with its content on destruction.
class TempFolder {
public:
    explicit TempFolder(const std::string& prefix = "mirabend-test");
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    const std::string& path() const { return m_path; }
    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

} // namespace mirabend::test
