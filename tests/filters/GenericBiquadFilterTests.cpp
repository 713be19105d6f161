// SPDX-License-Identifier: GPL-3.0-or-later
#include "filters/ChannelProcessorManager.h"
#include "filters/GenericBiquadFilter.h"
#include "filters/RumbleFree.h"
#include "parameters/zmtl/HardValue.h"
#include "reference/AnalogPrototype.h"
#include "reference/Dft.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace {

using orvane::IGenericBiquadFilter;
using orvane::SampleSpan;
using test::Signal;
using Lowpass = orvane::GenericBiquadFilter<zmtl::HardValue<float>, orvane::LowpassBiquad>;
using Highpass = orvane::GenericBiquadFilter<zmtl::HardValue<float>, orvane::HighpassBiquad>;
using Rumble = orvane::RumbleFree<Highpass>;

constexpr float rate = 48000.0f;

SampleSpan spanOf(Signal& signal) { return {signal.data(), signal.size()}; }

Signal impulseResponseOf(IGenericBiquadFilter& filter) {
    Signal signal = test::impulse(16384, test::Position{0});
    filter.process(spanOf(signal));
    return signal;
}

constexpr double recursionError = 2e-3; // coefficients near 1 and -2 in 32-bit float

TEST(GenericBiquadFilter, StartsAt1000HertzWithAQualityOf077) {
    // Analytic reference: the analogue prototypes under the bilinear transform.
    Lowpass low(rate);
    Highpass high(rate);
    const Signal lowResponse = impulseResponseOf(low);
    const Signal highResponse = impulseResponseOf(high);
    for (const double f : {0.001, 0.01, 1000.0 / 48000.0, 0.05, 0.2, 0.45}) {
        const double cutoff = 1000.0 / 48000.0;
        EXPECT_NEAR(std::abs(test::reference::responseAt(lowResponse, f) -
                             test::reference::lowPassResponse(f, cutoff, 0.77)),
                    0.0, recursionError);
        EXPECT_NEAR(std::abs(test::reference::responseAt(highResponse, f) -
                             test::reference::highPassResponse(f, cutoff, 0.77)),
                    0.0, recursionError);
    }
}

TEST(GenericBiquadFilter, FollowsItsFrequencyAndQuality) {
    for (const double cutoffHz : {120.0, 1000.0, 9000.0}) {
        Lowpass filter(rate);
        filter.setFrequency(static_cast<float>(cutoffHz));
        filter.setQ(2.0f);
        const Signal response = impulseResponseOf(filter);
        for (const double f : {0.001, 0.01, 0.05, 0.2, 0.45})
            EXPECT_NEAR(std::abs(test::reference::responseAt(response, f) -
                                 test::reference::lowPassResponse(f, cutoffHz / 48000.0, 2.0)),
                        0.0, recursionError)
                << cutoffHz << " Hz, " << f;
    }
}

TEST(GenericBiquadFilter, WorksItsCoefficientsOutAtTheStartOfTheNextBlockOnly) {
    Lowpass filter(rate);
    EXPECT_TRUE(filter.isDirty());
    Signal block(4, 0.0f);
    filter.process(spanOf(block));
    EXPECT_FALSE(filter.isDirty());
    filter.setFrequency(2000.0f);
    EXPECT_TRUE(filter.isDirty());
    filter.process(spanOf(block));
    filter.setQ(1.0f);
    EXPECT_TRUE(filter.isDirty());
    filter.process(spanOf(block));
    filter.setGain(1.0f);
    EXPECT_TRUE(filter.isDirty());
    filter.process(spanOf(block));
    filter.setInputGain(2.0f);
    EXPECT_FALSE(filter.isDirty()) << "the input gain needs no coefficients";
}

TEST(GenericBiquadFilter, AFrequencyThatIsSetAgainIsNoChange) {
    Lowpass filter(rate);
    Signal block(4, 0.0f);
    filter.setFrequency(1000.0f); // where it starts
    filter.setFrequency(60000.0f);
    filter.process(spanOf(block));
    filter.setFrequency(60000.0f);
    EXPECT_FALSE(filter.isDirty());
    filter.setFrequency(50000.0f); // the same after the limit
    EXPECT_FALSE(filter.isDirty());
    filter.setFrequency(21984.0f); // 0.458 of the rate itself
    EXPECT_FALSE(filter.isDirty());
    filter.setFrequency(21000.0f);
    EXPECT_TRUE(filter.isDirty());
}

TEST(GenericBiquadFilter, AQualityBelow00001IsHeldThere) {
    Lowpass zero(rate);
    zero.setQ(0.0f);
    Lowpass least(rate);
    least.setQ(0.0001f);
    Lowpass negative(rate);
    negative.setQ(-3.0f);
    const Signal expected = impulseResponseOf(least);
    EXPECT_FALSE(std::isnan(test::peak(expected)));
    EXPECT_EQ(impulseResponseOf(zero), expected);
    EXPECT_EQ(impulseResponseOf(negative), expected);
}

TEST(GenericBiquadFilter, AGainHasNoEffectOnAPassFilterAndAnInputGainScalesWhatGoesIn) {
    Lowpass plain(rate);
    Lowpass withGain(rate);
    withGain.setGain(12.0f);
    EXPECT_EQ(impulseResponseOf(plain), impulseResponseOf(withGain));
    Lowpass louder(rate);
    louder.setInputGain(4.0f);
    plain.reset();
    Signal expected = impulseResponseOf(plain);
    Signal heard = impulseResponseOf(louder);
    expected.resize(500); // before the tail becomes denormal
    heard.resize(500);
    for (float& sample : expected)
        sample *= 4.0f; // a power of two scales every bit pattern alike
    EXPECT_EQ(heard, expected);
}

TEST(GenericBiquadFilter, FiltersNoMoreThanTheShorterSpan) {
    Lowpass filter(rate);
    Signal in = test::noise(8, test::Seed{1});
    Signal out(8, 7.0f);
    filter.process(SampleSpan{in.data(), 8}, SampleSpan{out.data(), 5});
    EXPECT_NE(out[4], 7.0f);
    EXPECT_EQ(out[5], 7.0f);
    filter.process(SampleSpan{in.data(), 3}, SampleSpan{out.data(), 8});
    EXPECT_EQ(out[5], 7.0f);
}

TEST(GenericBiquadFilter, InPlaceAndOutOfPlaceGiveTheSameBitsAndResetForgets) {
    Lowpass inPlace(rate);
    Lowpass outOfPlace(rate);
    Signal in = test::noise(100, test::Seed{2});
    Signal buffer = in;
    Signal out(100);
    inPlace.process(spanOf(buffer));
    outOfPlace.process(spanOf(in), spanOf(out));
    EXPECT_EQ(buffer, out);
    inPlace.reset();
    Lowpass fresh(rate);
    EXPECT_EQ(impulseResponseOf(inPlace), impulseResponseOf(fresh));
}

TEST(GenericBiquadFilter, AParameterChangeKeepsTheState) {
    // Analytic: a high pass that goes on after a constant has decayed stays near 0 when its cutoff moves; one
    // that had been reset would start again at b0.
    Highpass filter(rate);
    Signal constant(4800, 1.0f);
    filter.process(spanOf(constant));
    filter.setFrequency(1100.0f);
    Signal next(1, 1.0f);
    filter.process(spanOf(next));
    EXPECT_LT(std::abs(next[0]), 0.2f);
}

TEST(RumbleFree, PassesEveryBitUpTo20HertzAndFiltersAbove) {
    for (const float frequency : {-1.0f, 0.0f, 19.0f, 20.0f}) {
        Rumble filter(rate);
        filter.setFrequency(frequency);
        const Signal input = test::noise(100, test::Seed{3});
        Signal buffer = input;
        filter.process(spanOf(buffer));
        EXPECT_EQ(buffer, input) << frequency;
    }
    Rumble filter(rate);
    filter.setFrequency(20.5f);
    const Signal input = test::noise(100, test::Seed{3});
    Signal buffer = input;
    filter.process(spanOf(buffer));
    EXPECT_NE(buffer, input);
}

TEST(RumbleFree, PassesEveryBitUntilItIsSet) {
    Rumble filter(rate);
    const Signal input = test::noise(100, test::Seed{4});
    Signal buffer = input;
    filter.process(spanOf(buffer));
    EXPECT_EQ(buffer, input);
}

TEST(RumbleFree, IsAPlainHighPassAbove20Hertz) {
    Rumble rumble(rate);
    Highpass plain(rate);
    rumble.setFrequency(80.0f);
    plain.setFrequency(80.0f);
    EXPECT_EQ(impulseResponseOf(rumble), impulseResponseOf(plain));
}

TEST(RumbleFree, StandsStillWhileItIsOut) {
    // Null test: what passed while the filter was out is not in its state.
    Rumble interrupted(rate);
    Rumble steady(rate);
    Signal first = test::noise(100, test::Seed{5});
    Signal sameFirst = first;
    interrupted.setFrequency(80.0f);
    steady.setFrequency(80.0f);
    interrupted.process(spanOf(first));
    steady.process(spanOf(sameFirst));
    interrupted.setFrequency(20.0f);
    Signal unheard = test::noise(100, test::Seed{6});
    interrupted.process(spanOf(unheard));
    interrupted.setFrequency(80.0f);
    Signal second = test::noise(100, test::Seed{7});
    Signal sameSecond = second;
    interrupted.process(spanOf(second));
    steady.process(spanOf(sameSecond));
    EXPECT_EQ(second, sameSecond);
}

TEST(RumbleFree, CopiesToAnotherSpanWhileItIsOut) {
    Rumble filter(rate);
    Signal in = test::noise(8, test::Seed{8});
    Signal out(8, 7.0f);
    filter.process(SampleSpan{in.data(), 8}, SampleSpan{out.data(), 5});
    EXPECT_EQ(Signal(out.begin(), out.begin() + 5), Signal(in.begin(), in.begin() + 5));
    EXPECT_EQ(out[5], 7.0f);
}

/// Writes its number behind every sample, so that the order of a chain can be read from the result.
class Digit final : public IGenericBiquadFilter {
public:
    void process(SampleSpan buffer) override {
        for (float& sample : buffer)
            sample = sample * 10.0f + digit;
    }
    void process(SampleSpan, SampleSpan) override {}
    void setFrequency(float value) override { digit = value; }
    void setQ(float) override {}
    void setGain(float) override {}
    void setInputGain(float) override {}
    void reset() override {}

private:
    float digit = 0;
};

TEST(ChannelProcessorManager, UpdatesEachFilterRightBeforeItRunsInTheOrderOfTheList) {
    orvane::ChannelProcessorManager<IGenericBiquadFilter> manager;
    float parameter = 1.0f;
    manager.add(std::make_unique<Digit>(),
                [&](IGenericBiquadFilter& filter) { filter.setFrequency(parameter); });
    manager.add(std::make_unique<Digit>(), [](IGenericBiquadFilter& filter) { filter.setFrequency(2.0f); });
    Signal buffer{0.0f, 5.0f};
    manager.process(spanOf(buffer));
    EXPECT_EQ(buffer, (Signal{12.0f, 512.0f}));
    parameter = 3.0f;
    buffer = {0.0f, 0.0f};
    manager.process(spanOf(buffer));
    EXPECT_EQ(buffer, (Signal{32.0f, 32.0f}));
}

TEST(ChannelProcessorManager, LeavesTheSignalAloneWithoutFilters) {
    orvane::ChannelProcessorManager<IGenericBiquadFilter> manager;
    Signal buffer{1.0f, 2.0f};
    manager.process(spanOf(buffer));
    EXPECT_EQ(buffer, (Signal{1.0f, 2.0f}));
}

TEST(ChannelProcessorManager, ThrowsForAFilterWithoutAnUpdateFunction) {
    orvane::ChannelProcessorManager<IGenericBiquadFilter> manager;
    manager.add(std::make_unique<Digit>(), nullptr);
    Signal buffer{1.0f};
    EXPECT_THROW(manager.process(spanOf(buffer)), std::bad_function_call);
}

TEST(ChannelProcessorManager, NeitherAllocatesNorLocksWhileItRuns) {
    orvane::ChannelProcessorManager<IGenericBiquadFilter> manager;
    float frequency = 100.0f;
    manager.add(std::make_unique<Rumble>(rate),
                [&](IGenericBiquadFilter& filter) { filter.setFrequency(frequency += 10.0f); });
    manager.add(std::make_unique<Lowpass>(rate), [](IGenericBiquadFilter& filter) {
        filter.setFrequency(8000.0f);
        filter.setQ(0.7f);
        filter.setGain(1.0f);
        filter.setInputGain(1.0f);
        filter.reset();
    });
    Signal buffer = test::noise(64, test::Seed{9});
    const test::RealtimeScope scope;
    manager.process(spanOf(buffer));
    const auto seen = scope.violations();
    EXPECT_EQ(seen, test::RealtimeViolations{});
}

} // namespace
