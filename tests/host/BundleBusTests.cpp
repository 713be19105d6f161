// SPDX-License-Identifier: GPL-3.0-or-later
// Expected answers: any input is taken as long as the output is stereo; nothing else is.
#include "BundleSupport.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;

// speaker bits of the interfaces: left, right, centre, low frequencies, left and right surround are the
// lowest six
constexpr std::uint64_t stereo = 0x3;
constexpr std::uint64_t mono = std::uint64_t{1} << 19;
constexpr std::uint64_t surround51 = 0x3F;

TEST(BundleBuses, AreStereoInAndOutAtFirst) {
    const PluginInstance plugin(loadBundle());
    EXPECT_EQ(plugin.inputArrangement(), stereo);
    EXPECT_EQ(plugin.outputArrangement(), stereo);
    EXPECT_EQ(plugin.inputChannelCount(), 2u);
    EXPECT_EQ(plugin.outputChannelCount(), 2u);
}

class InputWidths : public ::testing::TestWithParam<unsigned> {};

TEST_P(InputWidths, AreTakenWithStereoOutput) {
    PluginInstance plugin(loadBundle());
    EXPECT_TRUE(plugin.setChannelCounts(GetParam(), 2));
    EXPECT_EQ(plugin.inputChannelCount(), GetParam());
    EXPECT_EQ(plugin.outputChannelCount(), 2u);
}

TEST_P(InputWidths, AreRefusedWithAnOutputAsWide) {
    if (GetParam() == 2)
        return; // two in and two out is the default
    PluginInstance plugin(loadBundle());
    EXPECT_FALSE(plugin.setChannelCounts(GetParam(), GetParam()));
    EXPECT_EQ(plugin.outputChannelCount(), 2u);
}
INSTANTIATE_TEST_SUITE_P(OfEveryLayout, InputWidths,
                         ::testing::Values(1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 14, 16));
INSTANTIATE_TEST_SUITE_P(OfNoLayout, InputWidths, ::testing::Values(3, 13, 15));

TEST(BundleBuses, NamedSetsAreTaken) {
    PluginInstance plugin(loadBundle());
    EXPECT_TRUE(plugin.setArrangements(mono, stereo));
    EXPECT_EQ(plugin.inputChannelCount(), 1u);
    EXPECT_TRUE(plugin.setArrangements(surround51, stereo));
    EXPECT_EQ(plugin.inputChannelCount(), 6u);
}

TEST(BundleBuses, SurroundOrMonoOutputIsRefused) {
    PluginInstance plugin(loadBundle());
    EXPECT_FALSE(plugin.setArrangements(surround51, surround51));
    EXPECT_FALSE(plugin.setArrangements(stereo, mono));
    EXPECT_FALSE(plugin.setArrangements(mono, mono));
    EXPECT_EQ(plugin.outputArrangement(), stereo);
}

} // namespace
