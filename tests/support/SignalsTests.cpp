// SPDX-License-Identifier: GPL-3.0-or-later
// Expected values are written out by hand: a matcher that cannot fail proves nothing.
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using ::testing::Not;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

TEST(Noise, RepeatsWithItsSeedAndDiffersWithAnother) {
    EXPECT_EQ(test::noise(100, test::Seed{1}), test::noise(100, test::Seed{1}));
    EXPECT_NE(test::noise(100, test::Seed{1}), test::noise(100, test::Seed{2}));
}

TEST(Noise, FillsFullScaleEvenly) {
    const test::Signal signal = test::noise(100000, test::Seed{3});
    double sum = 0;
    double power = 0;
    for (const float sample : signal) {
        sum += static_cast<double>(sample);
        power += static_cast<double>(sample) * static_cast<double>(sample);
    }
    EXPECT_LE(test::peak(signal), 1.0f);
    EXPECT_NEAR(sum / 1e5, 0.0, 0.01);         // five standard deviations of the mean
    EXPECT_NEAR(power / 1e5, 1.0 / 3.0, 0.01); // variance of a uniform distribution over [-1, 1)
}

TEST(Impulse, IsOneSampleHigh) {
    EXPECT_EQ(test::impulse(4, test::Position{2}, 0.5f), (test::Signal{0, 0, 0.5f, 0}));
}

TEST(Peak, SeesNegativeSamplesAndNotANumber) {
    EXPECT_EQ(test::peak(test::Signal{0.5f, -2, 1}), 2.0f);
    EXPECT_TRUE(std::isnan(test::peak(test::Signal{nan})));
}

TEST(SilenceMatcher, RefusesTheSmallestSound) {
    EXPECT_THAT((test::Signal{0, -0.0f, 0}), test::Silence());
    EXPECT_THAT((test::Signal{0, std::numeric_limits<float>::denorm_min()}), Not(test::Silence()));
    EXPECT_THAT((test::Signal{nan}), Not(test::Silence()));
}

TEST(CloseToMatcher, RefusesOtherLengthsLargerDifferencesAndNotANumber) {
    const test::Signal expected{1, 2};
    EXPECT_THAT((test::Signal{1.25f, 1.75f}), test::CloseTo(expected, test::Tolerance{0.25f}));
    EXPECT_THAT((test::Signal{1.25f, 1.5f}), Not(test::CloseTo(expected, test::Tolerance{0.25f})));
    EXPECT_THAT((test::Signal{1, 2, 3}), Not(test::CloseTo(expected, test::Tolerance{9})));
    EXPECT_THAT((test::Signal{1, nan}), Not(test::CloseTo(expected, test::Tolerance{9})));
}

TEST(DelayedCopyMatcher, WantsZerosBeforeAndTheSignalBehindTheDelay) {
    const test::Signal original{1, 2};
    const test::Tolerance exact{0};
    EXPECT_THAT((test::Signal{0, 0, 1, 2, 0}), test::DelayedCopyOf(original, 2u, exact));
    EXPECT_THAT((test::Signal{0, 1}), test::DelayedCopyOf(original, 1u, exact));
    EXPECT_THAT((test::Signal{1, 1, 2}), Not(test::DelayedCopyOf(original, 1u, exact)));
    EXPECT_THAT((test::Signal{0, 1, 2, 1}), Not(test::DelayedCopyOf(original, 1u, exact)));
    EXPECT_THAT((test::Signal{0, nan, 2}), Not(test::DelayedCopyOf(original, 1u, exact)));
}

} // namespace
