// SPDX-License-Identifier: GPL-3.0-or-later
// Expected: digital silence whenever the plug-in is not prepared or cannot be, sound otherwise. The data
// folder has to be installed.
#include "BundleSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;

constexpr std::uint32_t block = 256;

bool sounds(PluginInstance& plugin, double sampleRate) {
    // a fifth of a second: delay, fade-in and responses are all through
    const float peak = peakOf(
        play(plugin, noise(plugin.inputChannelCount(), static_cast<std::size_t>(sampleRate / 5)), block));
    EXPECT_TRUE(std::isfinite(peak));
    return peak > 0.01f;
}

bool isSilent(PluginInstance& plugin) {
    return peakOf(play(plugin, noise(plugin.inputChannelCount(), 20 * block), block)) == 0.0f;
}

class ServedRates : public ::testing::TestWithParam<int> {};

TEST_P(ServedRates, AreRendered) {
    const auto plugin = makeInstance(2, "2.0 +/-30°");
    plugin->prepare(GetParam(), block, ProcessMode::realtime);
    EXPECT_TRUE(sounds(*plugin, GetParam()));
}
INSTANTIATE_TEST_SUITE_P(AllSeven, ServedRates,
                         ::testing::Values(24000, 44100, 48000, 88200, 96000, 176400, 192000));

class OtherRates : public ::testing::TestWithParam<int> {};

TEST_P(OtherRates, AreSilentAndAServedOneRecovers) {
    const auto plugin = makeInstance(2, "2.0 +/-30°");
    plugin->prepare(GetParam(), block, ProcessMode::realtime);
    EXPECT_TRUE(isSilent(*plugin));
    plugin->release();
    plugin->prepare(48000, block, ProcessMode::realtime);
    EXPECT_TRUE(sounds(*plugin, 48000));
}
INSTANTIATE_TEST_SUITE_P(BelowBetweenAndAbove, OtherRates,
                         ::testing::Values(8000, 22050, 32000, 64000, 384000));

TEST(BundleLife, BlocksBeforePreparationAreSilent) {
    const auto plugin = makeInstance(6, "5.1 ITU");
    EXPECT_TRUE(isSilent(*plugin));
    plugin->prepare(48000, block, ProcessMode::realtime);
    EXPECT_TRUE(sounds(*plugin, 48000));
}

TEST(BundleLife, BlocksAfterReleaseAreSilentAndAnotherPreparationSoundsAgain) {
    const auto plugin = makeInstance(2, "2.0 +/-30°");
    for (int round = 0; round < 3; ++round) {
        plugin->prepare(48000, block, ProcessMode::realtime);
        EXPECT_TRUE(sounds(*plugin, 48000));
        plugin->release();
        EXPECT_TRUE(isSilent(*plugin));
    }
}

TEST(BundleLife, PreparationsWithoutReleaseChangeRateAndBlock) {
    const auto plugin = makeInstance(2, "2.0 +/-30°");
    for (const int rate : {48000, 96000, 44100, 24000}) {
        plugin->prepare(rate, block, ProcessMode::realtime);
        EXPECT_TRUE(sounds(*plugin, rate)) << rate;
    }
}

TEST(BundleLife, BlocksOfOneSampleAreNotServedButReported) {
    const auto plugin = makeInstance(2, "2.0 +/-30°");
    plugin->prepare(48000, 1, ProcessMode::realtime);
    EXPECT_EQ(plugin->latency(), 1u);
    EXPECT_EQ(peakOf(play(*plugin, noise(2, 500), 1)), 0.0f);
    plugin->release();
    plugin->prepare(48000, 2, ProcessMode::realtime);
    EXPECT_GT(peakOf(play(*plugin, noise(2, 2000), 2)), 0.01f);
}

TEST(BundleLife, TwoInstancesAtTwoRatesDoNotDisturbEachOther) {
    const Channels input = noise(2, 40 * block);
    const auto render = [&input](PluginInstance& plugin) { return play(plugin, input, block); };
    Channels alone;
    {
        const auto plugin = makeInstance(2, "2.0 +/-30°");
        plugin->prepare(48000, block, ProcessMode::realtime);
        alone = render(*plugin);
    }
    const auto first = makeInstance(2, "2.0 +/-30°");
    const auto second = makeInstance(2, "Stereo Wide");
    first->prepare(48000, block, ProcessMode::realtime);
    EXPECT_EQ(render(*first), alone);
    second->prepare(48000, block, ProcessMode::realtime);
    EXPECT_NE(render(*second), alone);
    first->release();
    first->prepare(48000, block, ProcessMode::realtime);
    EXPECT_EQ(render(*first), alone);
    EXPECT_GT(peakOf(alone), 0.01f);
}

TEST(BundleLife, AnInstanceGoingAwayLeavesTheOtherPlaying) {
    const auto first = makeInstance(2, "2.0 +/-30°");
    first->prepare(48000, block, ProcessMode::realtime);
    {
        const auto second = makeInstance(2, "2.0 +/-30°");
        second->prepare(44100, block, ProcessMode::realtime);
        EXPECT_TRUE(sounds(*second, 44100));
    }
    EXPECT_TRUE(sounds(*first, 48000));
}

TEST(BundleLife, AnotherPreparationRecoversFromInputThatIsNoNumber) {
    const auto plugin = makeInstance(2, "2.0 +/-30°");
    plugin->prepare(48000, block, ProcessMode::realtime);
    Channels broken = silence(2, 4 * block);
    broken[0][10] = std::numeric_limits<float>::quiet_NaN();
    broken[1][20] = std::numeric_limits<float>::infinity();
    broken[0][block] = 1e-40f; // a denormal
    play(*plugin, broken, block);
    plugin->release();
    plugin->prepare(48000, block, ProcessMode::realtime);
    EXPECT_TRUE(sounds(*plugin, 48000));
}

TEST(BundleLife, ANarrowBusIsSilentOverManyBlocksAndNeverFeedsBack) {
    for (const unsigned inputs : {1u, 2u, 5u}) {
        const auto plugin = makeInstance(inputs, "5.1 ITU");
        plugin->prepare(48000, block, ProcessMode::realtime);
        EXPECT_EQ(peakOf(play(*plugin, noise(inputs, 200 * block), block)), 0.0f) << inputs << " channels";
    }
    // one channel cannot carry a pair, though the framework's buffer has two
    const auto mono = makeInstance(1, "2.0 +/-30°");
    mono->prepare(48000, block, ProcessMode::realtime);
    EXPECT_EQ(peakOf(play(*mono, noise(1, 200 * block), block)), 0.0f);
}

} // namespace
