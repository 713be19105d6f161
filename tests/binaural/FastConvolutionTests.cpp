// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConvolverRun.h"
#include "base/InstructionSet.h"
#include "binaural/ConvolutionFactory.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <xmmintrin.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <tuple>
#include <vector>

// The plain convolver is the reference throughout; it is held to analytic ones and the slow sum elsewhere.
namespace {

using orvane::IConvolution;
using orvane::InstructionSet;
using orvane::RenderPath;
using orvane::SampleBuffer;
using test::Signal;

std::vector<std::uint32_t> bitsOf(const SampleBuffer& buffer) {
    std::vector<std::uint32_t> bits;
    for (std::uint64_t channel = 0; channel < buffer.numChannels; ++channel)
        for (const float sample : buffer.channel(channel))
            bits.push_back(std::bit_cast<std::uint32_t>(sample));
    return bits;
}

bool isFinite(const SampleBuffer& buffer) {
    bool finite = true;
    for (std::uint64_t channel = 0; channel < buffer.numChannels; ++channel)
        for (const float sample : buffer.channel(channel))
            finite = finite && std::isfinite(sample);
    return finite;
}

/// Both convolvers, fed the same.
struct Pair {
    Pair(std::uint64_t blockSize, std::uint64_t partitionCount, std::int32_t bandLimitFactor,
         InstructionSet set = orvane::bestInstructionSet())
        : plain(orvane::ConvolutionFactory({.path = RenderPath::plain})
                    .create(48000.0, blockSize, partitionCount, bandLimitFactor)),
          fast(orvane::ConvolutionFactory({.path = RenderPath::fast, .instructionSet = set})
                   .create(48000.0, blockSize, partitionCount, bandLimitFactor)),
          expected(2, blockSize),
          output(2, blockSize) {}

    void process(Signal& input, const SampleBuffer& response, bool update) {
        const orvane::SampleSpan block{input.data(), input.size()};
        plain->process(block, expected, response, update);
        fast->process(block, output, response, update);
    }

    std::unique_ptr<IConvolution> plain;
    std::unique_ptr<IConvolution> fast;
    SampleBuffer expected;
    SampleBuffer output;
};

enum class Edit {
    nothing,
    oneSample,
    onePartition,
    silentPartition,
    silentEar,
    negativeZero,
    everything,
    silence
};
constexpr std::uint32_t editCount = 8;

/// Changes a response as scenes and head turns do: rarely all of it.
void edit(SampleBuffer& response, Edit change, std::uint64_t blockSize, std::mt19937& random) {
    const std::uint64_t partition = random() % (response.numSamples / blockSize);
    const std::uint64_t ear = random() % 2;
    const Signal fresh = test::noise(response.numSamples, test::Seed{static_cast<std::uint32_t>(random())});
    const auto fillPartition = [&](std::uint64_t channel, float factor) {
        for (std::uint64_t i = partition * blockSize; i < (partition + 1) * blockSize; ++i)
            response.channelPointers[channel][i] = factor * fresh[i];
    };
    switch (change) {
    case Edit::nothing:
        break;
    case Edit::oneSample:
        response.channelPointers[ear][partition * blockSize + random() % blockSize] = fresh.front();
        break;
    case Edit::onePartition:
        fillPartition(ear, 1.0f);
        break;
    case Edit::silentPartition:
        fillPartition(0, 0.0f);
        fillPartition(1, 0.0f);
        break;
    case Edit::silentEar:
        fillPartition(ear, 0.0f);
        break;
    case Edit::negativeZero:
        std::fill_n(response.channelPointers[ear] + partition * blockSize, blockSize, -0.0f);
        break;
    case Edit::everything:
        std::copy_n(fresh.begin(), response.numSamples, response.channelPointers[ear]);
        std::copy_n(fresh.rbegin(), response.numSamples, response.channelPointers[1 - ear]);
        break;
    case Edit::silence:
        response.clear();
        break;
    }
}

/// One random life of a convolver: every block plain and fast have equal bits, and the fast one keeps the rules
/// of the block path.
void runScript(std::uint64_t blockSize, std::uint64_t partitionCount, std::int32_t bandLimitFactor,
               InstructionSet set, std::uint32_t seed) {
    std::mt19937 random(seed);
    Pair pair(blockSize, partitionCount, bandLimitFactor, set);
    SampleBuffer response(2, blockSize * partitionCount);
    SampleBuffer expectedOld(2, std::min<std::uint64_t>(blockSize, 64)); // as long as the owner's fade
    SampleBuffer outputOld(2, expectedOld.numSamples);
    const std::uint64_t blockCount = 24 + std::min<std::uint64_t>(partitionCount, 12);
    for (std::uint64_t block = 0; block < blockCount; ++block) {
        Signal input = test::noise(blockSize, test::Seed{static_cast<std::uint32_t>(random())});
        if (random() % 8 == 0)
            std::fill(input.begin(), input.end(), 0.0f);
        const bool update = block == 0 || random() % 3 != 0;
        const auto change = static_cast<Edit>(block == 0 ? 6 : random() % editCount);
        if (update)
            edit(response, change, blockSize, random);
        const orvane::SampleSpan span{input.data(), blockSize};
        if (random() % 6 == 0) {
            pair.plain->prepare(response);
            pair.fast->prepare(response);
        }
        const bool crossfaded = random() % 3 != 0;
        if (crossfaded)
            pair.plain->processCrossfaded(span, expectedOld, pair.expected, response, update);
        else
            pair.plain->process(span, pair.expected, response, update);
        const test::RealtimeScope scope;
        if (crossfaded)
            pair.fast->processCrossfaded(span, outputOld, pair.output, response, update);
        else
            pair.fast->process(span, pair.output, response, update);
        const auto seen = scope.violations();
        ASSERT_EQ(seen, test::RealtimeViolations{}) << "block " << block;
        ASSERT_EQ(bitsOf(pair.output), bitsOf(pair.expected))
            << "block " << block << " partitions " << partitionCount << " band " << bandLimitFactor;
        ASSERT_EQ(bitsOf(outputOld), bitsOf(expectedOld)) << "old version of block " << block;
    }
}

/// Null tests: block size, instruction set.
class ReplacementScripts : public ::testing::TestWithParam<std::tuple<std::uint64_t, InstructionSet>> {};

TEST_P(ReplacementScripts, LeaveNoBitBetweenPlainAndFast) {
    const auto [blockSize, set] = GetParam();
    std::uint32_t seed = 1;
    for (const std::int32_t bandLimitFactor : {1, 2, 4})
        for (std::uint64_t partitionCount = 1; partitionCount <= 9; ++partitionCount)
            ASSERT_NO_FATAL_FAILURE(runScript(blockSize, partitionCount, bandLimitFactor, set, seed++));
    if (blockSize <= 64) {
        ASSERT_NO_FATAL_FAILURE(runScript(blockSize, 69, 1, set, seed));
    }
}
INSTANTIATE_TEST_SUITE_P(BlocksAndInstructionSets, ReplacementScripts,
                         ::testing::Combine(::testing::Values(1, 2, 3, 32, 63, 64, 128, 139, 256, 441, 480,
                                                              512, 513, 1009, 1024, 2048),
                                            ::testing::ValuesIn(orvane::supportedInstructionSets().begin(),
                                                                orvane::supportedInstructionSets().end())));

class BadSamples : public ::testing::TestWithParam<float> {};

/// Property: past samples are forgotten after the response's partitions and one block more.
TEST_P(BadSamples, OfTheInputAreForgottenNoLaterThanByThePlainConvolver) {
    constexpr std::uint64_t blockSize = 32;
    constexpr std::uint64_t partitionCount = 5;
    Pair pair(blockSize, partitionCount, 1);
    SampleBuffer response = test::noiseResponse(blockSize * partitionCount, test::Seed{1});
    std::fill_n(response.channelPointers[0] + 3 * blockSize, blockSize, 0.0f);
    std::fill_n(response.channelPointers[1] + 3 * blockSize, blockSize, 0.0f);
    for (std::uint32_t block = 0; block < 12; ++block) {
        Signal input = test::noise(blockSize, test::Seed{10 + block});
        if (block == 2)
            input[7] = GetParam();
        pair.process(input, response, block == 0);
        EXPECT_TRUE(isFinite(pair.output) || !isFinite(pair.expected)) << "block " << block;
        if (block < 2 || block >= 2 + partitionCount + 1) {
            EXPECT_EQ(bitsOf(pair.output), bitsOf(pair.expected)) << "block " << block;
        }
    }
    EXPECT_TRUE(isFinite(pair.output));
}

TEST_P(BadSamples, OfAResponseAreGoneWithTheNextReplacement) {
    constexpr std::uint64_t blockSize = 32;
    Pair pair(blockSize, 4, 1);
    const SampleBuffer good = test::noiseResponse(blockSize * 4, test::Seed{2});
    SampleBuffer bad = good;
    bad.channelPointers[0][2 * blockSize + 5] = GetParam();
    for (std::uint32_t block = 0; block < 9; ++block) {
        Signal input = test::noise(blockSize, test::Seed{30 + block});
        const bool spoilt = block >= 3 && block < 6;
        pair.process(input, spoilt ? bad : good, true);
        EXPECT_EQ(isFinite(pair.output), !spoilt) << "block " << block;
        EXPECT_EQ(isFinite(pair.expected), !spoilt) << "block " << block;
        if (!spoilt) {
            EXPECT_EQ(bitsOf(pair.output), bitsOf(pair.expected)) << "block " << block;
        }
    }
}
INSTANTIATE_TEST_SUITE_P(NotFinite, BadSamples,
                         ::testing::Values(std::numeric_limits<float>::quiet_NaN(),
                                           std::numeric_limits<float>::infinity(),
                                           -std::numeric_limits<float>::infinity()));

class QuietInput : public ::testing::TestWithParam<float> {};

SampleBuffer responseWithGaps(std::uint64_t blockSize, std::uint64_t partitionCount) {
    SampleBuffer response = test::noiseResponse(blockSize * partitionCount, test::Seed{3});
    for (std::uint64_t partition = 1; partition < partitionCount; partition += 2)
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            std::fill_n(response.channelPointers[ear] + partition * blockSize, blockSize, 0.0f);
    return response;
}

TEST_P(QuietInput, GivesEqualBitsWhereDenormalsCount) {
    constexpr std::uint64_t blockSize = 64;
    Pair pair(blockSize, 5, 1);
    const SampleBuffer response = responseWithGaps(blockSize, 5);
    for (std::uint32_t block = 0; block < 8; ++block) {
        Signal input = test::noise(blockSize, test::Seed{50 + block});
        for (float& sample : input)
            sample *= GetParam();
        pair.process(input, response, block == 0);
        EXPECT_EQ(bitsOf(pair.output), bitsOf(pair.expected)) << "block " << block;
    }
}

TEST_P(QuietInput, GivesEqualValuesWhereDenormalsAreFlushed) {
    constexpr std::uint64_t blockSize = 64;
    constexpr unsigned int flushBoth = 0x8040; // results to zero, operands as zero
    Pair pair(blockSize, 5, 1);
    const SampleBuffer response = responseWithGaps(blockSize, 5);
    for (std::uint32_t block = 0; block < 8; ++block) {
        Signal input = test::noise(blockSize, test::Seed{70 + block});
        for (float& sample : input)
            sample *= GetParam();
        const unsigned int before = _mm_getcsr();
        _mm_setcsr(before | flushBoth);
        pair.process(input, response, block == 0);
        _mm_setcsr(before);
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            EXPECT_TRUE(std::ranges::equal(pair.output.channel(ear), pair.expected.channel(ear)))
                << "block " << block; // by value: the sign of a zero may differ
    }
}
INSTANTIATE_TEST_SUITE_P(AroundTheSmallestNormal, QuietInput,
                         ::testing::Values(1e-30f, 1e-36f, 1e-37f, 1e-38f, 1e-40f, 1e-44f));

TEST(UnchangedResponse, IsDeliveredThroughOneBlockIntoBothOutputs) {
    // Null test: a replacement by the same samples, asked for with a shorter old output, as the fade does.
    constexpr std::uint64_t blockSize = 128;
    Pair pair(blockSize, 4, 1);
    const SampleBuffer response = test::noiseResponse(blockSize * 4, test::Seed{4});
    SampleBuffer oldBlock(2, 64);
    Signal input = test::noise(blockSize, test::Seed{5});
    pair.process(input, response, true);
    const orvane::SampleSpan span{input.data(), blockSize};
    pair.plain->process(span, pair.expected, response, false);
    pair.fast->processCrossfaded(span, oldBlock, pair.output, response, true);
    EXPECT_EQ(bitsOf(pair.output), bitsOf(pair.expected));
    for (std::uint64_t ear = 0; ear < 2; ++ear)
        EXPECT_TRUE(std::equal(oldBlock.channel(ear).begin(), oldBlock.channel(ear).end(),
                               pair.expected.channel(ear).begin()));
}

} // namespace
