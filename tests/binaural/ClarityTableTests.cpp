// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/ClarityTable.h"

#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <limits>
#include <thread>
#include <vector>

namespace {

using orvane::ClarityTable;
using orvane::SampleBuffer;

constexpr std::uint64_t length = 9; // odd: a word is shared by no two ears all the same
constexpr ClarityTable::Key someKey{7, 40, false, 0.5f};

/// A result that says in every sample whose it is.
SampleBuffer resultOf(const ClarityTable::Key& key, std::uint64_t samples = length) {
    SampleBuffer result(2, 2 * samples);
    const float first = static_cast<float>(key.generation) * 1000.0f + static_cast<float>(key.cell) +
                        key.amount + (key.simple ? 0.25f : 0.0f);
    for (std::uint64_t ear = 0; ear < 2; ++ear)
        for (std::uint64_t i = 0; i < result.numSamples; ++i)
            result.channelPointers[ear][i] = first + static_cast<float>(ear) * 100000.0f;
    return result;
}

bool sameBits(const SampleBuffer& a, const SampleBuffer& b, std::uint64_t count) {
    const auto bits = [](float x, float y) {
        return std::bit_cast<std::uint32_t>(x) == std::bit_cast<std::uint32_t>(y);
    };
    for (std::uint64_t ear = 0; ear < 2; ++ear)
        if (!std::equal(a.channelPointers[ear], a.channelPointers[ear] + count, b.channelPointers[ear], bits))
            return false;
    return true;
}

TEST(ClarityTable, GivesBackTheBitsThatItWasGiven) {
    ClarityTable table(length, 11, 2);
    SampleBuffer result(2, 2 * length);
    for (std::uint64_t i = 0; i < 2 * length; ++i) {
        result.channelPointers[0][i] = static_cast<float>(i) - 3.0f;
        result.channelPointers[1][i] = std::numeric_limits<float>::denorm_min() * static_cast<float>(i);
    }
    result.channelPointers[0][4] = -0.0f;
    result.channelPointers[1][5] = std::bit_cast<float>(0x7FC12345U); // not a number, of its own kind
    table.store(someKey, result);
    for (std::uint64_t wanted = 0; wanted <= 2 * length + 3; ++wanted) {
        SampleBuffer out(2, wanted);
        ASSERT_TRUE(table.find(someKey, out));
        EXPECT_TRUE(sameBits(out, result, std::min(wanted, 2 * length))) << wanted;
    }
}

TEST(ClarityTable, FindsNothingUnderAnotherKey) {
    ClarityTable table(length, 11, 4);
    table.store(someKey, resultOf(someKey));
    ClarityTable::Key nan = someKey;
    nan.amount = std::numeric_limits<float>::quiet_NaN();
    SampleBuffer out(2, 2 * length);
    for (const ClarityTable::Key& other :
         {ClarityTable::Key{8, 40, false, 0.5f}, ClarityTable::Key{7, 41, false, 0.5f},
          ClarityTable::Key{7, 51, false, 0.5f}, ClarityTable::Key{7, 40, true, 0.5f},
          ClarityTable::Key{7, 40, false, 0.25f}, ClarityTable::Key{7, 40, false, -0.5f}, nan}) {
        EXPECT_FALSE(table.find(other, out));
        EXPECT_FALSE(table.contains(other));
    }
    EXPECT_TRUE(table.contains(someKey));
}

TEST(ClarityTable, TellsTheTwoZerosApartAndKnowsAnAmountThatIsNotANumber) {
    ClarityTable table(length, 11, 4);
    const ClarityTable::Key positive{7, 1, false, 0.0f};
    const ClarityTable::Key negative{7, 1, false, -0.0f};
    const ClarityTable::Key nan{7, 1, false, std::numeric_limits<float>::quiet_NaN()};
    table.store(positive, resultOf(positive));
    EXPECT_FALSE(table.contains(negative));
    table.store(nan, resultOf(positive));
    EXPECT_TRUE(table.contains(nan));
}

/// Cells that share a set push each other out, oldest first, and nothing grows.
TEST(ClarityTable, HoldsOnlyWhatItHasRoomFor) {
    constexpr std::uint32_t sets = 5;
    constexpr std::size_t ways = 3;
    ClarityTable table(length, sets, ways);
    const std::size_t bytes = table.bytes();
    std::vector<ClarityTable::Key> keys;
    for (std::uint32_t i = 0; i < 50; ++i)
        keys.push_back({1, i * sets + 2, false, 0.0f}); // all in one set
    for (const ClarityTable::Key& key : keys)
        table.store(key, resultOf(key));
    SampleBuffer out(2, 2 * length);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(table.find(keys[i], out), i + ways >= keys.size()) << i;
        if (table.contains(keys[i])) {
            EXPECT_TRUE(sameBits(out, resultOf(keys[i]), 2 * length));
        }
    }
    EXPECT_EQ(table.bytes(), bytes);
}

TEST(ClarityTable, KeepsAResultOnce) {
    ClarityTable table(length, 1, 2);
    const ClarityTable::Key other{7, 41, false, 0.5f};
    table.store(other, resultOf(other));
    for (int i = 0; i < 5; ++i)
        table.store(someKey, resultOf(someKey));
    EXPECT_TRUE(table.contains(other));
}

TEST(ClarityTable, IsOneForAllWhoUseTheSameLength) {
    const auto table = ClarityTable::forLength(139);
    EXPECT_EQ(ClarityTable::forLength(139), table);
    EXPECT_NE(ClarityTable::forLength(278), table);
    EXPECT_EQ(table->length(), 139u);
    EXPECT_LT(table->bytes(), 26'000'000u); // see memoryLimit, and the headers
}

TEST(ClarityTable, NeitherAllocatesNorLocksWhereABlockUsesIt) {
    ClarityTable table(139, 11, 2);
    const SampleBuffer result = resultOf(someKey, 139);
    SampleBuffer out(2, 278);
    const test::RealtimeScope scope;
    table.store(someKey, result);
    const bool found = table.find(someKey, out) && table.contains(someKey);
    EXPECT_EQ(scope.violations().total(), 0u) << scope.violations();
    EXPECT_TRUE(found);
}

/// Two entries, many keys: threads that read and write in each other's way never get anything but a whole
/// result of the key that they asked for.
TEST(ClarityTable, NeverGivesATornOrAForeignResultWhileOthersWrite) {
    constexpr std::uint64_t samples = 33;
    ClarityTable table(samples, 1, 2);
    std::atomic<std::uint64_t> wrong{0};
    std::atomic<std::uint64_t> hits{0};
    const auto work = [&](std::uint32_t first) {
        std::vector<ClarityTable::Key> keys;
        std::vector<SampleBuffer> results;
        for (std::uint32_t i = 0; i < 5; ++i) {
            keys.push_back({1 + (first + i) % 5, (first + i) % 5, i % 2 == 0, 0.5f});
            results.push_back(resultOf(keys.back(), samples));
        }
        SampleBuffer out(2, 2 * samples);
        for (std::size_t round = 0; round < 4000; ++round) {
            const std::size_t i = round % keys.size();
            if (!table.find(keys[i], out))
                table.store(keys[i], results[i]);
            else if (sameBits(out, results[i], 2 * samples))
                ++hits;
            else
                ++wrong;
        }
    };
    std::vector<std::thread> threads;
    for (std::uint32_t i = 0; i < 4; ++i)
        threads.emplace_back(work, i);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0u);
    // Alone and undisturbed, a thread finds what it stored.
    table.store(someKey, resultOf(someKey, samples));
    SampleBuffer out(2, 2 * samples);
    EXPECT_TRUE(table.find(someKey, out));
}

} // namespace
