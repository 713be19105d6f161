// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConvolverRun.h"
#include "binaural/Convolution.h"
#include "binaural/ReverbConvolution.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <tuple>
#include <vector>

namespace {

using orvane::BandLimit;
using orvane::Convolution;
using orvane::InstructionSet;
using orvane::ReverbConvolution;
using orvane::SampleBuffer;
using test::Signal;

struct Case {
    std::uint64_t blockSize;
    std::uint64_t partitionCount;
    std::int32_t factor;
};

ReverbConvolution makeFast(const Case& given, InstructionSet set = orvane::bestInstructionSet()) {
    return ReverbConvolution(48000.0, given.blockSize, given.partitionCount,
                             BandLimit::of(given.blockSize, given.partitionCount, given.factor), set);
}

/// The first sample of either ear whose bits differ; the length if none does.
std::uint64_t firstDifference(const SampleBuffer& a, const SampleBuffer& b) {
    for (std::uint64_t i = 0; i < a.numSamples; ++i)
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            if (std::bit_cast<std::uint32_t>(a.channelPointers[ear][i]) !=
                std::bit_cast<std::uint32_t>(b.channelPointers[ear][i]))
                return i;
    return a.numSamples;
}

/// A response in which some partitions are all zeros, some in one ear only.
SampleBuffer gappyResponse(const Case& given, std::mt19937& random) {
    SampleBuffer response = test::noiseResponse(given.blockSize * given.partitionCount,
                                                test::Seed{static_cast<std::uint32_t>(random())});
    for (std::uint64_t partition = 0; partition < given.partitionCount; ++partition)
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            if (random() % 3 == 0)
                std::fill_n(response.channelPointers[ear] + partition * given.blockSize, given.blockSize,
                            random() % 2 == 0 ? 0.0f : -0.0f);
    return response;
}

/// Shares of a block in which a host's shorter calls come; none if it sends whole blocks.
void workInShares(orvane::IConvolution& convolver, std::uint64_t blockSize, std::mt19937& random) {
    std::uint64_t pending = 0;
    for (auto calls = random() % 4; calls > 0 && pending + 1 < blockSize; --calls) {
        pending += 1 + random() % (blockSize - pending - 1);
        convolver.workAhead(pending);
        if (pending + 1 >= blockSize)
            return;
    }
}

class SameBits : public ::testing::TestWithParam<Case> {};

/// Null test against the plain convolver over a random script of replacements, crossfades and host calls.
TEST_P(SameBits, AsThePlainConvolverWhateverHappensBetweenBlocks) {
    const Case given = GetParam();
    for (std::uint32_t seed = 1; seed < 6; ++seed) {
        std::mt19937 random(seed);
        Convolution plain(48000.0, given.blockSize, given.partitionCount, given.factor);
        ReverbConvolution fast = makeFast(given);
        const std::uint64_t blocks = 3 * given.partitionCount + 9;
        Signal input = test::noise(blocks * given.blockSize, test::Seed{seed + 200});
        SampleBuffer response(2, given.blockSize * given.partitionCount);
        SampleBuffer expected(2, given.blockSize);
        SampleBuffer expectedOld(2, given.blockSize);
        SampleBuffer heard(2, given.blockSize);
        SampleBuffer heardOld(2, given.blockSize);
        for (std::uint64_t block = 0; block < blocks; ++block) {
            const bool update = random() % 7 == 0;
            if (update)
                response = gappyResponse(given, random);
            const auto span = test::blockOf(input, block * given.blockSize, given.blockSize);
            workInShares(fast, given.blockSize, random);
            if (random() % 4 == 0) {
                plain.processCrossfaded(span, expectedOld, expected, response, update);
                fast.processCrossfaded(span, heardOld, heard, response, update);
                ASSERT_EQ(firstDifference(heardOld, expectedOld), given.blockSize) << seed << ", " << block;
            } else {
                plain.process(span, expected, response, update);
                fast.process(span, heard, response, update);
            }
            ASSERT_EQ(firstDifference(heard, expected), given.blockSize) << seed << ", block " << block;
        }
    }
}
INSTANTIATE_TEST_SUITE_P(BlocksPartitionsAndBands, SameBits,
                         ::testing::Values(Case{1, 1, 1}, Case{1, 5, 1}, Case{2, 2, 2}, Case{16, 1, 2},
                                           Case{16, 2, 1}, Case{16, 3, 1}, Case{16, 3, 4}, Case{15, 4, 4},
                                           Case{16, 5, 2}, Case{16, 6, 1}, Case{32, 64, 1}, Case{64, 63, 2},
                                           Case{139, 7, 1}, Case{139, 8, 4}, Case{441, 9, 2}, Case{480, 9, 1},
                                           Case{513, 5, 1}, Case{1009, 4, 2}, Case{3, 4, 4}));

TEST(ReverbConvolution, APreparedResponseGivesTheBitsOfOneThatTheFirstBlockBrings) {
    for (const Case& given : {Case{32, 1, 1}, Case{32, 2, 1}, Case{32, 9, 2}, Case{139, 12, 1}}) {
        const SampleBuffer response =
            test::noiseResponse(given.blockSize * given.partitionCount, test::Seed{3});
        const SampleBuffer unused(2, given.blockSize * given.partitionCount);
        Convolution plain(48000.0, given.blockSize, given.partitionCount, given.factor);
        ReverbConvolution fast = makeFast(given);
        fast.prepare(response);
        Signal input = test::noise(20 * given.blockSize, test::Seed{4});
        SampleBuffer expected(2, given.blockSize);
        SampleBuffer heard(2, given.blockSize);
        for (std::uint64_t block = 0; block < 20; ++block) {
            const auto span = test::blockOf(input, block * given.blockSize, given.blockSize);
            plain.process(span, expected, response, block == 0);
            fast.process(span, heard, unused, false);
            ASSERT_EQ(firstDifference(heard, expected), given.blockSize) << block;
        }
    }
}

TEST(ReverbConvolution, AResponsePreparedBetweenBlocksActsOnAllPastInput) {
    const Case given{32, 9, 1};
    const SampleBuffer first = test::noiseResponse(32 * 9, test::Seed{5});
    const SampleBuffer second = test::noiseResponse(32 * 9, test::Seed{6});
    for (const std::uint64_t change : {3u, 4u}) {
        Convolution plain(48000.0, 32, 9, 1);
        ReverbConvolution fast = makeFast(given);
        Signal input = test::noise(20 * 32, test::Seed{7});
        SampleBuffer expected(2, 32);
        SampleBuffer heard(2, 32);
        for (std::uint64_t block = 0; block < 20; ++block) {
            if (block == change)
                fast.prepare(second);
            plain.process(test::blockOf(input, block * 32, 32), expected, block < change ? first : second,
                          block == 0 || block == change);
            fast.process(test::blockOf(input, block * 32, 32), heard, first, block == 0);
            ASSERT_EQ(firstDifference(heard, expected), 32u) << change << ", " << block;
        }
    }
}

TEST(ReverbConvolution, WritesAShorterAndALongerOutputAsThePlainConvolverDoes) {
    const Case given{32, 5, 1};
    const SampleBuffer response = test::noiseResponse(32 * 5, test::Seed{8});
    for (const std::uint64_t length : {20u, 40u}) {
        Convolution plain(48000.0, 32, 5, 1);
        ReverbConvolution fast = makeFast(given);
        Signal input = test::noise(3 * 32, test::Seed{9});
        SampleBuffer expected(2, length);
        SampleBuffer heard(2, length);
        for (std::uint64_t block = 0; block < 3; ++block) {
            std::fill_n(heard.channelPointers[0], length, 9.0f);
            plain.process(test::blockOf(input, block * 32, 32), expected, response, block == 0);
            fast.process(test::blockOf(input, block * 32, 32), heard, response, block == 0);
            EXPECT_EQ(firstDifference(heard, expected), length);
        }
    }
}

class BadInput : public ::testing::TestWithParam<float> {};

/// Property: a block that the plain convolver delivers finite is finite here and has its bits.
TEST_P(BadInput, IsForgottenNoLaterThanByThePlainConvolver) {
    for (std::uint64_t bad = 5; bad < 9; ++bad) {
        const Case given{16, 11, 1};
        const SampleBuffer response = test::noiseResponse(16 * 11, test::Seed{10});
        Convolution plain(48000.0, 16, 11, 1);
        ReverbConvolution fast = makeFast(given);
        Signal input = test::noise(40 * 16, test::Seed{11});
        input[bad * 16 + 3] = GetParam();
        SampleBuffer expected(2, 16);
        SampleBuffer heard(2, 16);
        std::uint64_t finiteBlocks = 0;
        for (std::uint64_t block = 0; block < 40; ++block) {
            const auto span = test::blockOf(input, block * 16, 16);
            plain.process(span, expected, response, block == 0);
            fast.process(span, heard, response, block == 0);
            const auto samples = expected.channel(0);
            if (!std::all_of(samples.begin(), samples.end(), [](float x) { return std::isfinite(x); }))
                continue;
            ++finiteBlocks;
            ASSERT_EQ(firstDifference(heard, expected), 16u) << block;
        }
        EXPECT_EQ(finiteBlocks, 40u - 12u);
    }
}
INSTANTIATE_TEST_SUITE_P(NotANumberAndInfinity, BadInput,
                         ::testing::Values(std::numeric_limits<float>::quiet_NaN(),
                                           std::numeric_limits<float>::infinity(),
                                           -std::numeric_limits<float>::infinity()));

TEST(ReverbConvolution, NeitherAllocatesNorLocksWhileItRuns) {
    for (const std::uint64_t blockSize : {1u, 2u, 32u, 64u, 139u, 441u, 480u, 513u, 1009u, 2048u}) {
        const Case given{blockSize, 6, 2};
        ReverbConvolution convolver = makeFast(given);
        const SampleBuffer response = test::noiseResponse(6 * blockSize, test::Seed{12});
        Signal input = test::noise(blockSize, test::Seed{13});
        SampleBuffer oldBlock(2, blockSize);
        SampleBuffer newBlock(2, blockSize);
        const auto span = test::blockOf(input, 0, blockSize);
        const test::RealtimeScope scope;
        for (int i = 0; i < 3; ++i) {
            convolver.process(span, newBlock, response, true);
            convolver.workAhead(blockSize / 2);
            convolver.process(span, newBlock, response, false);
            convolver.processCrossfaded(span, oldBlock, newBlock, response, true);
            convolver.processCrossfaded(span, oldBlock, newBlock, response, false);
        }
        const auto seen = scope.violations();
        EXPECT_EQ(seen, test::RealtimeViolations{}) << blockSize;
    }
}

} // namespace
