// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RawPlugin.h"

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

namespace rawhost {

/// [channelCount][frames] of seeded noise within +/-0.25; a channel's content does not depend on their number.
Channels noise(std::size_t channelCount, std::size_t frames, std::uint32_t seed = 1);
Channels silence(std::size_t channelCount, std::size_t frames);

/// Feeds all frames in blocks of the given lengths, over and over, 0 being a block without frames.
/// @return the stereo output, in memory that held 9 before: what is not written shows.
Channels play(const RawPlugin& plugin, const Channels& input, std::span<const int> blocks);
Channels play(const RawPlugin& plugin, const Channels& input, int block);

bool isFinite(const Channels& channels);
/// The largest magnitude.
float peakOf(const Channels& channels);

/// Collects what a case has found wrong, one sentence per line.
class Findings {
public:
    /// Notes `what` unless `holds`. @return `holds`.
    bool expect(bool holds, const std::string& what);
    const std::string& text() const { return lines; }

private:
    std::string lines;
};

/// How often a proof repeats its case: the second in the release tier (KESTRUM_TIER=release), else the first.
int roundsOf(int inCommitTier, int inReleaseTier);

} // namespace rawhost
