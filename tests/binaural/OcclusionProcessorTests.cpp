// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"
#include "binaural/OcclusionProcessor.h"
#include "filters/BiquadFilterFactory.h"
#include "reference/AnalogPrototype.h"
#include "reference/Dft.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>

namespace {

using orvane::OcclusionProcessor;
using orvane::SampleBuffer;
using test::Signal;

constexpr float sampleRate = 48000.0f;

Signal leftOf(const SampleBuffer& buffer) { return {buffer.channel(0).begin(), buffer.channel(0).end()}; }

SampleBuffer noiseBuffer(std::uint32_t seed) {
    SampleBuffer buffer(2, 256);
    for (std::uint64_t channel = 0; channel < 2; ++channel) {
        const Signal signal = test::noise(256, test::Seed{seed + static_cast<std::uint32_t>(channel)});
        std::copy(signal.begin(), signal.end(), buffer.channelPointers[channel]);
    }
    return buffer;
}

struct AmountCase {
    float amount;
    double cutoffHz;
};

class OcclusionAmounts : public ::testing::TestWithParam<AmountCase> {};

/// Analytic reference: the analogue low pass of quality 0.707 under the bilinear transform.
TEST_P(OcclusionAmounts, LowPassesBothEarsAtACutoffThatFallsExponentially) {
    const auto [amount, cutoffHz] = GetParam();
    orvane::BiquadFilterFactory factory;
    OcclusionProcessor processor(sampleRate, &amount, 2, &factory);
    SampleBuffer buffer(2, 8192); // long enough for the slowest of the filters to ring out
    buffer.channelPointers[0][0] = buffer.channelPointers[1][0] = 1.0f;
    processor.process(buffer);
    const std::span<const float> left(buffer.channelPointers[0], buffer.numSamples);
    for (const double f : {0.001, 0.01, 0.05, 0.2, 0.4}) {
        const auto expected = test::reference::lowPassResponse(f, cutoffHz / 48000.0, 0.707);
        EXPECT_NEAR(std::abs(test::reference::responseAt(left, f) - expected), 0.0, 1e-3)
            << f; // float recursion
    }
    EXPECT_TRUE(std::equal(left.begin(), left.end(), buffer.channelPointers[1]));
}
INSTANTIATE_TEST_SUITE_P(AmountsAndCutoffs, OcclusionAmounts,
                         ::testing::Values(AmountCase{1.0f, 200.0}, AmountCase{0.75f, 632.4555320336759},
                                           AmountCase{0.5f, 2000.0}, AmountCase{0.25f, 6324.555320336759}));

TEST(OcclusionProcessor, LeavesTheBufferBitExactAndItsFiltersStandingStillAtAmountZero) {
    float amount = 0.0f;
    orvane::BiquadFilterFactory factory;
    OcclusionProcessor used(sampleRate, &amount, 2, &factory);
    OcclusionProcessor fresh(sampleRate, &amount, 2, &factory);
    const SampleBuffer original = noiseBuffer(1);
    SampleBuffer buffer = original;
    used.process(buffer);
    EXPECT_EQ(leftOf(buffer), leftOf(original));
    amount = 0.5f;
    SampleBuffer expected = original;
    used.process(buffer);
    fresh.process(expected);
    EXPECT_EQ(leftOf(buffer), leftOf(expected));
}

TEST(OcclusionProcessor, CarriesTheTailOfOneResponseIntoTheNext) {
    // Deliberate in the product: the state is not reset between runs. Two halves filter as one whole.
    float amount = 0.9f;
    orvane::BiquadFilterFactory factory;
    OcclusionProcessor inTwoRuns(sampleRate, &amount, 2, &factory);
    OcclusionProcessor inOneRun(sampleRate, &amount, 2, &factory);
    const Signal signal = test::noise(512, test::Seed{3});
    SampleBuffer whole(2, 512);
    std::copy(signal.begin(), signal.end(), whole.channelPointers[0]);
    inOneRun.process(whole);
    for (const std::size_t start : {0u, 256u}) {
        SampleBuffer half(2, 256);
        std::copy_n(signal.begin() + static_cast<std::ptrdiff_t>(start), 256, half.channelPointers[0]);
        inTwoRuns.process(half);
        EXPECT_TRUE(
            std::equal(half.channel(0).begin(), half.channel(0).end(), whole.channelPointers[0] + start));
    }
}

TEST(OcclusionProcessor, TreatsAsManyChannelsAsItWasBuiltFor) {
    float amount = 1.0f;
    orvane::BiquadFilterFactory factory;
    OcclusionProcessor processor(sampleRate, &amount, 1, &factory);
    const SampleBuffer original = noiseBuffer(4);
    SampleBuffer buffer = original;
    processor.process(buffer);
    EXPECT_NE(leftOf(buffer), leftOf(original));
    EXPECT_TRUE(std::equal(buffer.channel(1).begin(), buffer.channel(1).end(), original.channel(1).begin()));
}

TEST(OcclusionProcessor, NeitherAllocatesNorLocksWhileItRuns) {
    float amount = 0.5f;
    orvane::BiquadFilterFactory factory;
    OcclusionProcessor processor(sampleRate, &amount, 2, &factory);
    SampleBuffer buffer = noiseBuffer(6);
    const test::RealtimeScope scope;
    processor.process(buffer);
    const auto seen = scope.violations();
    EXPECT_EQ(seen, test::RealtimeViolations{});
}

} // namespace
