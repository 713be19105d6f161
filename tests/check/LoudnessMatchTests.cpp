// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/LoudnessMatch.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace orvane::kestrum::check;

TEST(LoudnessMatch, BringsAllTracksToTheWish) {
    const std::array<TrackLevel, 2> tracks{{{"soft", -40, -25}, {"loud", -20, -9}}};
    const LoudnessMatch match = matchLoudness(tracks, -23);
    EXPECT_EQ(match.loudness, -23);
    EXPECT_EQ(match.limitedBy, "");
    EXPECT_DOUBLE_EQ(match.gainsDb[0], 17);
    EXPECT_DOUBLE_EQ(match.gainsDb[1], -3);
}

/// "sharp" has 22 dB from loudness to peak, so -23 LUFS is the highest under -1 dBTP.
TEST(LoudnessMatch, LowersAllTracksTogetherForTheSharpestPeak) {
    const std::array<TrackLevel, 3> tracks{{{"even", -30, -20}, {"sharp", -30, -8}, {"less", -20, -2}}};
    const LoudnessMatch match = matchLoudness(tracks, -14);
    EXPECT_DOUBLE_EQ(match.loudness, -23);
    EXPECT_EQ(match.limitedBy, "sharp");
    for (std::size_t index = 0; index < tracks.size(); ++index) {
        EXPECT_DOUBLE_EQ(tracks[index].loudness + match.gainsDb[index], -23);
        EXPECT_LE(tracks[index].truePeakDb + match.gainsDb[index], highestTruePeakDb);
    }
}

} // namespace
