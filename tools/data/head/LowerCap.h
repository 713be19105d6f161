// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/AlignedSet.h"
#include "data/head/SphericalHead.h"

#include <vector>

namespace orvane::kestrum::tools {

/// What completing the sphere found and did.
struct CapReport {
    double lowestCoveredDegrees = -90; ///< Elevation of the lowest ring that the set measures all round.
    double largestGapDegrees = 0;      ///< Above that ring: farthest a direction is from a measured one.
    std::size_t modelledCount = 0;     ///< Directions added below it.
};

/// The lowest elevation of a site at which sites stand all round, no farther than 12 degrees apart from any
/// azimuth.
/// @throws DataError when there is no such ring below +30 degrees, or the set leaves a hole of more than 30
/// degrees above it.
CapReport surveyCoverage(const std::vector<Direction>& sites);

/// Adds modelled responses below the lowest ring that was measured all round, down to the pole, about 8
/// degrees apart.
///
/// The model: a response is what a rigid sphere would give in its direction, times what the real head adds to
/// the sphere. That addition is the one of the lowest ring at the same azimuth, and passes over to the ring's
/// mean on the way to the pole, where azimuths meet. Arrivals likewise: the sphere's, plus the ring's
/// difference to the sphere's. On the ring itself the model is the measurement, so the join is smooth. A
/// torso's shadow is not in it.
CapReport completeLowerCap(AlignedSet& set, const SphericalHead& sphere);

} // namespace orvane::kestrum::tools
