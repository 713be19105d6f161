// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"
#include "engine/fades/Fade.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace {

using orvane::Fade;
using orvane::SampleBuffer;
using test::Signal;

/// The gains that a fade applies to a stream in blocks of `blockSize`.
Signal gainsOf(Fade& fade, std::size_t count, std::size_t blockSize = 64) {
    Signal gains;
    while (gains.size() < count) {
        SampleBuffer block(2, std::min(blockSize, count - gains.size()));
        for (std::uint64_t channel = 0; channel < 2; ++channel)
            std::fill_n(block.channelPointers[channel], block.numSamples, 1.0f);
        fade.apply(block);
        EXPECT_TRUE(std::equal(block.channel(0).begin(), block.channel(0).end(), block.channel(1).begin()));
        gains.insert(gains.end(), block.channel(0).begin(), block.channel(0).end());
    }
    return gains;
}

class FadeRates : public ::testing::TestWithParam<int> {};

/// Analytic reference: a straight line from 0 to 1 over 10 ms; the float sum may arrive one sample early.
TEST_P(FadeRates, RisesInAStraightLineToOneAfterTenMilliseconds) {
    const auto rate = static_cast<float>(GetParam());
    Fade fade(10.0f, rate, 0.0f, 1.0f);
    const auto nominal = static_cast<std::size_t>(GetParam() / 100);
    const Signal gains = gainsOf(fade, nominal + 200);
    for (std::size_t i = 0; i + 1 < nominal; ++i) {
        const double line = static_cast<double>(i + 1) / static_cast<double>(nominal);
        // One rounding per step, and the one sample at the end that may be early.
        ASSERT_NEAR(gains[i], line,
                    static_cast<double>(nominal) * 6e-8 +
                        (i + 2 == nominal ? 1.0 / static_cast<double>(nominal) : 0.0))
            << i;
    }
    EXPECT_LT(gains[nominal - 3], 1.0f);
    for (std::size_t i = nominal - 1; i < gains.size(); ++i)
        ASSERT_EQ(gains[i], 1.0f) << i;
}
INSTANTIATE_TEST_SUITE_P(EveryRate, FadeRates,
                         ::testing::Values(24000, 44100, 48000, 88200, 96000, 176400, 192000));

TEST(Fade, GivesTheSameStreamHoweverItIsCut) {
    Fade whole(10.0f, 48000.0f, 0.0f, 1.0f);
    const Signal expected = gainsOf(whole, 600, 600);
    for (const std::size_t blockSize : {1u, 7u, 64u, 480u}) {
        Fade cut(10.0f, 48000.0f, 0.0f, 1.0f);
        EXPECT_EQ(gainsOf(cut, 600, blockSize), expected) << blockSize;
    }
}

TEST(Fade, AFinishedFadeInTouchesNothing) {
    Fade fade(10.0f, 48000.0f, 0.0f, 1.0f);
    gainsOf(fade, 600);
    SampleBuffer block(1, 2);
    block.channelPointers[0][0] = std::numeric_limits<float>::infinity();
    block.channelPointers[0][1] = 0.3f;
    fade.apply(block);
    EXPECT_EQ(block.channelPointers[0][0], std::numeric_limits<float>::infinity());
    EXPECT_EQ(block.channelPointers[0][1], 0.3f);
}

TEST(Fade, FallsInAStraightLineAndGoesOnMultiplyingByItsTarget) {
    Fade fade(10.0f, 48000.0f, 1.0f, 0.25f);
    const Signal gains = gainsOf(fade, 600);
    // The step is that of a full fade: 1 / 480 per sample, so 0.75 takes 360 samples.
    for (std::size_t i = 0; i < 358; ++i)
        ASSERT_NEAR(gains[i], 1.0 - static_cast<double>(i + 1) / 480.0, 360 * 6e-8) << i;
    for (std::size_t i = 360; i < gains.size(); ++i)
        ASSERT_EQ(gains[i], 0.25f) << i;
}

TEST(Fade, AFadeOutEndsInSilence) {
    Fade fade(10.0f, 44100.0f, 1.0f, 0.0f);
    const Signal gains = gainsOf(fade, 700);
    EXPECT_THAT(Signal(gains.begin() + 441, gains.end()), test::Silence());
    EXPECT_GT(gains[437], 0.0f);
}

TEST(Fade, ARiseToAnotherTargetThanOneGoesOnMultiplyingByIt) {
    Fade fade(10.0f, 48000.0f, 0.0f, 0.5f);
    const Signal gains = gainsOf(fade, 600);
    EXPECT_LT(gains[200], 0.5f);
    for (std::size_t i = 240; i < gains.size(); ++i)
        ASSERT_EQ(gains[i], 0.5f) << i;
}

TEST(Fade, WithoutALengthItIsThereAtOnce) {
    Fade rising(0.0f, 48000.0f, 0.0f, 1.0f);
    EXPECT_EQ(gainsOf(rising, 4), Signal(4, 1.0f));
    Fade falling(-1.0f, 48000.0f, 1.0f, 0.0f);
    EXPECT_THAT(gainsOf(falling, 4), test::Silence());
}

TEST(Fade, NoStepIsLargerThanItsSlope) {
    // Property against clicks: neighbours differ by two steps at most, where the end is reached early.
    for (const float rate : {44100.0f, 48000.0f, 96000.0f}) {
        Fade fade(10.0f, rate, 0.0f, 1.0f);
        const Signal gains = gainsOf(fade, 2000);
        for (std::size_t i = 1; i < gains.size(); ++i)
            ASSERT_LE(gains[i] - gains[i - 1], 2.01f * 100.0f / rate) << i;
    }
}

TEST(Fade, NeitherAllocatesNorLocksWhileItRuns) {
    Fade fade(10.0f, 48000.0f, 0.0f, 1.0f);
    SampleBuffer block(2, 300);
    const test::RealtimeScope scope;
    for (int round = 0; round < 3; ++round)
        fade.apply(block);
    const auto seen = scope.violations();
    EXPECT_EQ(seen, test::RealtimeViolations{});
}

} // namespace
