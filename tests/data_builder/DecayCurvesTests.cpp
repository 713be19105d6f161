// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/MonotoneCurve.h"
#include "data/rooms/DecayCurves.h"
#include "room/DecayTable.h"

#include "SyntheticHead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

using namespace orvane;
using namespace orvane::kestrum::tools;

namespace {

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::vector<std::uint32_t> bitsOf(std::span<const float> values) {
    std::vector<std::uint32_t> bits;
    for (const float value : values)
        bits.push_back(std::bit_cast<std::uint32_t>(value));
    return bits;
}

TEST(DecayCurves, AreTheTableOfThePluginBitForBit) { EXPECT_EQ(bitsOf(decayCurves()), bitsOf(decayTable())); }

TEST(DecayCurves, GiveTheSourceFileThatThePluginIsBuiltOf) {
    const test::TemporaryFolder folder;
    writeDecaySource(folder.file("values"));
    EXPECT_EQ(contentOf(folder.file("values")), contentOf(KESTRUM_DECAY_SOURCE));
}

TEST(DecayCurves, AreWrittenAsLittleEndianFloatsRowAfterRow) {
    const test::TemporaryFolder folder;
    writeDecayTable(folder.file("table"));
    const std::string bytes = contentOf(folder.file("table"));
    ASSERT_EQ(bytes.size(), 40000u);
    std::vector<std::uint32_t> bits;
    for (std::size_t at = 0; at < bytes.size(); at += 4) {
        std::uint32_t word = 0;
        for (std::size_t byte = 0; byte < 4; ++byte)
            word |= std::uint32_t{static_cast<unsigned char>(bytes[at + byte])} << (8 * byte);
        bits.push_back(word);
    }
    EXPECT_EQ(bits, bitsOf(decayTable()));
}

TEST(DecayCurves, AreNotWrittenWhereNothingCanBe) {
    EXPECT_THROW(writeDecayTable("/proc/none/table"), DataError);
    EXPECT_THROW(writeDecaySource("/proc/none/values"), DataError);
}

class MonotoneCurves : public ::testing::TestWithParam<Lean> {};

TEST_P(MonotoneCurves, GoThroughTheirPoints) {
    const std::vector<double> places{0, 1, 3, 50, 99};
    const std::vector<double> values{3.0, 3.1, 3.2, 1.5, -2.0};
    const MonotoneCurve curve(places, values, GetParam());
    for (std::size_t index = 0; index < places.size(); ++index)
        EXPECT_NEAR(curve.at(places[index]), values[index], 1e-12) << places[index];
}

/// Analytic: the chords of a line are all alike, and so are the slopes.
TEST_P(MonotoneCurves, AreStraightThroughPointsOfALine) {
    const MonotoneCurve curve({0, 1, 4, 9}, {1, 3, 9, 19}, GetParam());
    for (double place = 0; place <= 9; place += 0.25)
        EXPECT_NEAR(curve.at(place), 1 + 2 * place, 1e-12) << place;
}

/// Property: between a flat and a steep stretch, where a common cubic spline swings over.
TEST_P(MonotoneCurves, NeverTurnBackBetweenTheirPoints) {
    const MonotoneCurve curve({0, 1, 2, 3, 10}, {0, 0.001, 0.002, 5, 5.1}, GetParam());
    for (double place = 0.01; place <= 10; place += 0.01)
        EXPECT_GE(curve.at(place), curve.at(place - 0.01) - 1e-12) << place;
}

INSTANTIATE_TEST_SUITE_P(Leans, MonotoneCurves, ::testing::Values(Lean::parabola, Lean::harmonicMean));

} // namespace
