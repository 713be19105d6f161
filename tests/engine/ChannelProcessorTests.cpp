// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"
#include "engine/BassReductionProcessor.h"
#include "engine/GainCompensationProcessor.h"
#include "engine/MasterGainProcessor.h"
#include "filters/BiquadFilterFactory.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

namespace {

using namespace orvane::kestrum::core;
using orvane::SampleBuffer;
using ::testing::Each;
using ::testing::FloatEq;

SampleBuffer ones(std::uint64_t frames) {
    SampleBuffer buffer(2, frames);
    for (std::uint64_t channel = 0; channel < 2; ++channel)
        std::fill_n(buffer.channelPointers[channel], frames, 1.0f);
    return buffer;
}

std::vector<float> contents(const SampleBuffer& buffer, std::uint64_t channel) {
    const orvane::SampleSpan span = buffer.channel(channel);
    return {span.begin(), span.end()};
}

TEST(GainCompensation, IsTheAmplitudeRatioOfItsLevel) {
    GainCompensationProcessor processor(0.6f); // a stereo layout with a spread
    SampleBuffer buffer = ones(16);
    processor.process(buffer);
    EXPECT_THAT(contents(buffer, 0), Each(FloatEq(1.0715193f))); // 10^(0.6 / 20)
    EXPECT_EQ(contents(buffer, 0), contents(buffer, 1));
}

TEST(MasterGain, AnUnchangedGainIsAConstantFactorFromTheFirstFrame) {
    const float gainDb = -6.0f;
    MasterGainProcessor processor(&gainDb, 48000.0);
    for (int block = 0; block < 3; ++block) {
        SampleBuffer buffer = ones(64);
        processor.process(buffer);
        EXPECT_THAT(contents(buffer, 0), Each(std::pow(10.0f, -6.0f / 20.0f)));
    }
}

// Analytic reference: from 1 to g in 240 equal steps (5 ms at 48 kHz); a frame takes the gain before its
// update.
TEST(MasterGain, AChangeInsideOneBlockIsALinearRampOfFiveMilliseconds) {
    float gainDb = 0.0f;
    MasterGainProcessor processor(&gainDb, 48000.0);
    gainDb = -20.0f;
    SampleBuffer buffer = ones(480);
    processor.process(buffer);
    const std::vector<float> gain = contents(buffer, 0);
    EXPECT_EQ(gain[0], 1.0f);
    for (int frame = 0; frame < 240; ++frame)
        ASSERT_NEAR(gain[static_cast<std::size_t>(frame)], 1.0 - 0.9 * frame / 240.0, 1e-6) << frame;
    for (std::size_t frame = 240; frame < gain.size(); ++frame)
        ASSERT_FLOAT_EQ(gain[frame], 0.1f);
}

TEST(MasterGain, AChangeOf96DecibelsAtBlocksOf64EndsWithoutAClickInARampThatRestartsAtEachBlock) {
    float gainDb = 0.0f;
    MasterGainProcessor processor(&gainDb, 48000.0);
    gainDb = -96.0f;
    std::vector<float> gain;
    for (int block = 0; block < 100; ++block) {
        SampleBuffer buffer = ones(64);
        processor.process(buffer);
        const std::vector<float> part = contents(buffer, 0);
        gain.insert(gain.end(), part.begin(), part.end());
    }
    // No step is larger than the steepest slope of the design, the whole way in 240 frames.
    for (std::size_t frame = 1; frame < gain.size(); ++frame)
        ASSERT_LE(std::abs(gain[frame] - gain[frame - 1]), 1.0f / 240.0f * 1.001f) << frame;
    // The second block starts its ramp anew from where the first one left off: 64 of 240 steps were made.
    const float afterOneBlock = gain[64];
    EXPECT_NEAR(afterOneBlock, 1.0 - 64.0 / 240.0, 1e-4);
    EXPECT_NEAR(gain[65] - gain[64], -afterOneBlock / 240.0, 1e-6);
    EXPECT_NEAR(gain.back(), std::pow(10.0, -96.0 / 20.0), 1e-6);
}

TEST(MasterGain, TakesTheRampLengthTruncatedToWholeFrames) {
    float gainDb = 0.0f;
    MasterGainProcessor processor(&gainDb, 44100.0); // 220.5 frames
    gainDb = -200.0f;
    SampleBuffer buffer = ones(300);
    processor.process(buffer);
    EXPECT_GT(contents(buffer, 0)[219], 1e-3f);
    EXPECT_LT(contents(buffer, 0)[220], 1e-6f);
}

/// Magnitude of the response to an impulse at one frequency, by direct summation in double precision.
double magnitudeDb(const std::vector<float>& response, double frequency, double sampleRate) {
    std::complex<double> sum;
    for (std::size_t n = 0; n < response.size(); ++n)
        sum += static_cast<double>(response[n]) *
               std::polar(1.0, -2.0 * std::numbers::pi * frequency / sampleRate * static_cast<double>(n));
    return 20.0 * std::log10(std::abs(sum));
}

// Expected: a shelf of -2.7 dB well below 340 Hz, nothing well above.
TEST(BassReduction, TakesTheShelfsGainOffTheBassOfBothChannels) {
    orvane::BiquadFilterFactory filterFactory;
    BassReductionProcessor processor(48000.0, &filterFactory);
    SampleBuffer impulse(2, 16384);
    impulse.channelPointers[0][0] = 1.0f;
    impulse.channelPointers[1][0] = 1.0f;
    processor.process(impulse);
    const std::vector<float> left = contents(impulse, 0);
    EXPECT_NEAR(magnitudeDb(left, 10.0, 48000.0), -2.7, 0.02);
    // At the corner the analog prototype is (1 + sqrt(2) s + s^2) / (1 + sqrt(2 V) s + V s^2) at s = j.
    const double V = std::pow(10.0, 2.7 / 20.0);
    const double atTheCorner = std::sqrt(2.0 / ((1.0 - V) * (1.0 - V) + 2.0 * V));
    EXPECT_NEAR(magnitudeDb(left, 340.0, 48000.0), 20.0 * std::log10(atTheCorner), 0.01);
    EXPECT_NEAR(magnitudeDb(left, 10000.0, 48000.0), 0.0, 0.02);
    EXPECT_EQ(left, contents(impulse, 1));
}

TEST(BassReduction, KeepsItsStateFromBlockToBlock) {
    orvane::BiquadFilterFactory filterFactory;
    BassReductionProcessor inOne(48000.0, &filterFactory);
    BassReductionProcessor inTwo(48000.0, &filterFactory);
    SampleBuffer whole = ones(128);
    inOne.process(whole);
    std::vector<float> parts;
    for (int block = 0; block < 2; ++block) {
        SampleBuffer half = ones(64);
        inTwo.process(half);
        const std::vector<float> part = contents(half, 1);
        parts.insert(parts.end(), part.begin(), part.end());
    }
    EXPECT_EQ(parts, contents(whole, 1));
}

TEST(ChannelProcessors, NeitherAllocateNorLock) {
    float gainDb = 0.0f;
    orvane::BiquadFilterFactory filterFactory;
    BassReductionProcessor bass(48000.0, &filterFactory);
    MasterGainProcessor gain(&gainDb, 48000.0);
    GainCompensationProcessor compensation(-9.4f);
    SampleBuffer buffer = ones(64);
    gainDb = 12.0f;
    const test::RealtimeScope scope;
    bass.process(buffer);
    gain.process(buffer);
    compensation.process(buffer);
    EXPECT_EQ(scope.violations().total(), 0u) << scope.violations();
}

} // namespace
