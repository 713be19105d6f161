// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/OutputFormat.h"

#include <gmock/gmock.h>

#include <limits>
#include <map>
#include <set>
#include <stdexcept>

namespace {

using orvane::IOutputFormat;
using orvane::OutputFormat;
using Format = IOutputFormat::Format;

/// Hand-copied from the list of formats.
const std::map<int, std::uint64_t> channelsByFormat{
    {2, 2},   {4, 4},   {5, 9},  {6, 16},  {7, 4},   {8, 9},   {9, 16},  {11, 2},  {21, 4},
    {22, 4},  {23, 4},  {24, 5}, {25, 5},  {26, 6},  {27, 6},  {28, 6},  {29, 7},  {30, 7},
    {31, 8},  {32, 8},  {33, 7}, {34, 9},  {35, 8},  {36, 10}, {37, 9},  {38, 11}, {39, 10},
    {40, 12}, {41, 12}, {42, 8}, {43, 10}, {44, 10}, {45, 12}, {46, 14}, {47, 24}};
const std::set<int> withLowFrequency{26, 27, 29, 31, 32, 35, 36, 39, 40, 41, 43, 45, 46, 47};

TEST(OutputFormat, HasTheListedChannelsAndLowFrequencyChannels) {
    for (const auto& [number, channels] : channelsByFormat) {
        const OutputFormat format = OutputFormat::of(Format{number});
        EXPECT_EQ(format.channelCount(), channels) << number;
        EXPECT_EQ(format.hasLowFrequencyChannel(), withLowFrequency.contains(number)) << number;
        EXPECT_EQ(format.format(), Format{number});
        EXPECT_EQ(format.isBinaural(), number == 2) << number;
        EXPECT_EQ(format.isPlainTwoChannel(), number == 11) << number;
        EXPECT_FALSE(format.flag1() || format.flag2() || format.flag3()) << number;
    }
}

TEST(OutputFormat, RefusesEveryNumberThatIsNotListed) {
    for (int number = -1; number <= 100; ++number) {
        if (!channelsByFormat.contains(number)) {
            EXPECT_THROW(OutputFormat::of(Format{number}), std::invalid_argument) << number;
        }
    }
}

// Property: the offset of 0.4 keeps the float product on the right side of the whole number.
TEST(OutputFormat, ComesBackFromItsFraction) {
    for (const auto& [number, channels] : channelsByFormat) {
        const float fraction = OutputFormat::of(Format{number}).fraction();
        EXPECT_FLOAT_EQ(fraction, (static_cast<float>(number) + 0.4f) / 100.0f);
        EXPECT_EQ(OutputFormat::fromFraction(fraction).format(), Format{number});
    }
}

TEST(OutputFormat, RefusesAFractionThatIsNoFormat) {
    for (const float fraction :
         {-0.02f, 0.0f, 0.034f, 0.99f, 1.0f, 1e30f, std::numeric_limits<float>::infinity(),
          std::numeric_limits<float>::quiet_NaN()})
        EXPECT_THROW(OutputFormat::fromFraction(fraction), std::invalid_argument) << fraction;
}

} // namespace
