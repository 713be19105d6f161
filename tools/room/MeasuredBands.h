// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/rooms/DiffuseHead.h"
#include "data/rooms/ReverbShaping.h"
#include "room/MeasuredRoom.h"

#include <vector>

namespace orvane::kestrum::tools {

/// How far a binaural response's coherence may lie from the diffuse field of the folder's head, and its ears' levels from
/// each other, before they are bounded. Chosen: heads differ by half as much, pairs of microphones by far more.
inline constexpr double coherenceBound = 0.3;
inline constexpr double balanceBoundDb = 3;

/// A measured response taken apart for shapedReverb().
struct MeasuredBands {
    std::vector<ReverbBand> bands;
    std::vector<CoherenceBand> coherence; ///< Wanted, per band.
    std::vector<double> boundedHz; ///< Centres of the bands whose own coherence or balance was bounded.
    std::vector<double> madeHz;    ///< Centres of the bands that the file does not hold.
};

/// Takes a response apart into third-octave bands that do not decay any more.
///
///     from the first reflection on ─► bands ─► each band's decay undone up to its knee
///                                                                │ from there on, noise of the same level
///                                                                ▼ and the same coherence
///         mono: two voices of it that have nothing in common, which get the head's coherence afterwards
///
/// The same arguments give the same samples.
///
/// @param room its onset and T60 are used.
/// @param headCoherence gives a binaural response the head's coherence as well.
MeasuredBands measuredBands(const MeasuredRoom& measured, const RoomDescription& room,
                            const DiffuseHead& head, bool headCoherence);

} // namespace orvane::kestrum::tools
