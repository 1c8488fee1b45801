#pragma once
// Finishes a video file whose recorder never closed it (killed, crashed,
// power gone): every packet that can still be read is copied, without
// re-encoding, into a complete file of the same format, which then replaces
// the damaged one under the same name. The damaged file stays as it is until
// the new one is complete. AVI, WMV (ASF), FLV, SWF, MP4 and Matroska.
//
// Thread contract: a plain function; run it on any thread. `progress` is
// called on that thread.

#include "util/core/Failure.h"

#include <functional>
#include <string>

namespace mirabend {

enum class VideoRepairError {
    None,
    FileMissing,   // there is no such file
    Unreadable,    // no video can be read from it at all
    UnknownFormat, // its name gives no format we write
    WriteFailed,   // the repaired copy could not be written (disk full, no permission)
    Cancelled,     // the progress callback asked to stop; the file is unchanged
};

using VideoRepairFailure = Failure<VideoRepairError>;

struct VideoRepairReport {
    double seconds = 0;    // length of the repaired file
    long long packets = 0; // packets kept
};

// `progress` gets the share of the file read so far (0..1) and returns false
// to cancel.
VideoRepairFailure repairVideo(const std::string& file, VideoRepairReport& report,
                               const std::function<bool(double)>& progress = {});

} // namespace mirabend
