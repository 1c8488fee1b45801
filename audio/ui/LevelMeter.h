#pragma once
// Draws a level meter into a picture: a row of lit segments from green
// through amber to red, unlit segments dimmed, and a thin mark at the
// highest level held.
//
// Thread contract: UI thread only.

namespace mirabend {

class PictureBox;

// `level` and `hold` run from 0 (silence) to 1 (full scale).
void drawLevelMeter(PictureBox& picture, double level, double hold);

} // namespace mirabend
