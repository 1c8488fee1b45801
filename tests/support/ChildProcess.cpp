#include "support/ChildProcess.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace mirabend::test {

bool ChildProcess::start(const std::vector<std::string>& argv, const std::vector<std::string>& env,
                         const std::string& logFile, int keepFd) {
    stop();
    m_exitCode = -1;
    if (argv.empty())
        return false;
    const pid_t pid = fork();
    if (pid < 0)
        return false;
    if (pid == 0) {
        setpgid(0, 0);
        // A test process killed by its timeout takes its servers with it.
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        const int out = logFile.empty() ? open("/dev/null", O_WRONLY)
                                        : open(logFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (out >= 0) {
            dup2(out, STDOUT_FILENO);
            dup2(out, STDERR_FILENO);
        }
        const int in = open("/dev/null", O_RDONLY);
        if (in >= 0)
            dup2(in, STDIN_FILENO);
        for (int fd = 3; fd < 1024; ++fd) {
            if (fd != keepFd)
                close(fd);
        }
        for (const std::string& entry : env)
            putenv(const_cast<char*>(entry.c_str()));
        std::vector<char*> args;
        for (const std::string& a : argv)
            args.push_back(const_cast<char*>(a.c_str()));
        args.push_back(nullptr);
        execvp(args[0], args.data());
        _exit(127);
    }
    setpgid(pid, pid);
    m_pid = pid;
    return true;
}

std::string ChildProcess::startReportingLine(std::vector<std::string> argv, int timeoutMs) {
    int fds[2];
    if (pipe(fds) != 0)
        return {};
    for (std::string& argument : argv) {
        const std::size_t at = argument.find("{fd}");
        if (at != std::string::npos)
            argument.replace(at, 4, std::to_string(fds[1]));
    }
    const bool started = start(argv, {}, {}, fds[1]);
    close(fds[1]);
    std::string line;
    pollfd p{fds[0], POLLIN, 0};
    char c = 0;
    while (started && poll(&p, 1, timeoutMs) > 0 && read(fds[0], &c, 1) == 1 && c != '\n')
        line += c;
    close(fds[0]);
    if (line.empty())
        stop();
    return line;
}

void ChildProcess::reaped(int status) {
    m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    m_pid = -1;
}

bool ChildProcess::running() {
    if (m_pid <= 0)
        return false;
    int status = 0;
    const pid_t r = waitpid(m_pid, &status, WNOHANG);
    if (r == m_pid) {
        reaped(status);
        return false;
    }
    return r == 0;
}

int ChildProcess::wait(int timeoutMs) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (running()) {
        if (std::chrono::steady_clock::now() >= deadline)
            return -1;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return m_exitCode;
}

void ChildProcess::stop(int graceMs) {
    if (m_pid <= 0)
        return;
    // One signal only: a program that winds down on the first may take a
    // second one as "end now" and leave its files unfinished.
    if (kill(-m_pid, SIGTERM) != 0)
        kill(m_pid, SIGTERM);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(graceMs);
    while (std::chrono::steady_clock::now() < deadline) {
        int status = 0;
        if (waitpid(m_pid, &status, WNOHANG) == m_pid) {
            m_pid = -1;
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    kill(-m_pid, SIGKILL);
    kill(m_pid, SIGKILL);
    int status = 0;
    waitpid(m_pid, &status, 0);
    m_pid = -1;
}

bool haveProgram(const std::string& program) {
    const char* path = std::getenv("PATH");
    if (!path)
        return false;
    std::string paths(path);
    std::size_t start = 0;
    while (start <= paths.size()) {
        const std::size_t end = paths.find(':', start);
        const std::string dir =
            paths.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (!dir.empty() && access((dir + "/" + program).c_str(), X_OK) == 0)
            return true;
        if (end == std::string::npos)
            break;
        start = end + 1;
    }
    return false;
}

TempFolder::TempFolder(const std::string& prefix) {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/" + prefix + "-XXXXXX";
    if (char* made = mkdtemp(pattern.data()))
        m_path = made;
}

TempFolder::~TempFolder() {
    if (!m_path.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
}

std::string runShell(const std::string& command, int* exitCode) {
    std::string out;
    int status = -1;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[512];
        while (std::fgets(buffer, sizeof buffer, pipe))
            out += buffer;
        status = pclose(pipe);
    }
    if (exitCode)
        *exitCode = status != -1 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return out;
}

} // namespace mirabend::test
