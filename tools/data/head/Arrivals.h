// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Spectra.h"

namespace orvane::kestrum::tools {

/// When a response begins, in samples and parts of one: the lag at which it agrees best with its own
/// minimum-phase version, which begins at 0. Less shaken by the response's colour than a threshold on its
/// edge.
///
/// Source  Nam, Abel and Smith, A method for estimating interaural time difference for binaural synthesis,
///         AES 125 (2008).
class ArrivalFinder {
public:
    explicit ArrivalFinder(std::size_t tapCount);

    /// @param response at most the tapCount of the construction.
    /// @return 0 for silence.
    double find(const Samples& response);

private:
    RealTransform analysis; ///< Long enough that the cepstrum does not fold over.
    RealTransform fine;     ///< The same correlation on a finer clock.
};

/// Where the largest of the samples stands, between the samples by the parabola through it and its
/// neighbours.
double peakPosition(const Samples& samples);

} // namespace orvane::kestrum::tools
