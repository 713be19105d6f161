// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Spectra.h"

#include <array>
#include <cstddef>

namespace orvane::kestrum::tools {

/// One band of a spectrum: its gains from a first bin on. Bins beyond are 0.
struct BandWindow {
    double centreHz = 0;
    std::size_t firstBin = 0;
    Samples gains;
};

/// Number of bands: round 100 Hz to 16 kHz a third of an octave apart; the first reaches down to 0 Hz, the last
/// up to the Nyquist frequency.
inline constexpr std::size_t thirdOctaveCount = 23;

/// Windows on the bins of a transform that take a spectrum apart without any delay: each rises from the centre
/// below its own to its own, and falls to the one above, by the square of a sine over the logarithm of the
/// frequency. The windows of all bands add up to 1 in every bin, so the parts add up to the whole.
std::array<BandWindow, thirdOctaveCount> thirdOctaves(std::size_t binCount, double sampleRate);

} // namespace orvane::kestrum::tools
