// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Spectra.h"

#include <span>

namespace orvane::kestrum::tools {

/// One band of a response, with the time before its first sample into which the filter rings.
struct BandResponse {
    Samples samples;      ///< [lead + response]
    std::size_t lead = 0; ///< Samples in front of the response's first one.
};

/// A Butterworth band pass with three poles at either edge, `centreHz` / sqrt(`edgeRatio`) and
/// `centreHz` * sqrt(`edgeRatio`), run backwards in time: it rings before the sound, not after it.
///
/// Source  the analogue band pass of the third-order prototype, conjugated; Jacobsen and Rindel, Time reversed
///         decay measurements, J. Sound Vib. 117, 1987.
BandResponse reversedBandPass(std::span<const double> response, double sampleRate, double centreHz,
                              double edgeRatio);

} // namespace orvane::kestrum::tools
