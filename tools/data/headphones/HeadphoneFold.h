// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/ResponseSet.h"
#include "data/headphones/FollowMeter.h"
#include "data/headphones/HeadphoneCurve.h"
#include "data/rooms/ReverbFile.h"

#include <array>
#include <filesystem>
#include <optional>
#include <vector>

namespace orvane::kestrum::tools {

/// Filters every response of a head, as far as its length allows: what the correction rings on behind the last sample is
/// cut, with the fade that every response ends with. Arrivals and what lies between the ears stay. But for that
/// fade it is the same as filtering the long response before it was cut, since the filter is causal.
/// A filter that leans against what the cut takes away was tried: 0.5 dB nearer in the bass, as much farther off above it.
/// @return how near the whole head came.
std::vector<FollowedBand> foldIntoHead(ResponseSet& set, const HeadphoneCurve& curve);

/// Filters the rooms of one rate; they are long enough to follow.
///
/// Thread  rooms are shared out over the cores; the result does not depend on that.
void foldIntoRooms(ReverbSet& set, const HeadphoneCurve& curve);

/// Filters one room's response, its length kept.
void foldIntoRoom(ReverbEntry& entry, const HeadphoneCurve& curve, double sampleRate);

/// How far off a correction is in each of the three files of a head, in the order of responseFiles.
struct FoldReport {
    std::array<std::vector<FollowedBand>, responseFiles.size()> heads;
};

/// Makes a complete set without headphones one with them: its six files are replaced, the correction's own file is put
/// beside them, and about.json names it. Until all is written about.json vouches for nothing.
/// @param about what about.json is to say, as it comes from aboutWithHeadphones().
/// @throws DataError when a file is not sound or the folder cannot be written.
FoldReport foldHeadphones(const std::filesystem::path& folder, const Headphones& headphones,
                          const std::filesystem::path& source, const std::string& about);

/// The correction that a set carries, if any.
/// @throws DataError when it is said to carry one and the copy is missing or altered.
std::optional<Headphones> headphonesIn(const std::filesystem::path& folder);

} // namespace orvane::kestrum::tools
