// SPDX-License-Identifier: GPL-3.0-or-later
// Expected gains of 5.1 are the two-channel row of ITU-R BS.775's table; those of other places are documented as ours.
#include "check/Downmix.h"

#include "CheckSupport.h"
#include "parameters/core/LayoutTable.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>

namespace {

using namespace orvane::kestrum;
using check::downmixGains;
using check::DownmixGains;

constexpr float root = 0.70710678f;

void expectGains(std::string_view layout, const std::vector<DownmixGains>& expected) {
    const auto gains = downmixGains(layout);
    ASSERT_EQ(gains.size(), expected.size());
    for (std::size_t channel = 0; channel < gains.size(); ++channel) {
        EXPECT_EQ(gains[channel].left, expected[channel].left) << layout << " channel " << channel;
        EXPECT_EQ(gains[channel].right, expected[channel].right) << layout << " channel " << channel;
    }
}

TEST(Downmix, OfFiveChannelsIsTheRecommendedOneWithoutLowFrequencies) {
    expectGains("5.1 ITU", {{1, 0}, {0, 1}, {root, root}, {0, 0}, {root, 0}, {0, root}});
    expectGains("5.1 Film", {{1, 0}, {root, root}, {0, 1}, {root, 0}, {0, root}, {0, 0}});
}

TEST(Downmix, TakesRearsAndHeightsByOurOwnGains) {
    expectGains("7.1.4", {{1, 0},
                          {0, 1},
                          {root, root},
                          {0, 0},
                          {root, 0},
                          {0, root},
                          {root, 0},
                          {0, root},
                          {root, 0},
                          {0, root},
                          {root, 0},
                          {0, root}});
    expectGains("LRCS", {{1, 0}, {0, 1}, {root, root}, {0.5f, 0.5f}});
    const auto high = downmixGains("11.1"); // overhead is channel 7, the high centre channel 9
    EXPECT_EQ(high[6].left, 0.5f);
    EXPECT_EQ(high[6].right, 0.5f);
    EXPECT_EQ(high[8].left, 0.5f);
}

TEST(Downmix, LeavesStereoAsItIs) {
    for (const auto* const layout : {"2.0 +/-0°", "2.0 +/-30°", "2.0 +/-45°"})
        expectGains(layout, {{1, 0}, {0, 1}});
    expectGains("1.0", {{root, root}});
}

/// Property: every layout of the table is symmetric, so the downmix is as well.
TEST(Downmix, TreatsBothSidesAlikeInEveryLayout) {
    for (const auto& layout : core::layoutTable()) {
        float left = 0, right = 0;
        for (const DownmixGains& gains : downmixGains(layout.name)) {
            left += gains.left;
            right += gains.right;
        }
        EXPECT_FLOAT_EQ(left, right) << layout.name;
    }
}

TEST(Downmix, RefusesALayoutThatIsNotThere) { EXPECT_THROW(downmixGains("LCRS"), check::CheckError); }

class DownmixFile : public ::test::FolderTest {};

/// Analytic reference: constant channels of 0.1, 0.2 ... add up by the gains.
TEST_F(DownmixFile, HoldsTheWeightedSumsAtTheLengthOfTheMix) {
    constexpr std::size_t frames = 20000; // more than a block
    std::vector<float> mix;
    for (std::size_t frame = 0; frame < frames; ++frame)
        mix.insert(mix.end(), {0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f});
    ::test::writeSound(folder / "mix.wav", mix, 6);
    check::writeDownmix(folder / "mix.wav", "5.1 ITU", folder / "down.wav");
    const auto ears = ::test::readSound(folder / "down.wav");
    ASSERT_EQ(ears.size(), 2u);
    ASSERT_EQ(ears[0].size(), frames);
    for (const std::size_t frame : {std::size_t{0}, frames - 1}) {
        EXPECT_FLOAT_EQ(ears[0][frame], 0.1f + root * 0.3f + root * 0.5f);
        EXPECT_FLOAT_EQ(ears[1][frame], 0.2f + root * 0.3f + root * 0.6f);
    }
}

} // namespace
