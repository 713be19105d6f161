// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string>
#include <vector>

namespace orvane::kestrum::check {

/// A track's figures that decide its gain.
struct TrackLevel {
    std::string name;
    double loudness = 0;   ///< Integrated, LUFS.
    double truePeakDb = 0; ///< dBTP.
};

struct LoudnessMatch {
    double loudness = 0;         ///< LUFS that all tracks come to.
    std::vector<double> gainsDb; ///< One per track.
    std::string limitedBy; ///< The track whose peak kept the loudness below the wish; empty when none did.
};

/// True peaks of matched copies stay at or under this, in dBTP.
inline constexpr double highestTruePeakDb = -1;

/// Gains that bring all tracks to one loudness: the wished one, or the highest at which no peak passes the limit. There
/// is no limiter: a comparison has to be of the rooms alone.
LoudnessMatch matchLoudness(std::span<const TrackLevel> tracks, double wishedLoudness);

} // namespace orvane::kestrum::check
