#pragma once
// The recordings in progress: one small file per recording under
// $XDG_STATE_HOME/mirabend/recordings (~/.local/state/mirabend/recordings),
// naming the video file and the process writing it. The recorder adds an
// entry when its file is created and removes it when the file is closed, so
// an entry whose process is gone marks a file a crash or a kill left
// unfinished; the next start repairs it.
//
// Thread contract: every member may be called from any thread and from
// several processes at once; each entry is written and removed whole.

#include <string>
#include <vector>

namespace mirabend {

class RecordingJournal {
public:
    // The default folder, from $XDG_STATE_HOME or $HOME.
    RecordingJournal();
    explicit RecordingJournal(std::string folder);

    const std::string& folder() const { return m_folder; }

    // `file` is being written by this process from now on.
    void add(const std::string& file) const;
    // `file` was closed (or repaired): no longer in progress.
    void remove(const std::string& file) const;
    // Files whose recorder went away without closing them, oldest first.
    // Entries of files that no longer exist are dropped on the way.
    std::vector<std::string> unfinished() const;

private:
    std::string entryFor(const std::string& file) const;
    std::string m_folder;
};

} // namespace mirabend
