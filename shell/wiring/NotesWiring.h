#pragma once
// Puts the notes board on the stage's text box and its tools into the task
// pane's "Notes" bar, and keeps the user's notes between runs.
//
// Thread contract: UI thread only.

namespace mirabend {

class Mirabend_frm;
class Prompts;

void attachNotes(Mirabend_frm& window, Prompts& prompts);

} // namespace mirabend
