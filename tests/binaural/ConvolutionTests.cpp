// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConvolverRun.h"
#include "binaural/ConvolutionFactory.h"
#include "reference/Dft.h"
#include "reference/DirectConvolution.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <memory>
#include <random>
#include <span>
#include <tuple>
#include <vector>

namespace {

using orvane::RenderPath;
using orvane::SampleBuffer;
using test::Signal;
using test::Tolerance;

/// Rounding of one transform there and one back on samples of full scale: some units in the last place.
constexpr Tolerance fftRounding{2e-6f};

/// A response of P samples of noise adds up P products of rounding errors.
Tolerance noiseRounding(std::uint64_t responseLength) {
    return {2e-6f * std::sqrt(static_cast<float>(responseLength))};
}

std::span<const float> samplesOf(const SampleBuffer& buffer, std::uint64_t channel) {
    return {buffer.channelPointers[channel], buffer.numSamples};
}

Signal signalOf(const SampleBuffer& buffer, std::uint64_t channel) {
    const auto samples = samplesOf(buffer, channel);
    return {samples.begin(), samples.end()};
}

const auto paths = ::testing::Values(RenderPath::plain, RenderPath::fast);

/// Both convolvers of the loudspeakers are held to the same references.
class EitherConvolution : public ::testing::TestWithParam<RenderPath> {};
INSTANTIATE_TEST_SUITE_P(PlainAndFast, EitherConvolution, paths);

class ConvolutionDelay : public ::testing::TestWithParam<std::tuple<RenderPath, std::uint64_t>> {};

/// Analytic reference: a response with one unit impulse at sample d delays the input by d.
TEST_P(ConvolutionDelay, UnitImpulseInTheLeftResponseDelaysLeftAndLeavesRightSilent) {
    constexpr std::uint64_t blockSize = 60;
    constexpr std::uint64_t partitionCount = 4; // deliberately no power of two
    const auto [path, delay] = GetParam();
    SampleBuffer response(2, blockSize * partitionCount);
    response.channelPointers[0][delay] = 1.0f;
    const Signal input = test::noise(10 * blockSize, test::Seed{1});
    const auto output = test::runConvolver(path, input, response, blockSize);
    EXPECT_THAT(output.left, test::DelayedCopyOf(input, delay, fftRounding));
    EXPECT_THAT(output.right, test::Silence());
}

TEST_P(ConvolutionDelay, UnitImpulseInTheRightResponseDelaysRightAndLeavesLeftSilent) {
    constexpr std::uint64_t blockSize = 60;
    const auto [path, delay] = GetParam();
    SampleBuffer response(2, blockSize * 4);
    response.channelPointers[1][delay] = 1.0f;
    const Signal input = test::noise(10 * blockSize, test::Seed{2});
    const auto output = test::runConvolver(path, input, response, blockSize);
    EXPECT_THAT(output.right, test::DelayedCopyOf(input, delay, fftRounding));
    EXPECT_THAT(output.left, test::Silence());
}
INSTANTIATE_TEST_SUITE_P(BothSidesOfEachPartitionEdge, ConvolutionDelay,
                         ::testing::Combine(paths, ::testing::Values(0, 1, 59, 60, 61, 119, 120, 179, 180,
                                                                     181, 239)));

class ConvolutionShapes
    : public ::testing::TestWithParam<std::tuple<RenderPath, std::uint64_t, std::uint64_t>> {
}; // path, blockSize, partitionCount

/// Slow reference: the sum of products in double precision.
TEST_P(ConvolutionShapes, NoiseThroughNoiseAgreesWithTheDirectSum) {
    const auto [path, blockSize, partitionCount] = GetParam();
    const std::uint64_t length = blockSize * partitionCount;
    const SampleBuffer response = test::noiseResponse(length, test::Seed{3});
    const Signal input = test::noise((partitionCount + 3) * blockSize, test::Seed{4});
    const auto output = test::runConvolver(path, input, response, blockSize);
    EXPECT_THAT(output.left,
                test::CloseTo(test::reference::convolve(input, samplesOf(response, 0), 0, input.size()),
                              noiseRounding(length)));
    EXPECT_THAT(output.right,
                test::CloseTo(test::reference::convolve(input, samplesOf(response, 1), 0, input.size()),
                              noiseRounding(length)));
}
INSTANTIATE_TEST_SUITE_P(BlocksAndPartitions, ConvolutionShapes,
                         ::testing::Combine(paths, ::testing::Values(1, 2, 63, 64, 139, 480, 509),
                                            ::testing::Values(1, 2, 3, 8)));

/// Random scripts: what a replaced response leaves behind shows against a reference that knows, for every
/// block, which response holds. The product is the same as a fresh convolver over the whole history.
class ResponseScripts : public ::testing::TestWithParam<std::tuple<RenderPath, std::uint32_t>> {};

TEST_P(ResponseScripts, EveryBlockIsHeardThroughTheResponseThatHoldsInIt) {
    const auto [path, seed] = GetParam();
    std::mt19937 random(seed);
    const std::uint64_t blockSize = 1 + random() % 70;
    const std::uint64_t partitionCount = 1 + random() % 6;
    const std::uint64_t length = blockSize * partitionCount;
    const auto convolver = test::makeConvolver(path, 48000.0, blockSize, partitionCount, 1);
    Signal input = test::noise(40 * blockSize, test::Seed{seed + 100});
    SampleBuffer response(2, length); // silence until the first replacement
    SampleBuffer oldBlock(2, blockSize);
    SampleBuffer newBlock(2, blockSize);
    for (std::uint64_t block = 0; block < 40; ++block) {
        const std::uint64_t frame = block * blockSize;
        const SampleBuffer before = response;
        const bool update = random() % 3 == 0;
        const bool crossfaded = random() % 2 == 0;
        if (update)
            response =
                test::noiseResponse(length, test::Seed{seed * 1000 + static_cast<std::uint32_t>(block)});
        if (crossfaded)
            convolver->processCrossfaded(test::blockOf(input, frame, blockSize), oldBlock, newBlock, response,
                                         update);
        else
            convolver->process(test::blockOf(input, frame, blockSize), newBlock, response, update);
        for (std::uint64_t ear = 0; ear < 2; ++ear) {
            ASSERT_THAT(
                signalOf(newBlock, ear),
                test::CloseTo(test::reference::convolve(input, samplesOf(response, ear), frame, blockSize),
                              noiseRounding(length)))
                << "block " << block << " ear " << ear;
            if (crossfaded) {
                ASSERT_THAT(
                    signalOf(oldBlock, ear),
                    test::CloseTo(test::reference::convolve(input, samplesOf(before, ear), frame, blockSize),
                                  noiseRounding(length)))
                    << "old version of block " << block << " ear " << ear;
            }
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Seeds, ResponseScripts, ::testing::Combine(paths, ::testing::Range(1u, 21u)));

TEST_P(EitherConvolution, IsSilentUntilItGetsAResponse) {
    const auto convolver = test::makeConvolver(GetParam(), 44100.0, 16, 2, 1);
    Signal input = test::noise(16, test::Seed{5});
    const SampleBuffer unused = test::noiseResponse(32, test::Seed{6});
    SampleBuffer output(2, 16);
    output.channelPointers[0][3] = 7; // stored, never added to
    convolver->process(test::blockOf(input, 0, 16), output, unused, false);
    EXPECT_THAT(signalOf(output, 0), test::Silence());
    EXPECT_THAT(signalOf(output, 1), test::Silence());
}

TEST_P(EitherConvolution, ReadsExactlyOneBlockOfALongerInput) {
    const SampleBuffer response = test::noiseResponse(32, test::Seed{7});
    Signal input = test::noise(32, test::Seed{8});
    const auto convolver = test::makeConvolver(GetParam(), 44100.0, 16, 2, 1);
    const auto twin = test::makeConvolver(GetParam(), 44100.0, 16, 2, 1);
    SampleBuffer fromLong(2, 16);
    SampleBuffer fromExact(2, 16);
    for (int block = 0; block < 2; ++block) {
        convolver->process(test::blockOf(input, 0, 32), fromLong, response, block == 0);
        twin->process(test::blockOf(input, 0, 16), fromExact, response, block == 0);
        EXPECT_EQ(signalOf(fromLong, 0), signalOf(fromExact, 0));
    }
}

TEST_P(EitherConvolution, AShorterOutputGetsOnlyItsSamplesAndALongerOneZerosBehindTheBlock) {
    // Null test: equal bits with an output of one block.
    const SampleBuffer response = test::noiseResponse(64, test::Seed{9});
    Signal input = test::noise(32, test::Seed{10});
    const auto firstBlock = [&](std::uint64_t outputLength) {
        const auto convolver = test::makeConvolver(GetParam(), 44100.0, 32, 2, 1);
        SampleBuffer output(2, outputLength);
        std::fill_n(output.channelPointers[0], outputLength, 9.0f);
        convolver->process(test::blockOf(input, 0, 32), output, response, true);
        return signalOf(output, 0);
    };
    const Signal exact = firstBlock(32);
    EXPECT_EQ(firstBlock(20), Signal(exact.begin(), exact.begin() + 20));
    const Signal longer = firstBlock(40);
    EXPECT_TRUE(std::equal(exact.begin(), exact.end(), longer.begin()));
    EXPECT_THAT(Signal(longer.begin() + 32, longer.end()), test::Silence());
}

TEST_P(EitherConvolution, AReplacementCutsTheOldTailAtOnce) {
    // Analytic: a response of zeros leaves nothing of the past, however loud it was.
    const SampleBuffer loud = test::noiseResponse(128, test::Seed{11});
    const SampleBuffer nothing(2, 128);
    const auto convolver = test::makeConvolver(GetParam(), 44100.0, 32, 4, 1);
    Signal input = test::noise(5 * 32, test::Seed{12});
    SampleBuffer output(2, 32);
    for (std::uint64_t block = 0; block < 4; ++block)
        convolver->process(test::blockOf(input, block * 32, 32), output, loud, block == 0);
    EXPECT_GT(test::peak(signalOf(output, 0)), 0.1f);
    convolver->process(test::blockOf(input, 128, 32), output, nothing, true);
    EXPECT_THAT(signalOf(output, 0), test::Silence());
    EXPECT_THAT(signalOf(output, 1), test::Silence());
}

TEST_P(EitherConvolution, AReplacedResponseLeavesTheSameBitsAsOneThatWasThereAlways) {
    // The input's history is never touched by a replacement.
    const SampleBuffer first = test::noiseResponse(96, test::Seed{13});
    const SampleBuffer second = test::noiseResponse(96, test::Seed{14});
    Signal input = test::noise(6 * 32, test::Seed{15});
    const auto changed = test::makeConvolver(GetParam(), 44100.0, 32, 3, 1);
    const auto always = test::makeConvolver(GetParam(), 44100.0, 32, 3, 1);
    SampleBuffer changedBlock(2, 32);
    SampleBuffer alwaysBlock(2, 32);
    for (std::uint64_t block = 0; block < 6; ++block) {
        changed->process(test::blockOf(input, block * 32, 32), changedBlock, block < 4 ? first : second,
                         block == 0 || block == 4);
        always->process(test::blockOf(input, block * 32, 32), alwaysBlock, second, block == 0);
        if (block >= 4) {
            EXPECT_EQ(signalOf(changedBlock, 0), signalOf(alwaysBlock, 0));
            EXPECT_EQ(signalOf(changedBlock, 1), signalOf(alwaysBlock, 1));
        }
    }
}

TEST_P(EitherConvolution, ACrossfadedBlockIsTheSameAsThatOfTwoConvolvers) {
    // Null test against the hard contract of the interface; equal bits.
    const SampleBuffer present = test::noiseResponse(96, test::Seed{16});
    const SampleBuffer next = test::noiseResponse(96, test::Seed{17});
    Signal input = test::noise(3 * 32, test::Seed{18});
    const auto both = test::makeConvolver(GetParam(), 44100.0, 32, 3, 1);
    const auto oldOne = test::makeConvolver(GetParam(), 44100.0, 32, 3, 1);
    const auto newOne = test::makeConvolver(GetParam(), 44100.0, 32, 3, 1);
    SampleBuffer oldBlock(2, 32);
    SampleBuffer newBlock(2, 32);
    SampleBuffer expectedOld(2, 32);
    SampleBuffer expectedNew(2, 32);
    for (std::uint64_t block = 0; block < 3; ++block) {
        const auto span = test::blockOf(input, block * 32, 32);
        both->processCrossfaded(span, oldBlock, newBlock, block == 0 ? present : next, block != 1);
        oldOne->process(span, expectedOld, present, block == 0);
        newOne->process(span, expectedNew, block == 0 ? present : next, block != 1);
    }
    for (std::uint64_t ear = 0; ear < 2; ++ear) {
        EXPECT_EQ(signalOf(oldBlock, ear), signalOf(expectedOld, ear));
        EXPECT_EQ(signalOf(newBlock, ear), signalOf(expectedNew, ear));
        EXPECT_NE(signalOf(oldBlock, ear), signalOf(newBlock, ear));
    }
}

TEST_P(EitherConvolution, ACrossfadedBlockWithoutAReplacementGivesTwoIdenticalOutputs) {
    const SampleBuffer response = test::noiseResponse(96, test::Seed{19});
    const SampleBuffer other = test::noiseResponse(96, test::Seed{20});
    Signal input = test::noise(64, test::Seed{21});
    const auto convolver = test::makeConvolver(GetParam(), 44100.0, 32, 3, 1);
    SampleBuffer oldBlock(2, 32);
    SampleBuffer newBlock(2, 32);
    convolver->process(test::blockOf(input, 0, 32), oldBlock, response, true);
    convolver->processCrossfaded(test::blockOf(input, 32, 32), oldBlock, newBlock, other, false);
    EXPECT_GT(test::peak(signalOf(oldBlock, 0)), 0.01f);
    EXPECT_EQ(signalOf(oldBlock, 0), signalOf(newBlock, 0));
    EXPECT_EQ(signalOf(oldBlock, 1), signalOf(newBlock, 1));
}

TEST_P(EitherConvolution, ACrossfadedBlockWithoutAReplacementIsWholeWhereTheOldOutputIsShorter) {
    // Null test: equal bits with the block of process().
    const SampleBuffer response = test::noiseResponse(96, test::Seed{27});
    Signal input = test::noise(32, test::Seed{28});
    const auto convolver = test::makeConvolver(GetParam(), 44100.0, 32, 3, 1);
    const auto twin = test::makeConvolver(GetParam(), 44100.0, 32, 3, 1);
    convolver->prepare(response);
    twin->prepare(response);
    SampleBuffer oldBlock(2, 8);
    SampleBuffer newBlock(2, 32);
    SampleBuffer expected(2, 32);
    convolver->processCrossfaded(test::blockOf(input, 0, 32), oldBlock, newBlock, response, false);
    twin->process(test::blockOf(input, 0, 32), expected, response, false);
    for (std::uint64_t ear = 0; ear < 2; ++ear) {
        const Signal whole = signalOf(expected, ear);
        EXPECT_EQ(signalOf(newBlock, ear), whole);
        EXPECT_EQ(signalOf(oldBlock, ear), Signal(whole.begin(), whole.begin() + 8));
    }
}

TEST_P(EitherConvolution, APreparedResponseIsHeardFromTheFirstBlockOn) {
    // Null test: equal bits with a response that is set in the first block.
    const SampleBuffer response = test::noiseResponse(96, test::Seed{29});
    Signal input = test::noise(32, test::Seed{30});
    const auto prepared = test::makeConvolver(GetParam(), 96000.0, 32, 3, 2);
    const auto updated = test::makeConvolver(GetParam(), 96000.0, 32, 3, 2);
    SampleBuffer output(2, 32);
    SampleBuffer expected(2, 32);
    prepared->prepare(response);
    prepared->process(test::blockOf(input, 0, 32), output, response, false);
    updated->process(test::blockOf(input, 0, 32), expected, response, true);
    EXPECT_GT(test::peak(signalOf(expected, 0)), 0.01f);
    EXPECT_EQ(signalOf(output, 0), signalOf(expected, 0));
    EXPECT_EQ(signalOf(output, 1), signalOf(expected, 1));
}

TEST_P(EitherConvolution, IsLinearInItsInput) {
    // Property: the response to a weighted sum is the weighted sum of the responses.
    const SampleBuffer response = test::noiseResponse(256, test::Seed{22});
    for (std::uint32_t seed = 30; seed < 35; ++seed) {
        const Signal a = test::noise(640, test::Seed{seed});
        const Signal b = test::noise(640, test::Seed{seed + 100});
        Signal sum(640);
        for (std::size_t i = 0; i < sum.size(); ++i)
            sum[i] = 0.5f * a[i] - 0.25f * b[i];
        const auto fromA = test::runConvolver(GetParam(), a, response, 64);
        const auto fromB = test::runConvolver(GetParam(), b, response, 64);
        Signal expected(640);
        for (std::size_t i = 0; i < sum.size(); ++i)
            expected[i] = 0.5f * fromA.left[i] - 0.25f * fromB.left[i];
        EXPECT_THAT(test::runConvolver(GetParam(), sum, response, 64).left,
                    test::CloseTo(expected, noiseRounding(256)));
    }
}

TEST_P(EitherConvolution, ShiftsItsOutputWithItsInput) {
    // Property of time invariance, with shifts that are no whole blocks.
    const SampleBuffer response = test::noiseResponse(256, test::Seed{23});
    const Signal input = test::noise(640, test::Seed{24});
    const auto straight = test::runConvolver(GetParam(), input, response, 64);
    for (const std::size_t shift : {1u, 37u, 64u, 100u}) {
        Signal shifted(640, 0.0f);
        std::copy(input.begin(), input.end() - static_cast<std::ptrdiff_t>(shift),
                  shifted.begin() + static_cast<std::ptrdiff_t>(shift));
        EXPECT_THAT(test::runConvolver(GetParam(), shifted, response, 64).left,
                    test::DelayedCopyOf(straight.left, shift, noiseRounding(256)));
    }
}

TEST_P(EitherConvolution, GivesTheSameStreamWhateverTheBlockSize) {
    const SampleBuffer response = test::noiseResponse(960, test::Seed{25});
    const Signal input = test::noise(2880, test::Seed{26});
    const auto reference = test::runConvolver(GetParam(), input, response, 960);
    for (const std::uint64_t blockSize : {32u, 60u, 96u, 480u})
        EXPECT_THAT(test::runConvolver(GetParam(), input, response, blockSize).right,
                    test::CloseTo(reference.right, noiseRounding(960)));
}

/// The spectrum that acts for the one partition of a response that is not silent, bins 0 to N.
///
/// An impulse in the first sample of block b stands at sample N of that block's window and at sample 0 of the
/// next one. So block b + partition shows samples 0 to N - 1 of the partition's circular response over 2N
/// samples, and the block behind it samples N to 2N - 1, where a band limit spreads to.
std::vector<std::complex<double>> spectrumOfPartition(RenderPath path, std::uint64_t partition,
                                                      const SampleBuffer& response, std::uint64_t blockSize,
                                                      std::int32_t bandLimitFactor) {
    Signal input((partition + 2) * blockSize, 0.0f);
    input[0] = 1.0f;
    const auto output = test::runConvolver(path, input, response, blockSize, bandLimitFactor);
    const Signal circular(output.left.begin() + static_cast<std::ptrdiff_t>(partition * blockSize),
                          output.left.begin() + static_cast<std::ptrdiff_t>((partition + 2) * blockSize));
    return test::reference::dft(circular);
}

/// Only this partition of the response sounds.
SampleBuffer onlyPartition(std::uint64_t partition, std::uint64_t blockSize, std::uint64_t partitionCount) {
    SampleBuffer response(2, blockSize * partitionCount);
    const Signal samples = test::noise(blockSize, test::Seed{40 + static_cast<std::uint32_t>(partition)});
    std::copy(samples.begin(), samples.end(), response.channelPointers[0] + partition * blockSize);
    return response;
}

struct BandLimitCase {
    std::uint64_t partitionCount;
    std::uint64_t partition;
    bool limited;
};

/// Deliberate: the limit acts on partitions up to and including (P - 1) / 2; later ones keep their full band.
class BandLimitedPartition : public ::testing::TestWithParam<std::tuple<RenderPath, BandLimitCase>> {};

TEST_P(BandLimitedPartition, ClearsTheUpperBinsOfTheEarlyPartitionsOnlyAndNeverNyquist) {
    constexpr std::uint64_t blockSize = 16;
    const auto [path, band] = GetParam();
    const auto [partitionCount, partition, limited] = band;
    const SampleBuffer response = onlyPartition(partition, blockSize, partitionCount);
    const auto unlimited = spectrumOfPartition(path, partition, response, blockSize, 1);
    const auto bins = spectrumOfPartition(path, partition, response, blockSize, 2);
    for (std::uint64_t k = 0; k <= blockSize; ++k) {
        const bool cleared = limited && k >= blockSize / 2 && k < blockSize;
        const std::complex<double> expected = cleared ? 0.0 : unlimited[k];
        EXPECT_NEAR(std::abs(bins[k] - expected), 0.0, 1e-5) << "bin " << k; // FFT rounding of 2N samples
        EXPECT_GT(std::abs(unlimited[k]), 1e-3) << "bin " << k << " has nothing that could be cleared";
    }
}
INSTANTIATE_TEST_SUITE_P(
    PartitionsOfOneToFive, BandLimitedPartition,
    ::testing::Combine(paths, ::testing::Values(BandLimitCase{1, 0, true}, BandLimitCase{2, 0, true},
                                                BandLimitCase{2, 1, false}, BandLimitCase{3, 0, true},
                                                BandLimitCase{3, 1, true}, BandLimitCase{3, 2, false},
                                                BandLimitCase{4, 0, true}, BandLimitCase{4, 1, true},
                                                BandLimitCase{4, 2, false}, BandLimitCase{4, 3, false},
                                                BandLimitCase{5, 2, true}, BandLimitCase{5, 3, false})));

class BandLimit : public ::testing::TestWithParam<RenderPath> {};
INSTANTIATE_TEST_SUITE_P(PlainAndFast, BandLimit, paths);

TEST_P(BandLimit, RoundsTheKeptBinsDownForABlockThatTheFactorDoesNotDivide) {
    // 15 / 4 keeps bins 0 to 2.
    const SampleBuffer response = onlyPartition(0, 15, 1);
    const auto unlimited = spectrumOfPartition(GetParam(), 0, response, 15, 1);
    const auto bins = spectrumOfPartition(GetParam(), 0, response, 15, 4);
    for (std::uint64_t k = 0; k <= 15; ++k)
        EXPECT_NEAR(std::abs(bins[k] - (k < 3 || k == 15 ? unlimited[k] : 0.0)), 0.0, 1e-5) << "bin " << k;
}

TEST_P(BandLimit, ActsAgainOnEveryReplacement) {
    // The cleared bins come from the same loop each time: two replacements leave the bits of one.
    const SampleBuffer response = test::noiseResponse(64, test::Seed{50});
    Signal input = test::noise(16, test::Seed{51});
    const auto once = test::makeConvolver(GetParam(), 96000.0, 16, 4, 2);
    const auto twice = test::makeConvolver(GetParam(), 96000.0, 16, 4, 2);
    SampleBuffer expected(2, 16);
    SampleBuffer output(2, 16);
    once->process(test::blockOf(input, 0, 16), expected, response, true);
    twice->processCrossfaded(test::blockOf(input, 0, 16), output, output, response, true);
    once->process(test::blockOf(input, 0, 16), expected, response, false);
    twice->process(test::blockOf(input, 0, 16), output, response, true);
    EXPECT_EQ(signalOf(output, 0), signalOf(expected, 0));
    EXPECT_EQ(signalOf(output, 1), signalOf(expected, 1));
}

class OutputGain : public ::testing::TestWithParam<RenderPath> {};
INSTANTIATE_TEST_SUITE_P(PlainAndFast, OutputGain, paths);

TEST_P(OutputGain, IsLessThanOneAtWholeMultiplesOf48000Hertz) {
    // 44100 / 48000 as a 32-bit float.
    for (const double rate : {48000.0, 96000.0, 192000.0, 48000.9})
        EXPECT_EQ(test::makeConvolver(GetParam(), rate, 4, 1, 1)->outputGain(), 0.91875f) << rate;
}

TEST_P(OutputGain, IsOneElsewhere) {
    for (const double rate : {24000.0, 44100.0, 88200.0, 176400.0, 47999.9})
        EXPECT_EQ(test::makeConvolver(GetParam(), rate, 4, 1, 1)->outputGain(), 1.0f) << rate;
}

TEST_P(OutputGain, IsNotAppliedByTheConvolver) {
    SampleBuffer response(2, 8);
    response.channelPointers[0][0] = 1;
    Signal input = test::noise(8, test::Seed{52});
    const auto convolver = test::makeConvolver(GetParam(), 48000.0, 8, 1, 1);
    SampleBuffer output(2, 8);
    convolver->process(test::blockOf(input, 0, 8), output, response, true);
    EXPECT_THAT(signalOf(output, 0), test::CloseTo(input, fftRounding));
}

TEST_P(EitherConvolution, NeitherAllocatesNorLocksWhileItRuns) {
    for (const std::uint64_t blockSize : {1u, 2u, 60u, 64u, 139u, 509u, 512u, 1009u}) {
        const std::unique_ptr<orvane::IConvolution> convolver =
            test::makeConvolver(GetParam(), 96000.0, blockSize, 4, 2);
        const SampleBuffer response = test::noiseResponse(4 * blockSize, test::Seed{53});
        Signal input = test::noise(blockSize, test::Seed{54});
        SampleBuffer oldBlock(2, blockSize);
        SampleBuffer newBlock(2, blockSize);
        const test::RealtimeScope scope;
        convolver->process(test::blockOf(input, 0, blockSize), newBlock, response, true);
        convolver->process(test::blockOf(input, 0, blockSize), newBlock, response, false);
        convolver->processCrossfaded(test::blockOf(input, 0, blockSize), oldBlock, newBlock, response, true);
        convolver->processCrossfaded(test::blockOf(input, 0, blockSize), oldBlock, newBlock, response, false);
        const auto seen = scope.violations();
        EXPECT_EQ(seen, test::RealtimeViolations{}) << blockSize;
    }
}

TEST(ConvolutionFactory, MakesAWorkingConvolverForEachCall) {
    orvane::ConvolutionFactory factory;
    const auto first = factory.create(48000.0, 32, 2, 1);
    const auto second = factory.create(44100.0, 32, 2, 1);
    EXPECT_EQ(first->outputGain(), 0.91875f);
    EXPECT_EQ(second->outputGain(), 1.0f);
}

} // namespace
