// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/MeasuredSet.h"
#include "data/head/SphereGeometry.h"

#include <array>
#include <span>
#include <vector>

namespace orvane::kestrum::tools {

/// A response taken apart: when it arrives, and what arrives then. Only so may neighbours be mixed; a mix of
/// responses that arrive at different times is a comb filter.
struct AlignedResponse {
    Direction direction;
    std::array<double, 2> arrivalSeconds{};
    std::array<Spectrum, 2> ears; ///< [2][size / 2 + 1], the arrival moved to sample 0.
    bool modelled = false;        ///< Completed by the model of the lower cap, not measured.
};

struct AlignedSet {
    double sampleRate = 0;
    double distanceMetres = 0;
    std::size_t transformSize = 0;
    std::vector<AlignedResponse> responses;

    std::vector<Direction> directions() const;
    double binWidthHz() const { return sampleRate / static_cast<double>(transformSize); }
};

/// Takes every response of the set apart. The first ear must be the left one.
AlignedSet alignResponses(const MeasuredSet& set);

/// Makes one response of those that stand closer together than `toleranceDegrees`: repeats, and the many
/// azimuths that some sets give a pole. Arrivals and aligned responses are averaged apart.
/// @return how many responses went into others.
std::size_t mergeRepeats(AlignedSet& set, double toleranceDegrees = 0.05);

/// The set's response in any direction: arrivals and aligned responses mixed apart, by the weights. The mix
/// has the weighted mean power of what went into it.
AlignedResponse mixResponses(const AlignedSet& set, std::span<const SiteWeight> weights,
                             const Direction& direction);

/// Puts a response together again: sample 0 is the instant `originSeconds` on the scale of the arrivals.
Samples assembleResponse(const AlignedResponse& response, std::size_t ear, double sampleRate,
                         double originSeconds, RealTransform& transform);

} // namespace orvane::kestrum::tools
