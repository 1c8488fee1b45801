#pragma once
// The recorder window's live displays: the waveform of the current block and
// a 22-bar spectrum whose bars rise at once and fall by 0.07 per call.
//
// Thread contract: UI thread only.

#include "audio/core/clsFourier.h"

#include <QColor>
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

class QPainter;

namespace mirabend {

class PictureBox;

class clsDraw {
public:
    static constexpr int kBars = 22;

    // Fills left..right-1 x top..bottom-1 with a solid colour.
    void DrawRect(QPainter& dc, int left, int top, int right, int bottom, QColor colour);
    void DrawAmplitudes(const std::vector<std::int16_t>& samples, PictureBox& picture);
    // Blocks shorter than 1024 samples leave levels and picture as they are.
    void DrawFrequencies(const std::vector<std::int16_t>& samples, PictureBox& picture);

    double barLevel(int bar) const { return m_levels[static_cast<std::size_t>(bar)]; }
    // The colour of a bar at `level`: red at silence, turning yellow.
    static QColor barColour(double level);

private:
    void updateLevels(const std::vector<std::int16_t>& samples);

    std::unique_ptr<clsFourier> m_fourier;
    std::array<double, kBars> m_levels{};
};

} // namespace mirabend
