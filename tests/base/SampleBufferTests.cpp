// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

using orvane::SampleBuffer;
using orvane::SampleSpan;
using ::testing::Each;
using ::testing::ElementsAre;

std::vector<float> contents(const SampleBuffer& buffer, std::uint64_t channel) {
    const SampleSpan span = buffer.channel(channel);
    return {span.begin(), span.end()};
}

TEST(SampleBuffer, StartsZeroFilledWithChannelsOneAfterTheOther) {
    const SampleBuffer buffer(3, 5);
    EXPECT_EQ(buffer.numChannels, 3u);
    EXPECT_EQ(buffer.numSamples, 5u);
    EXPECT_FALSE(buffer.external);
    EXPECT_EQ(buffer.channelPointers[1], buffer.channelPointers[0] + 5);
    EXPECT_EQ(buffer.channelPointers[2], buffer.channelPointers[0] + 10);
    EXPECT_THAT(contents(buffer, 2), Each(0.0f));
}

TEST(SampleBuffer, SetSizeForgetsTheOldContentAndZeroes) {
    SampleBuffer buffer(1, 2);
    buffer.channelPointers[0][0] = 1;
    buffer.setSize(2, 3);
    EXPECT_EQ(buffer.numChannels, 2u);
    EXPECT_THAT(contents(buffer, 0), ElementsAre(0, 0, 0));
    buffer.setSize(0, 0);
    EXPECT_EQ(buffer.numChannels, 0u);
    EXPECT_EQ(buffer.numSamples, 0u);
}

TEST(SampleBuffer, AWrapperRefusesToChangeItsSize) {
    std::array<float, 4> memory{1, 2, 3, 4};
    std::array<float*, 1> channels{memory.data()};
    SampleBuffer wrapper(channels.data(), 1, 4);
    EXPECT_TRUE(wrapper.external);
    try {
        wrapper.setSize(1, 2);
        FAIL() << "expected an exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "setSize can be used only for internally allocated memory");
    }
    EXPECT_THAT(contents(wrapper, 0), ElementsAre(1, 2, 3, 4));
}

TEST(SampleBuffer, AWrapperWritesIntoTheOutsideMemory) {
    std::array<float, 2> memory{1, 2};
    std::array<float*, 1> channels{memory.data()};
    SampleBuffer wrapper(channels.data(), 1, 2);
    wrapper.multiplyBy(0.5f);
    EXPECT_THAT(memory, ElementsAre(0.5f, 1.0f));
}

TEST(SampleBuffer, ACopyOfAWrapperOwnsItsSamples) {
    std::array<float, 2> memory{1, 2};
    std::array<float*, 1> channels{memory.data()};
    const SampleBuffer wrapper(channels.data(), 1, 2);
    const SampleBuffer copy(wrapper);
    memory[0] = 9;
    EXPECT_FALSE(copy.external);
    EXPECT_THAT(contents(copy, 0), ElementsAre(1, 2));
}

TEST(SampleBuffer, MovingKeepsTheSamplesWhereTheyLie) {
    SampleBuffer original(2, 3);
    original.channelPointers[1][2] = 7;
    const float* const place = original.channelPointers[1];
    SampleBuffer moved(std::move(original));
    EXPECT_EQ(moved.channelPointers[1], place);
    EXPECT_EQ(moved.channelPointers[1][2], 7);
    SampleBuffer assigned(1, 1);
    assigned = std::move(moved);
    EXPECT_EQ(assigned.channelPointers[1], place);
}

TEST(SampleBuffer, CopyFromTakesTheSmallerShapeAndLeavesTheRest) {
    SampleBuffer source(2, 2);
    source.channelPointers[0][0] = 1;
    source.channelPointers[0][1] = 2;
    SampleBuffer target(1, 3);
    target.channelPointers[0][2] = 5;
    target.copyFrom(source);
    EXPECT_THAT(contents(target, 0), ElementsAre(1, 2, 5));
}

TEST(SampleBuffer, AddFromAddsOverTheSmallerShape) {
    SampleBuffer source(2, 2);
    source.channelPointers[1][1] = 2;
    SampleBuffer target(2, 3);
    target.channelPointers[1][1] = 1;
    target.channelPointers[1][2] = 4;
    target.addFrom(source);
    EXPECT_THAT(contents(target, 1), ElementsAre(0, 3, 4));
}

TEST(SampleBuffer, WriteChannelScaledZeroesWhatTheSpanDoesNotReach) {
    SampleBuffer buffer(1, 4);
    buffer.channelPointers[0][3] = 9;
    std::array<float, 2> source{1, 2};
    buffer.writeChannelScaled(0, {source.data(), 2}, 3.0f);
    EXPECT_THAT(contents(buffer, 0), ElementsAre(3, 6, 0, 0));
}

TEST(SampleBuffer, WriteChannelScaledCutsASpanThatIsTooLong) {
    SampleBuffer buffer(1, 1);
    std::array<float, 2> source{1, 2};
    buffer.writeChannelScaled(0, {source.data(), 2}, 1.0f);
    EXPECT_THAT(contents(buffer, 0), ElementsAre(1));
}

} // namespace
