// SPDX-License-Identifier: GPL-3.0-or-later
#include "filters/BiquadFilter.h"
#include "filters/BiquadFilterFactory.h"
#include "filters/BiquadSection.h"
#include "reference/AnalogPrototype.h"
#include "reference/Dft.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <memory>
#include <numbers>

namespace {

using orvane::BiquadFilterFactory;
using orvane::HighPassBiquadFilter;
using orvane::IBiquadFilter;
using orvane::LowPassBiquadFilter;
using orvane::LowShelfBiquadFilter;
using test::Signal;

constexpr float rate = 48000.0f;
constexpr std::size_t ringingTime = 32768; ///< Samples; the slowest case here is 120 dB down long before.

Signal impulseResponseOf(IBiquadFilter& filter) {
    Signal signal = test::impulse(ringingTime, test::Position{0});
    filter.processInPlace(signal.data(), signal.size(), 1.0f);
    return signal;
}

/// Coefficients near 1 and -2 keep about 1e-7; their sum at low cutoffs and low frequencies is (pi f)^2.
constexpr double recursionError = 2e-3;

struct PassCase {
    float cutoffHz;
    float q;
};

class PassFilters : public ::testing::TestWithParam<PassCase> {};

/// Analytic reference: the analogue prototype under the bilinear transform, without digital coefficients.
TEST_P(PassFilters, LowPassFollowsItsPrototypeFromBassToTreble) {
    const auto [cutoffHz, q] = GetParam();
    const auto response = impulseResponseOf(*BiquadFilterFactory().createLowPass(rate, cutoffHz, q));
    for (const double f : {0.0005, 0.005, 0.02, 0.1, 0.25, 0.4, 0.49}) {
        const auto expected =
            test::reference::lowPassResponse(f, static_cast<double>(cutoffHz / rate), static_cast<double>(q));
        EXPECT_NEAR(std::abs(test::reference::responseAt(response, f) - expected), 0.0, recursionError) << f;
    }
}

TEST_P(PassFilters, HighPassFollowsItsPrototypeFromBassToTreble) {
    const auto [cutoffHz, q] = GetParam();
    const auto response = impulseResponseOf(*BiquadFilterFactory().createHighPass(rate, cutoffHz, q));
    for (const double f : {0.0005, 0.005, 0.02, 0.1, 0.25, 0.4, 0.49}) {
        const auto expected = test::reference::highPassResponse(f, static_cast<double>(cutoffHz / rate),
                                                                static_cast<double>(q));
        EXPECT_NEAR(std::abs(test::reference::responseAt(response, f) - expected), 0.0, recursionError) << f;
    }
}

TEST_P(PassFilters, HaveTheirQualityAsLevelAtTheCutoff) {
    // Analytic: |H| = q at the cutoff of either filter.
    const auto [cutoffHz, q] = GetParam();
    const double f = static_cast<double>(cutoffHz / rate);
    const auto low = impulseResponseOf(*BiquadFilterFactory().createLowPass(rate, cutoffHz, q));
    const auto high = impulseResponseOf(*BiquadFilterFactory().createHighPass(rate, cutoffHz, q));
    EXPECT_NEAR(std::abs(test::reference::responseAt(low, f)), q, recursionError);
    EXPECT_NEAR(std::abs(test::reference::responseAt(high, f)), q, recursionError);
}
INSTANTIATE_TEST_SUITE_P(CutoffsAndQualities, PassFilters,
                         ::testing::Values(PassCase{100, 0.707f}, PassCase{120, 0.5f}, PassCase{1000, 0.707f},
                                           PassCase{1000, 3.0f}, PassCase{5000, 0.77f},
                                           PassCase{20000, 0.707f}));

class Shelves : public ::testing::TestWithParam<float> {};

TEST_P(Shelves, FollowTheirPrototypeAndLeaveTheTrebleAlone) {
    const float gainDb = GetParam();
    for (const float cutoffHz : {200.0f, 1000.0f, 8000.0f}) {
        const auto response =
            impulseResponseOf(*BiquadFilterFactory().createLowShelf(rate, cutoffHz, gainDb));
        for (const double f : {0.0005, 0.005, 0.02, 0.1, 0.25, 0.4, 0.49}) {
            const auto expected = test::reference::lowShelfResponse(f, static_cast<double>(cutoffHz / rate),
                                                                    static_cast<double>(gainDb));
            EXPECT_NEAR(std::abs(test::reference::responseAt(response, f) - expected), 0.0,
                        recursionError * std::max(1.0, std::abs(expected)))
                << cutoffHz << " Hz, " << f;
        }
    }
}
INSTANTIATE_TEST_SUITE_P(GainsInDecibels, Shelves,
                         ::testing::Values(-24.0f, -6.0f, -0.5f, 0.0f, 0.5f, 6.0f, 24.0f));

TEST(LowShelfBiquadFilter, PassesEveryBitAtZeroDecibels) {
    // Analytic: V = 1 makes the b terms equal to the a terms, b0 to 1.
    LowShelfBiquadFilter filter(rate, 1000.0f, 0.0f);
    const Signal input = test::noise(2000, test::Seed{1});
    Signal output = input;
    filter.processInPlace(output.data(), output.size(), 1.0f);
    EXPECT_THAT(output, test::CloseTo(input, test::Tolerance{1e-5f})); // b0 = x * (1 / x) may miss 1 by a bit
    const auto c = orvane::lowShelfCoefficients(1000.0f / rate, 0.0f);
    EXPECT_NEAR(c.b0, 1.0f, 1.2e-7f);
    EXPECT_EQ(c.b1, c.a1);
    EXPECT_EQ(c.b2, c.a2);
}

TEST(LowShelfBiquadFilter, ABoostAndTheSameCutCancel) {
    // Null test: the cut has the boost's poles for zeros.
    for (const float gainDb : {3.0f, 12.0f, 24.0f}) {
        LowShelfBiquadFilter boost(rate, 2000.0f, gainDb);
        LowShelfBiquadFilter cut(rate, 2000.0f, -gainDb);
        const Signal input = test::noise(2000, test::Seed{2});
        Signal output = input;
        boost.processInPlace(output.data(), output.size(), 1.0f);
        cut.processInPlace(output.data(), output.size(), 1.0f);
        EXPECT_THAT(output, test::CloseTo(input, test::Tolerance{1e-3f}))
            << gainDb; // 60 dB down: float recursion
    }
}

TEST(LowShelfBiquadFilter, TakesItsGainWhereOthersTakeTheirQuality) {
    LowShelfBiquadFilter changed(rate, 1000.0f, 0.0f);
    LowShelfBiquadFilter built(rate, 1000.0f, -9.0f);
    IBiquadFilter& filter = changed;
    filter.setQ(-9.0f);
    EXPECT_EQ(impulseResponseOf(changed), impulseResponseOf(built));
    LowShelfBiquadFilter named(rate, 1000.0f, 0.0f);
    named.setGain(-9.0f);
    built.reset();
    EXPECT_EQ(impulseResponseOf(named), impulseResponseOf(built));
}

TEST(BiquadFilter, AFrequencyAbove0458OfTheRateLandsThere) {
    // 0.458 * 44100 = 20197.8 Hz.
    LowPassBiquadFilter beyond(44100.0f, 1000.0f, 0.707f);
    beyond.setFrequency(22000.0f);
    LowPassBiquadFilter bound(44100.0f, 1000.0f, 0.707f);
    bound.setFrequency(20197.8f);
    const Signal expected = impulseResponseOf(bound);
    EXPECT_THAT(impulseResponseOf(beyond), test::CloseTo(expected, test::Tolerance{1e-6f}));
    LowPassBiquadFilter builtBeyond(44100.0f, 90000.0f, 0.707f);
    EXPECT_THAT(impulseResponseOf(builtBeyond), test::CloseTo(expected, test::Tolerance{1e-6f}));
}

TEST(BiquadFilter, ANegativeFrequencyIsZero) {
    HighPassBiquadFilter negative(rate, 1000.0f, 0.707f);
    negative.setFrequency(-500.0f);
    const auto c = orvane::highPassCoefficients(orvane::clampNormalizedFrequency(-500.0f / rate), 0.707f);
    EXPECT_EQ(c.b0, 1.0f);
    EXPECT_EQ(c.a1, -2.0f);
}

TEST(BiquadFilter, AHighPassAtZeroHertzKeepsItsUnguardedCoefficients) {
    // K = 0: 1 - 2 z^-1 + z^-2 above and below.
    const auto c = orvane::highPassCoefficients(0.0f, 0.707f);
    EXPECT_EQ(c.b0, 1.0f);
    EXPECT_EQ(c.b1, -2.0f);
    EXPECT_EQ(c.b2, 1.0f);
    EXPECT_EQ(c.a1, -2.0f);
    EXPECT_EQ(c.a2, 1.0f);
    HighPassBiquadFilter filter(rate, 1000.0f, 0.707f);
    filter.setFrequency(0.0f);
    const Signal input = test::noise(100, test::Seed{3});
    Signal output = input;
    filter.processInPlace(output.data(), output.size(), 1.0f);
    EXPECT_THAT(output, test::CloseTo(input, test::Tolerance{1e-3f})); // zeros on poles, on the unit circle
}

TEST(BiquadFilter, ALowPassAtZeroHertzIsSilent) {
    LowPassBiquadFilter filter(rate, 1000.0f, 0.707f);
    filter.setFrequency(0.0f);
    Signal signal = test::noise(100, test::Seed{4});
    filter.processInPlace(signal.data(), signal.size(), 1.0f);
    EXPECT_THAT(signal, test::Silence());
}

TEST(BiquadFilter, AQualityOfZeroIsNotGuarded) {
    // Deliberate: 1 / 0 in K / q; nothing is reported.
    const auto c = orvane::lowPassCoefficients(0.1f, 0.0f);
    EXPECT_EQ(c.b0, 0.0f);
    EXPECT_TRUE(std::isnan(c.a2));
}

TEST(BiquadFilter, AFrequencyThatIsSetAgainChangesNoBit) {
    LowPassBiquadFilter once(rate, 3000.0f, 0.707f);
    LowPassBiquadFilter again(rate, 3000.0f, 0.707f);
    Signal first = test::noise(64, test::Seed{5});
    Signal second = first;
    for (int block = 0; block < 4; ++block) {
        again.setFrequency(3000.0f);
        once.processInPlace(first.data(), first.size(), 1.0f);
        again.processInPlace(second.data(), second.size(), 1.0f);
        EXPECT_EQ(first, second);
    }
}

TEST(BiquadFilter, AParameterTakesEffectAtOnceAndKeepsTheState) {
    // Slow reference: direct form II transposed in double precision with the coefficients switched midway.
    LowPassBiquadFilter filter(rate, 500.0f, 0.707f);
    const Signal input = test::noise(128, test::Seed{6});
    Signal output = input;
    filter.processInPlace(output.data(), 64, 1.0f);
    filter.setFrequency(4000.0f);
    filter.setQ(2.0f);
    filter.processInPlace(output.data() + 64, 64, 1.0f);
    double z1 = 0;
    double z2 = 0;
    for (std::size_t i = 0; i < input.size(); ++i) {
        const double k = std::tan(std::numbers::pi * (i < 64 ? 500.0 : 4000.0) / 48000.0);
        const double q = i < 64 ? 0.707 : 2.0;
        const double norm = 1.0 / (k / q + 1.0 + k * k);
        const double x = static_cast<double>(input[i]);
        const double y = k * k * norm * x + z1;
        z1 = 2.0 * k * k * norm * x + z2 - 2.0 * (k * k - 1.0) * norm * y;
        z2 = k * k * norm * x - (1.0 - k / q + k * k) * norm * y;
        ASSERT_NEAR(output[i], y, 1e-5) << i; // float recursion over 128 samples
    }
}

TEST(BiquadFilter, ResetForgetsThePast) {
    HighPassBiquadFilter used(rate, 300.0f, 0.707f);
    HighPassBiquadFilter fresh(rate, 300.0f, 0.707f);
    Signal signal = test::noise(500, test::Seed{7});
    used.processInPlace(signal.data(), signal.size(), 1.0f);
    used.reset();
    EXPECT_EQ(impulseResponseOf(used), impulseResponseOf(fresh));
}

/// The variants of the sample loop against a twin filter that runs plainly; equal bits, as the arithmetic per
/// sample is given to the letter.
class SampleLoops : public ::testing::Test {
protected:
    static constexpr std::uint64_t count = 50;
    static constexpr float gain = 0.3f;

    /// The section's answer to `factor * input`.
    Signal answer(float factor) {
        Signal y(count);
        for (std::size_t i = 0; i < count; ++i)
            y[i] = factor * input[i];
        twin.processInPlace(y.data(), count, 1.0f);
        return y;
    }

    const Signal input = test::noise(count, test::Seed{8});
    const Signal already = test::noise(count, test::Seed{9});
    LowShelfBiquadFilter filter{rate, 900.0f, 7.0f};
    LowShelfBiquadFilter twin{rate, 900.0f, 7.0f};
};

TEST_F(SampleLoops, ProcessScalesWhatGoesIn) {
    Signal out(count);
    filter.process(input.data(), out.data(), count, gain);
    EXPECT_EQ(out, answer(gain));
}

TEST_F(SampleLoops, ProcessInPlaceScalesWhatComesOut) {
    Signal buffer = input;
    filter.processInPlace(buffer.data(), count, gain);
    Signal expected = answer(1.0f);
    for (float& sample : expected)
        sample *= gain;
    EXPECT_EQ(buffer, expected);
}

TEST_F(SampleLoops, ProcessInPlaceSeesTheDifferenceToInputScalingWhenTheGainChanges) {
    // The deliberate asymmetry: a gain of 0 silences at once, but the section has still heard the input.
    Signal silenced = input;
    filter.processInPlace(silenced.data(), count, 0.0f);
    EXPECT_THAT(silenced, test::Silence());
    Signal tail(count, 0.0f);
    filter.processInPlace(tail.data(), count, 1.0f);
    EXPECT_GT(test::peak(tail), 0.0f);
    Signal unheard(count);
    twin.process(input.data(), unheard.data(), count, 0.0f);
    Signal noTail(count, 0.0f);
    twin.processInPlace(noTail.data(), count, 1.0f);
    EXPECT_THAT(noTail, test::Silence());
}

TEST_F(SampleLoops, ProcessInPlaceFadingEndsJustAboveZero) {
    Signal buffer = input;
    filter.processInPlaceFading(buffer.data(), count, 0, gain);
    Signal expected = answer(gain);
    for (std::size_t i = 0; i < count; ++i)
        expected[i] = (1.0f - static_cast<float>(i) / 50.0f) * expected[i];
    EXPECT_EQ(buffer, expected);
    EXPECT_EQ(buffer[0], gain * input[0] * orvane::lowShelfCoefficients(900.0f / rate, 7.0f).b0);
    EXPECT_NE(buffer[49], 0.0f);
}

TEST_F(SampleLoops, TheFadesSpanIsTheCountAndTheOffsetMovesIntoIt) {
    Signal buffer = input;
    filter.processInPlaceFading(buffer.data(), count, 20, gain);
    Signal expected = answer(gain);
    for (std::size_t i = 0; i < count; ++i)
        expected[i] = (1.0f - static_cast<float>(20 + i) / 50.0f) * expected[i];
    EXPECT_EQ(buffer, expected);
    EXPECT_EQ(buffer[30], 0.0f); // 1 - 50 / 50
}

TEST_F(SampleLoops, ProcessAddAddsToWhatIsThere) {
    Signal out = already;
    filter.processAdd(input.data(), out.data(), count, gain);
    const Signal y = answer(gain);
    for (std::size_t i = 0; i < count; ++i)
        EXPECT_EQ(out[i], already[i] + y[i]);
}

TEST_F(SampleLoops, ProcessAddFadingAddsARampedAnswer) {
    Signal out = already;
    filter.processAddFading(input.data(), out.data(), count, 5, gain);
    const Signal y = answer(gain);
    for (std::size_t i = 0; i < count; ++i)
        EXPECT_EQ(out[i], already[i] + (1.0f - static_cast<float>(i + 5) / 50.0f) * y[i]);
}

TEST_F(SampleLoops, BlocksOfAnySizeGiveTheSameStream) {
    Signal pieces = input;
    std::size_t frame = 0;
    for (const std::size_t size : {1u, 2u, 3u, 4u, 5u, 35u}) {
        filter.processInPlace(pieces.data() + frame, size, 1.0f);
        frame += size;
    }
    ASSERT_EQ(frame, count);
    EXPECT_EQ(pieces, answer(1.0f));
}

TEST(BiquadFilter, NeitherAllocatesNorLocksWhileItIsSetAndRuns) {
    BiquadFilterFactory factory;
    const std::unique_ptr<IBiquadFilter> filters[]{factory.createLowPass(rate, 1000, 0.7f),
                                                   factory.createHighPass(rate, 1000, 0.7f),
                                                   factory.createLowShelf(rate, 1000, 3)};
    Signal in = test::noise(64, test::Seed{10});
    Signal out(64);
    for (const auto& filter : filters) {
        const test::RealtimeScope scope;
        filter->setFrequency(2000);
        filter->setQ(0.9f);
        filter->process(in.data(), out.data(), 64, 1);
        filter->processInPlace(out.data(), 64, 1);
        filter->processInPlaceFading(out.data(), 64, 0, 1);
        filter->processAdd(in.data(), out.data(), 64, 1);
        filter->processAddFading(in.data(), out.data(), 64, 0, 1);
        filter->reset();
        const auto seen = scope.violations();
        EXPECT_EQ(seen, test::RealtimeViolations{});
    }
}

} // namespace
