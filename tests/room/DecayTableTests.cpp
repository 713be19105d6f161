// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/DecayTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <vector>

using namespace orvane;

namespace {

/// Listed: the curves' fixed points, to the digits that count. [row] [column]
struct ListedGain {
    std::uint32_t row = 0;
    std::uint32_t column = 0;
    double gain = 0;
    double digit = 1e-4; ///< Worth of the last digit.
};

constexpr ListedGain listedGains[]{
    {0, 1, 0.9777},  {0, 10, 0.6667},  {0, 50, 0.104, 1e-3}, {0, 90, 0.0528},  {0, 99, 0.0475},
    {1, 1, 0.9804},  {1, 10, 0.6977},  {1, 50, 0.1045},      {1, 90, 0.0523},  {1, 99, 0.047, 1e-3},
    {50, 1, 0.9992}, {50, 10, 0.9909}, {50, 50, 0.8543},     {50, 90, 0.1273}, {50, 99, 0.0957},
    {99, 1, 0.9998}, {99, 10, 0.9975}, {99, 50, 0.9803},     {99, 90, 0.9185}, {99, 99, 0.8752},
};

double gainAt(std::uint32_t row, std::uint32_t column) { return static_cast<double>(decayGain(row, column)); }

/// How often a sequence changes its direction of bending. Bends 94 dB below full scale do not count.
int inflectionsOf(const std::vector<double>& values) {
    constexpr double faint = 2e-5;
    int count = 0;
    double last = 0;
    for (std::size_t index = 1; index + 1 < values.size(); ++index) {
        const double bend = values[index - 1] - 2 * values[index] + values[index + 1];
        if (std::abs(bend) < faint)
            continue;
        if (last * bend < 0)
            ++count;
        last = bend;
    }
    return count;
}

double largestBendOf(const std::vector<double>& values) {
    double largest = 0;
    for (std::size_t index = 1; index + 1 < values.size(); ++index)
        largest = std::max(largest, std::abs(values[index - 1] - 2 * values[index] + values[index + 1]));
    return largest;
}

std::vector<double> rowOf(std::uint32_t row) {
    std::vector<double> values;
    for (std::uint32_t column = 0; column < decayTableColumns; ++column)
        values.push_back(gainAt(row, column));
    return values;
}

std::vector<double> columnOf(std::uint32_t column) {
    std::vector<double> values;
    for (std::uint32_t row = 0; row < decayTableRows; ++row)
        values.push_back(gainAt(row, column));
    return values;
}

TEST(DecayTable, GoesThroughTheListedPoints) {
    for (const ListedGain& listed : listedGains)
        EXPECT_EQ(std::round(gainAt(listed.row, listed.column) / listed.digit),
                  std::round(listed.gain / listed.digit))
            << listed.row << ", " << listed.column;
}

TEST(DecayTable, StartsEveryRowAtOne) {
    for (std::uint32_t row = 0; row < decayTableRows; ++row)
        EXPECT_EQ(decayGain(row, 0), 1.0F) << row;
}

TEST(DecayTable, HasItsSmallestGainAtTheEndOfOneOfTheFastestRows) {
    const auto table = decayTable();
    const auto smallest = std::ranges::min_element(table);
    EXPECT_EQ(*smallest, 0.0464033F);
    const auto index = smallest - table.begin();
    EXPECT_EQ(index % decayTableColumns, 99);
    EXPECT_GE(index / decayTableColumns, 2);
    EXPECT_LE(index / decayTableColumns, 4);
}

TEST(DecayTable, IsStoredRowAfterRow) {
    EXPECT_EQ(decayTable()[50 * 100 + 90], decayGain(50, 90));
    EXPECT_EQ(decayTable().back(), decayGain(99, 99));
}

TEST(DecayTable, FallsAlongEveryRow) {
    for (std::uint32_t row = 0; row < decayTableRows; ++row)
        for (std::uint32_t column = 1; column < decayTableColumns; ++column)
            EXPECT_LT(gainAt(row, column), gainAt(row, column - 1)) << row << ", " << column;
}

/// The listed points of rows 0 and 1 cross between columns 50 and 90; from the bottom of that dip on, and left
/// of it everywhere, a slower row is the louder one.
TEST(DecayTable, RisesFromRowToRowButForTheDipAtTheEndOfTheFirst) {
    for (std::uint32_t row = 1; row < decayTableRows; ++row)
        for (std::uint32_t column = 1; column < decayTableColumns; ++column) {
            if (row > 4 || column <= 50) {
                EXPECT_GT(gainAt(row, column), gainAt(row - 1, column)) << row << ", " << column;
            } else {
                EXPECT_GT(gainAt(row, column), gainAt(row - 1, column) - 0.0006) << row << ", " << column;
            }
        }
}

TEST(DecayTable, DipsOnlyOnceInEveryColumn) {
    for (std::uint32_t column = 1; column < decayTableColumns; ++column) {
        const std::vector<double> values = columnOf(column);
        const auto bottom = std::ranges::min_element(values);
        EXPECT_TRUE(std::ranges::is_sorted(values.begin(), bottom + 1, std::greater<>())) << column;
        EXPECT_TRUE(std::ranges::is_sorted(bottom, values.end())) << column;
    }
}

/// Property: a decay bends down, then out; at most one more wave, where it passes through a listed point. A
/// ripple would have many.
TEST(DecayTable, HasNoRipplesAlongTheRows) {
    for (std::uint32_t row = 0; row < decayTableRows; ++row) {
        EXPECT_LE(inflectionsOf(rowOf(row)), 3) << row;
        EXPECT_LT(largestBendOf(rowOf(row)), 0.004) << row;
    }
}

TEST(DecayTable, HasNoRipplesFromRowToRow) {
    for (std::uint32_t column = 1; column < decayTableColumns; ++column) {
        EXPECT_LE(inflectionsOf(columnOf(column)), 3) << column;
        EXPECT_LT(largestBendOf(columnOf(column)), 0.004) << column;
    }
}

/// By hand: two rows a percent from 50 on; below there is nothing shorter, from 100 on nothing to shorten.
TEST(DecayRows, AreTwoAPercentFrom50On) {
    EXPECT_EQ(decayRow(50), 0u);
    EXPECT_EQ(decayRow(75), 50u);
    EXPECT_EQ(decayRow(99.9F), 99u);
    EXPECT_EQ(decayRow(0), 0u);
    EXPECT_EQ(decayRow(100), std::nullopt);
    EXPECT_EQ(decayRow(std::numeric_limits<float>::quiet_NaN()), std::nullopt);
}

} // namespace
