// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/LoudnessMatch.h"

namespace orvane::kestrum::check {

LoudnessMatch matchLoudness(std::span<const TrackLevel> tracks, double wishedLoudness) {
    LoudnessMatch match{wishedLoudness, {}, {}};
    for (const TrackLevel& track : tracks) {
        const double highest = highestTruePeakDb - track.truePeakDb + track.loudness;
        if (highest < match.loudness) {
            match.loudness = highest;
            match.limitedBy = track.name;
        }
    }
    for (const TrackLevel& track : tracks)
        match.gainsDb.push_back(match.loudness - track.loudness);
    return match;
}

} // namespace orvane::kestrum::check
