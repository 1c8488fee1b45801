#include "recording/repair/RecordingJournal.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <signal.h>
#include <sstream>
#include <unistd.h>

namespace mirabend {

namespace fs = std::filesystem;

namespace {

std::string defaultFolder() {
    const char* state = std::getenv("XDG_STATE_HOME");
    std::string base;
    if (state && *state == '/') {
        base = state;
    } else {
        const char* home = std::getenv("HOME");
        base = std::string(home && *home ? home : "/tmp") + "/.local/state";
    }
    return base + "/mirabend/recordings";
}

// A killed recorder nobody has reaped yet is a zombie: gone all the same.
bool processAlive(long pid) {
    if (pid <= 0 || (::kill(pid_t(pid), 0) != 0 && errno != EPERM))
        return false;
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    std::getline(stat, line);
    const std::size_t close = line.rfind(')');
    if (close == std::string::npos || close + 2 >= line.size())
        return true;
    const char state = line[close + 2];
    return state != 'Z' && state != 'X';
}

std::string absolute(const std::string& file) {
    std::error_code ec;
    const fs::path path = fs::absolute(file, ec);
    return ec ? file : path.lexically_normal().string();
}

} // namespace

RecordingJournal::RecordingJournal()
    : m_folder(defaultFolder()) {}

RecordingJournal::RecordingJournal(std::string folder)
    : m_folder(std::move(folder)) {}

std::string RecordingJournal::entryFor(const std::string& file) const {
    std::ostringstream name;
    name << std::hex << std::hash<std::string>{}(absolute(file)) << ".rec";
    return m_folder + "/" + name.str();
}

void RecordingJournal::add(const std::string& file) const {
    std::error_code ec;
    fs::create_directories(m_folder, ec);
    // Written aside and renamed, so a reader never sees half an entry.
    const std::string entry = entryFor(file);
    const std::string temporary = entry + "." + std::to_string(::getpid()) + ".tmp";
    {
        std::ofstream out(temporary, std::ios::trunc);
        out << ::getpid() << '\n' << absolute(file) << '\n';
        if (!out)
            return; // no state folder: the recording goes on, unjournaled
    }
    if (std::rename(temporary.c_str(), entry.c_str()) != 0)
        std::remove(temporary.c_str());
}

void RecordingJournal::remove(const std::string& file) const {
    std::remove(entryFor(file).c_str());
}

std::vector<std::string> RecordingJournal::unfinished() const {
    std::vector<std::pair<fs::file_time_type, std::string>> found;
    std::error_code ec;
    for (const fs::directory_entry& entry : fs::directory_iterator(m_folder, ec)) {
        if (entry.path().extension() != ".rec")
            continue;
        std::ifstream in(entry.path());
        long pid = 0;
        std::string file;
        in >> pid;
        in.ignore(1);
        std::getline(in, file);
        if (file.empty() || processAlive(pid))
            continue; // still being written (or being added right now)
        if (!fs::exists(file, ec)) {
            fs::remove(entry.path(), ec);
            continue;
        }
        found.emplace_back(entry.last_write_time(ec), file);
    }
    std::sort(found.begin(), found.end());
    std::vector<std::string> files;
    for (auto& f : found)
        files.push_back(std::move(f.second));
    return files;
}

} // namespace mirabend
