// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"
#include "engine/fades/CrossFader.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

using orvane::CrossFader;
using orvane::SampleBuffer;
using test::Signal;

void fill(SampleBuffer& buffer, float value) {
    for (std::uint64_t channel = 0; channel < buffer.numChannels; ++channel)
        std::fill_n(buffer.channelPointers[channel], buffer.numSamples, value);
}

TEST(CrossFader, FadesInAStraightLineFromWhollyOldToWhollyNew) {
    // Analytic: old 2, new 10, so 2 + 8 k / 63 at sample k.
    CrossFader fader(2, 64);
    fill(fader.buffer(), 2.0f);
    SampleBuffer output(2, 64);
    fill(output, 10.0f);
    fader.apply(output);
    for (std::uint64_t channel = 0; channel < 2; ++channel) {
        EXPECT_EQ(output.channelPointers[channel][0], 2.0f);
        EXPECT_EQ(output.channelPointers[channel][63], 10.0f);
        for (std::uint64_t k = 0; k < 64; ++k)
            EXPECT_NEAR(output.channelPointers[channel][k], 2.0 + 8.0 * static_cast<double>(k) / 63.0,
                        3e-6); // float
    }
}

TEST(CrossFader, LeavesWhatLiesBehindItsLengthWhollyNew) {
    CrossFader fader(2, 64);
    fill(fader.buffer(), 100.0f);
    SampleBuffer output(2, 512);
    const Signal fresh = test::noise(512, test::Seed{1});
    std::copy(fresh.begin(), fresh.end(), output.channelPointers[1]);
    fader.apply(output);
    EXPECT_TRUE(std::equal(fresh.begin() + 64, fresh.end(), output.channelPointers[1] + 64));
    EXPECT_EQ(output.channelPointers[1][0], 100.0f);
}

TEST(CrossFader, BetweenTwoEqualVersionsChangesNothingBeyondRounding) {
    // Null test: the two ramps add up to 1.
    CrossFader fader(1, 480);
    const Signal both = test::noise(480, test::Seed{2});
    SampleBuffer output(1, 480);
    std::copy(both.begin(), both.end(), output.channelPointers[0]);
    std::copy(both.begin(), both.end(), fader.buffer().channelPointers[0]);
    fader.apply(output);
    EXPECT_THAT(Signal(output.channel(0).begin(), output.channel(0).end()),
                test::CloseTo(both, test::Tolerance{2.4e-7f})); // three roundings of values up to 1
}

TEST(CrossFader, HasABlockForTheOldVersionOfEveryChannel) {
    CrossFader fader(2, 139);
    EXPECT_EQ(fader.buffer().numChannels, 2u);
    EXPECT_EQ(fader.buffer().numSamples, 139u);
}

TEST(CrossFader, OfTwoSamplesIsAHardCut) {
    CrossFader fader(1, 2);
    fill(fader.buffer(), 3.0f);
    SampleBuffer output(1, 2);
    fill(output, 5.0f);
    fader.apply(output);
    EXPECT_EQ(output.channelPointers[0][0], 3.0f);
    EXPECT_EQ(output.channelPointers[0][1], 5.0f);
}

TEST(CrossFader, OfOneSampleHasNoSlope) {
    // Deliberate: 0 / 0; blocks of one sample are refused before they come here.
    CrossFader fader(1, 1);
    SampleBuffer output(1, 1);
    fader.apply(output);
    EXPECT_TRUE(std::isnan(output.channelPointers[0][0]));
}

TEST(CrossFader, NeitherAllocatesNorLocksWhileItRuns) {
    CrossFader fader(2, 64);
    SampleBuffer output(2, 64);
    const test::RealtimeScope scope;
    fader.buffer().clear();
    fader.apply(output);
    const auto seen = scope.violations();
    EXPECT_EQ(seen, test::RealtimeViolations{});
}

} // namespace
