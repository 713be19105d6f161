// SPDX-License-Identifier: GPL-3.0-or-later
// Expected values are analytic: what tones, impulses and steps hold is known.
#include "support/Clicks.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

namespace {

constexpr double sampleRate = 48000;

test::Signal tone(double frequencyHz, std::size_t length) {
    test::Signal signal(length);
    for (std::size_t frame = 0; frame < length; ++frame)
        signal[frame] = static_cast<float>(
            std::sin(2 * std::numbers::pi * frequencyHz * static_cast<double>(frame) / sampleRate));
    return signal;
}

double highDb(const test::Signal& signal) {
    const test::Stretch inside{1000, signal.size() - 1000};
    return 10 * std::log10(test::loudestHighPower(signal, inside, sampleRate) / test::meanPower(signal));
}

TEST(HighPower, LeavesNothingOfAToneOfOneKilohertz) { EXPECT_LT(highDb(tone(1000, 4800)), -90); }

TEST(HighPower, TakesAToneAboveFourKilohertzWhole) {
    for (const double frequencyHz : {4000.0, 6000.0, 20000.0})
        EXPECT_NEAR(highDb(tone(frequencyHz, 4800)), 0, 0.01) << frequencyHz;
}

/// Analytic: an impulse is flat, so 20.5 kHz of 24 are above the edge; its energy lies in one window.
TEST(HighPower, IsTheShareOfAnImpulseInTheWindowsLength) {
    const test::Signal signal = test::impulse(4800, test::Position{2400}, 0.5f);
    EXPECT_NEAR(test::loudestHighPower(signal, {0, 4800}, sampleRate), 0.25 * 20.5 / 24 / 96, 1e-5);
}

TEST(HighPower, CountsTheStretchOnly) {
    const test::Signal signal = test::impulse(4800, test::Position{2400});
    EXPECT_EQ(test::loudestHighPower(signal, {0, 2000}, sampleRate), 0);
}

/// Analytic: a sine's mean power is half the square of its amplitude.
TEST(LoudestPower, IsThatOfTheLouderPart) {
    test::Signal signal = tone(1000, 4800);
    std::ranges::for_each(signal.begin() + 2400, signal.end(), [](float& sample) { sample *= 0.5f; });
    EXPECT_NEAR(test::loudestPower(signal, sampleRate), 0.5, 1e-6);
    std::ranges::for_each(signal, [](float& sample) { sample *= 2.0f; });
    EXPECT_NEAR(test::loudestPower(signal, sampleRate), 2.0, 1e-6);
}

TEST(SecondDifference, OfAToneIsItsAmplitudeTimesTheSquareOfItsFrequency) {
    const double step = 2 * std::sin(std::numbers::pi * 1000 / sampleRate);
    EXPECT_NEAR(test::largestSecondDifference(tone(1000, 480)), step * step, 1e-6);
}

TEST(SecondDifference, OfAStepIsItsHeight) {
    test::Signal signal(100, 0.0f);
    std::fill(signal.begin() + 50, signal.end(), 0.25f);
    EXPECT_EQ(test::largestSecondDifference(signal), 0.25);
}

} // namespace
