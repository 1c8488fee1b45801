#pragma once
// Draws the overlay stamps onto grabs that carry only the changed rows, so
// a stamped still screen costs what an unstamped one does. The stamp is
// drawn onto the grabbed rows it covers; when it changes (the date's
// seconds, new settings) the rows under its old and new place are added
// to the grab from an unstamped copy of the picture, kept here, and drawn
// again. Rows untouched by both keep the stamp the encoder already has.
//
// Thread contract: used by the video capture thread only.

#include "recording/engine/OverlayBoard.h"
#include "recording/engine/ScreenSource.h"

#include <vector>

namespace mirabend {

class StampedGrabs {
public:
    // `keepCopy` false: the source hands over whole pictures only, so no
    // copy is needed.
    StampedGrabs(int width, int height, bool keepCopy);

    // What to ask of the source: `plain` while stamping goes on or stays
    // off; a whole picture when it starts (to fill the copy) or stops (to
    // wipe the stamp off).
    ScreenSource::Want want(bool stamped, ScreenSource::Want plain) const;
    // Stamps `grab` as the overlay draws at `now`, adding rows where the
    // stamp changed (a whole picture when `wholeOnChange`). False when out
    // of memory.
    bool stamp(ScreenGrab& grab, OverlayBoard& overlay, const QDateTime& now, bool wholeOnChange);
    // The grab went into the recording; `stamped` says whether stamp() ran
    // on it.
    void recorded(bool stamped);

private:
    void keep(const ScreenGrab& grab);

    int m_width = 0;
    int m_height = 0;
    bool m_keepCopy = true;
    std::vector<std::uint8_t> m_copy; // the picture as grabbed, unstamped
    bool m_stamping = false;          // the last recorded picture carries the stamp
    OverlayFootprint m_shown;         // the stamp on the last recorded picture
    OverlayFootprint m_pending;       // the stamp on the last stamped grab
};

} // namespace mirabend
