// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/AlignedSet.h"

#include <span>
#include <vector>

namespace orvane::kestrum::tools {

/// How far the equalisation goes. Outside the band the inverse stays as it is at the band's edge.
struct EqualisationLimits {
    double lowestHz = 20;       ///< So low that the loudspeaker's roll-off is undone in phase as well.
    double boundAboveHz = 150;  ///< Below it the model of the low frequencies replaces the level anyway.
    double highestHz = 16000;   ///< Or 0.9 of the Nyquist frequency where that is less.
    double largestBoostDb = 20; ///< Over the inverse's mean between boundAboveHz and highestHz.
    double smoothingOctaves = 1.0 / 6;
};

/// Root of the mean power over the whole sphere and both ears: what a sound from everywhere would bring.
/// @param weights one per response, any common scale.
Samples diffuseField(const AlignedSet& set, std::span<const double> weights);

/// The bounded, smoothed minimum-phase inverse of a diffuse field.
Spectrum inverseOf(const Samples& diffuseMagnitudes, double binWidthHz, const EqualisationLimits& limits);

/// Multiplies every response by the filter.
void applyFilter(AlignedSet& set, const Spectrum& filter);

} // namespace orvane::kestrum::tools
