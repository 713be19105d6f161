// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"
#include "engine/fades/Ramps.h"
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace {

using orvane::rampDownHyperbolic;
using orvane::rampDownLinear;
using orvane::SampleBuffer;

SampleBuffer ones(std::uint64_t length) {
    SampleBuffer buffer(2, length);
    for (std::uint64_t channel = 0; channel < 2; ++channel)
        std::fill_n(buffer.channelPointers[channel], length, 1.0f);
    return buffer;
}

template <typename Exception, typename Call>
std::string messageOf(Call call) {
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    }
    return "nothing was thrown";
}

TEST(RampDownLinear, FadesTheTenSamplesBeforeItsEndToZeroInEveryChannel) {
    SampleBuffer buffer = ones(101);
    rampDownLinear(buffer, 100, 10);
    for (std::uint64_t channel = 0; channel < 2; ++channel) {
        const float* const samples = buffer.channelPointers[channel];
        for (std::uint64_t i = 0; i < 90; ++i)
            EXPECT_EQ(samples[i], 1.0f) << i;
        for (std::uint64_t i = 1; i <= 10; ++i) // the formula, by hand
            EXPECT_EQ(samples[89 + i], 1.0f - static_cast<float>(i) / 10.0f) << i;
        EXPECT_EQ(samples[99], 0.0f);
        EXPECT_EQ(samples[100], 1.0f);
    }
}

TEST(RampDownHyperbolic, DividesByTheDistanceTimesTheFactor) {
    SampleBuffer buffer = ones(20);
    rampDownHyperbolic(buffer, 19, 15, 0.5f);
    for (std::uint64_t channel = 0; channel < 2; ++channel) {
        const float* const samples = buffer.channelPointers[channel];
        EXPECT_EQ(samples[3], 1.0f);
        for (std::uint64_t i = 1; i <= 15; ++i)
            EXPECT_EQ(samples[3 + i], 1.0f / (static_cast<float>(i) * 0.5f)) << i;
        EXPECT_EQ(samples[19], 1.0f);
    }
}

TEST(Ramps, MayStartAtTheFirstSampleAndOfLengthZeroChangeNothing) {
    SampleBuffer buffer = ones(11);
    rampDownLinear(buffer, 10, 10);
    EXPECT_EQ(buffer.channelPointers[0][0], 0.9f);
    SampleBuffer untouched = ones(11);
    rampDownLinear(untouched, 5, 0);
    rampDownHyperbolic(untouched, 0, 0, 1.0f);
    EXPECT_TRUE(std::all_of(untouched.channel(0).begin(), untouched.channel(0).end(),
                            [](float sample) { return sample == 1.0f; }));
}

TEST(Ramps, RefuseAnEndThatTheBufferDoesNotReachBeyond) {
    const std::string expected = "endtAt exceeds the boundary of the buffer";
    SampleBuffer buffer = ones(100);
    EXPECT_EQ(messageOf<std::out_of_range>([&] { rampDownLinear(buffer, 100, 10); }), expected);
    EXPECT_EQ(messageOf<std::out_of_range>([&] { rampDownHyperbolic(buffer, 100, 10, 1.0f); }), expected);
    EXPECT_EQ(messageOf<std::out_of_range>([&] { rampDownLinear(buffer, 1000, 10); }), expected);
    EXPECT_EQ(buffer.channelPointers[0][99], 1.0f);
}

TEST(Ramps, RefuseARampThatStartsBeforeTheBuffer) {
    const std::string expected = "the ramp starts at outside of the buffer";
    SampleBuffer buffer = ones(100);
    EXPECT_EQ(messageOf<std::out_of_range>([&] { rampDownLinear(buffer, 10, 11); }), expected);
    EXPECT_EQ(messageOf<std::out_of_range>([&] { rampDownHyperbolic(buffer, 10, 11, 1.0f); }), expected);
}

TEST(Ramps, RefuseAFactorOfZeroAfterTheRange) {
    SampleBuffer buffer = ones(100);
    EXPECT_EQ(messageOf<std::invalid_argument>([&] { rampDownHyperbolic(buffer, 50, 10, 0.0f); }),
              "factor should be non-zero");
    EXPECT_EQ(messageOf<std::out_of_range>([&] { rampDownHyperbolic(buffer, 100, 10, 0.0f); }),
              "endtAt exceeds the boundary of the buffer");
    EXPECT_EQ(messageOf<std::out_of_range>([&] { rampDownHyperbolic(buffer, 10, 11, 0.0f); }),
              "the ramp starts at outside of the buffer");
    EXPECT_EQ(buffer.channelPointers[0][45], 1.0f);
}

TEST(Ramps, NeitherAllocateNorLock) {
    SampleBuffer buffer = ones(100);
    const test::RealtimeScope scope;
    rampDownLinear(buffer, 50, 10);
    rampDownHyperbolic(buffer, 50, 10, 2.0f);
    const auto seen = scope.violations();
    EXPECT_EQ(seen, test::RealtimeViolations{});
}

} // namespace
