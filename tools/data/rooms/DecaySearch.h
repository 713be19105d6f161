// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Spectra.h"

namespace orvane::kestrum::tools {

/// Energy in short spans of time, one after the other.
struct EnergyCourse {
    Samples energies;
    double stepSeconds = 0;
};

/// The reverberation time T30: the energy that is still to come, fitted by a line from 5 to 35 dB below the whole,
/// or as far as it falls, and extended to 60 dB.
///
/// Units   seconds.
/// Source  M. R. Schroeder, "New method of measuring reverberation time", JASA 37, 1965; ISO 3382-1:2009.
double reverberationTime(const EnergyCourse& course);

/// The decay that a course has to be given so that its T30 becomes `t60Seconds`: whatever else already shapes it
/// (its own ups and downs, curves that are laid over it, its end) counts in.
///
/// @return the rate of an amplitude exp(-rate * seconds); negative where the course falls too fast by itself.
double decayRateFor(const EnergyCourse& course, double t60Seconds);

} // namespace orvane::kestrum::tools
