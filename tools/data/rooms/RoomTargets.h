// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>

namespace orvane::kestrum::tools {

/// A range of an octave band's decay time over the middle one.
struct DecayShape {
    double centreHz = 0;
    double least = 0;
    double most = 0;

    bool holds(double share) const { return share >= least && share <= most; }
};

/// What a Scene is to measure like, on its rendered impulse at 48 kHz, block 512 and default settings, left
/// loudspeaker of "2.0 +/-30°".
struct RoomTarget {
    std::string_view scene;
    int entry = 0;                ///< Of the reverb's file, 1 to 60.
    double volumeCubicMetres = 0; ///< 0 for an open place.
    double decaySeconds = 0;      ///< T60, mean of 500 Hz and 1 kHz, after the Scene's decay row.
    double clarity50Db = 0;
    double directToRestDb = 0;
    double fullDensitySeconds = 0; ///< By this time the late reverb's echoes are to have their full density.
    double bassMost = 1.4;         ///< Of the decay time at 125 Hz, over the middle.

    /// Rooms last longer in the bass and shorter in the treble. The ranges are the tolerance: nothing is added.
    std::array<DecayShape, 3> decayShapes() const;
};

/// How far a figure may lie from its target.
inline constexpr double decayTolerance = 0.10; ///< Share of the target.
inline constexpr double clarityToleranceDb = 1.5;
inline constexpr double coherenceToleranceLow = 0.1; ///< Below coherenceSplitHz.
inline constexpr double coherenceToleranceHigh = 0.15;
inline constexpr double coherenceSplitHz = 400;

/// Every Scene with reverb, in menu order.
std::span<const RoomTarget> roomTargets();

/// @return the target of a Scene, or nothing where it has no reverb.
std::optional<RoomTarget> targetOf(std::string_view scene);

} // namespace orvane::kestrum::tools
