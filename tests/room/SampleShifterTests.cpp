// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"
#include "room/SampleShifter.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>

namespace {

using orvane::SampleBuffer;
using orvane::SampleShifter;
using test::Signal;

/// Noise, another one in either ear.
struct Stereo {
    explicit Stereo(std::uint64_t length)
        : left(test::noise(length, test::Seed{1})),
          right(test::noise(length, test::Seed{2})),
          buffer(2, length) {
        std::ranges::copy(left, buffer.channelPointers[0]);
        std::ranges::copy(right, buffer.channelPointers[1]);
    }
    Signal heard(std::uint64_t channel) const {
        return {buffer.channel(channel).begin(), buffer.channel(channel).end()};
    }
    Signal left;
    Signal right;
    SampleBuffer buffer;
};

class Shift : public ::testing::TestWithParam<std::uint64_t> {};

/// Analytic: the same samples later, bit for bit, zeros in front, the length unchanged.
TEST_P(Shift, MovesBothEarsLaterAndKeepsTheLength) {
    Stereo stereo(100);
    SampleShifter shifter(120);
    shifter.shift = GetParam();
    shifter.process(stereo.buffer);
    EXPECT_THAT(stereo.heard(0), test::DelayedCopyOf(stereo.left, GetParam(), test::Tolerance{0}));
    EXPECT_THAT(stereo.heard(1), test::DelayedCopyOf(stereo.right, GetParam(), test::Tolerance{0}));
    EXPECT_EQ(stereo.buffer.numSamples, 100u);
}
INSTANTIATE_TEST_SUITE_P(WithinTheBuffer, Shift, ::testing::Values(0, 1, 37, 99));

class ShiftBeyondTheBuffer : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(ShiftBeyondTheBuffer, LeavesItZeroed) {
    Stereo stereo(100);
    SampleShifter shifter(100);
    shifter.shift = GetParam();
    shifter.process(stereo.buffer);
    EXPECT_THAT(stereo.heard(0), test::Silence());
    EXPECT_THAT(stereo.heard(1), test::Silence());
}
INSTANTIATE_TEST_SUITE_P(FromItsLengthOn, ShiftBeyondTheBuffer,
                         ::testing::Values(100, 101, 5000, std::numeric_limits<std::uint64_t>::max()));

TEST(SampleShifter, TakesABufferOfExactlyItsSizeAndRefusesOneSampleMore) {
    SampleShifter shifter(100);
    SampleBuffer exact(2, 100);
    EXPECT_NO_THROW(shifter.process(exact));
    Stereo longer(101);
    try {
        shifter.process(longer.buffer);
        FAIL() << "expected an exception";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "Passed buffer is bigger than maxBufferSize");
    }
    EXPECT_EQ(longer.heard(0), longer.left);
}

/// A short buffer behind a long one: nothing of the long one comes back.
TEST(SampleShifter, ForgetsTheBufferBefore) {
    SampleShifter shifter(100);
    shifter.shift = 3;
    Stereo first(100);
    shifter.process(first.buffer);
    Stereo second(50);
    second.buffer.clear();
    shifter.process(second.buffer);
    EXPECT_THAT(second.heard(0), test::Silence());
    EXPECT_THAT(second.heard(1), test::Silence());
}

TEST(SampleShifter, NeitherAllocatesNorLocks) {
    SampleShifter shifter(100);
    Stereo stereo(100);
    const test::RealtimeScope scope;
    for (const std::uint64_t shift : {0u, 10u, 100u, 200u}) {
        shifter.shift = shift;
        shifter.process(stereo.buffer);
    }
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
}

} // namespace
