// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/AlignedSet.h"
#include "data/head/SphericalHead.h"

#include <span>

namespace orvane::kestrum::tools {

/// Where a measurement with a small loudspeaker and a few hundred taps stops telling the truth.
struct LowFrequencyRange {
    double modelBelowHz = 110;
    double measuredAboveHz = 220;
};

/// Undoes what the loudspeaker's roll-off below the measurement does to the phase above it: a lead of nearly
/// c / f, the first term of any high pass's phase far above its corner. The c comes from the mean phase of
/// all responses between measuredAboveHz and 800 Hz, fitted by c / f + d f; the d is a delay and stays.
/// @return c in radians times hertz.
double removeRollOffLead(AlignedSet& set, std::span<const double> weights,
                         const LowFrequencyRange& range = {});

/// Replaces what lies below the range by a spherical head's levels and crossfades (in decibels, over log
/// frequency) inside it. The sphere's levels are divided by the sphere's own diffuse field, as the measured
/// ones were. Below the range the phase delay stays what it is at the upper end, so arrivals keep.
/// @param weights solid angles of the responses.
void extendLowFrequencies(AlignedSet& set, const SphericalHead& sphere, std::span<const double> weights,
                          const LowFrequencyRange& range = {});

} // namespace orvane::kestrum::tools
