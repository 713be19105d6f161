// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConvolverRun.h"
#include "binaural/Convolution.h"
#include "binaural/LayeredConvolution.h"
#include "binaural/ReverbConvolutionFactory.h"
#include "reference/DirectConvolution.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace {

using orvane::BandLimit;
using orvane::Convolution;
using orvane::LayeredConvolution;
using orvane::LayerPlan;
using orvane::LayerShape;
using orvane::SampleBuffer;
using test::Signal;

/// -120 dB of the output's peak.
constexpr float residueLimit = 1e-6f;

struct Case {
    std::uint64_t blockSize;
    std::uint64_t partitionCount;
    std::int32_t factor;

    std::uint64_t length() const { return blockSize * partitionCount; }
    BandLimit bandLimit() const { return BandLimit::of(blockSize, partitionCount, factor); }
    LayerPlan plan() const { return orvane::planLayers(blockSize, partitionCount, bandLimit()); }
};

std::unique_ptr<LayeredConvolution> layered(const Case& given, const LayerPlan& plan) {
    return std::make_unique<LayeredConvolution>(48000.0, given.blockSize, plan, given.bandLimit(),
                                                orvane::bestInstructionSet());
}

/// Peaks of a reference and of what another convolver delivered beside it.
struct Residue {
    float peak = 0;
    float difference = 0;

    void add(const SampleBuffer& expected, const SampleBuffer& heard) {
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            for (std::uint64_t i = 0; i < expected.numSamples; ++i) {
                const float sample = expected.channelPointers[ear][i];
                peak = std::max(peak, std::abs(sample));
                // Not a number fails too.
                const float off = std::abs(heard.channelPointers[ear][i] - sample);
                difference = off <= difference ? difference : off;
            }
    }
    float relative() const { return difference / peak; }
};

/// Runs both convolvers over all whole blocks; the response comes with the first one.
Residue residueOf(const Case& given, orvane::IConvolution& convolver, Signal input,
                  const SampleBuffer& response) {
    Convolution plain(48000.0, given.blockSize, given.partitionCount, given.factor);
    SampleBuffer expected(2, given.blockSize);
    SampleBuffer heard(2, given.blockSize);
    Residue residue;
    for (std::uint64_t frame = 0; frame + given.blockSize <= input.size(); frame += given.blockSize) {
        const auto span = test::blockOf(input, frame, given.blockSize);
        plain.process(span, expected, response, frame == 0);
        convolver.process(span, heard, response, frame == 0);
        residue.add(expected, heard);
    }
    return residue;
}

class LongResponses : public ::testing::TestWithParam<Case> {};

/// Null test: the plain convolver over noise, to the end of the response and beyond.
TEST_P(LongResponses, SoundAsThePlainConvolverWithin120DecibelsOfThePeak) {
    const Case given = GetParam();
    ASSERT_FALSE(given.plan().layers.empty());
    const auto convolver = layered(given, given.plan());
    const Signal input = test::noise(given.length() + 20 * given.blockSize, test::Seed{1});
    const Residue residue =
        residueOf(given, *convolver, input, test::noiseResponse(given.length(), test::Seed{2}));
    EXPECT_LT(residue.relative(), residueLimit) << 20 * std::log10(residue.relative()) << " dB";
    EXPECT_GT(residue.peak, 1.0f);
}
INSTANTIATE_TEST_SUITE_P(BlocksAndBands, LongResponses,
                         ::testing::Values(Case{32, 65, 1}, Case{32, 1500, 1}, Case{32, 900, 2},
                                           Case{64, 1200, 1}, Case{64, 3442, 1}, Case{64, 701, 2},
                                           Case{64, 700, 4}, Case{128, 500, 1}, Case{139, 400, 1},
                                           Case{139, 300, 2}, Case{256, 300, 1}, Case{441, 200, 1},
                                           Case{480, 200, 1}, Case{480, 200, 4}, Case{512, 220, 1},
                                           Case{513, 150, 1}, Case{1009, 110, 1}, Case{1024, 120, 2},
                                           Case{2048, 108, 1}));

/// Slow reference: the sum of products in double precision, for inputs that the response of noise hardly answers,
/// so that rounding shows. The plain path is not nearer to it.
TEST(LayeredConvolution, IsAsExactAsThePlainConvolverForConstantTonalAndFaintInput) {
    const Case given{64, 1200, 1};
    const SampleBuffer response = test::noiseResponse(given.length(), test::Seed{20});
    const std::uint64_t length = given.length() + 10 * given.blockSize;
    Signal tone(length);
    for (std::uint64_t i = 0; i < length; ++i)
        tone[i] = static_cast<float>(std::sin(0.0131 * static_cast<double>(i)));
    Signal faint = test::noise(length, test::Seed{21});
    for (float& sample : faint)
        sample *= 1e-6f;
    for (Signal input : {Signal(length, 0.5f), tone, faint}) {
        Convolution plain(48000.0, given.blockSize, given.partitionCount, given.factor);
        const auto convolver = layered(given, given.plan());
        SampleBuffer plainBlock(2, given.blockSize);
        SampleBuffer block(2, given.blockSize);
        Residue ofPlain;
        Residue ofLayers;
        for (std::uint64_t frame = 0; frame < length; frame += given.blockSize) {
            const auto span = test::blockOf(input, frame, given.blockSize);
            plain.process(span, plainBlock, response, frame == 0);
            convolver->process(span, block, response, frame == 0);
            if (frame / given.blockSize % 197 != 196)
                continue;
            SampleBuffer exact(2, given.blockSize);
            for (std::uint64_t ear = 0; ear < 2; ++ear)
                std::ranges::copy(
                    test::reference::convolve(input, {response.channelPointers[ear], response.numSamples},
                                              frame, given.blockSize),
                    exact.channelPointers[ear]);
            ofPlain.add(exact, plainBlock);
            ofLayers.add(exact, block);
        }
        EXPECT_LT(ofLayers.relative(), 1.25f * ofPlain.relative());
        EXPECT_LT(ofLayers.relative(), 2 * residueLimit);
    }
}

/// Small enough for every block of every period: head of 64 samples, then partitions of 32 and of 128.
Case smallCase() { return {16, 41, 1}; }
LayerPlan smallPlan() { return {4, {{32, 64, 64, 192}, {128, 288, 256, 400}}}; }

class ImpulseResponses : public ::testing::TestWithParam<std::uint64_t> {};

/// Analytic reference: one unit impulse at sample d of the response delays the input by d.
TEST_P(ImpulseResponses, DelayTheInputAndLeaveTheOtherEarSilent) {
    const Case given = smallCase();
    for (std::uint64_t ear = 0; ear < 2; ++ear) {
        SampleBuffer response(2, given.length());
        response.channelPointers[ear][GetParam()] = 1.0f;
        const auto convolver = layered(given, smallPlan());
        Signal input = test::noise(100 * given.blockSize, test::Seed{3});
        SampleBuffer block(2, given.blockSize);
        test::Stereo output;
        for (std::uint64_t frame = 0; frame < input.size(); frame += given.blockSize) {
            convolver->process(test::blockOf(input, frame, given.blockSize), block, response, frame == 0);
            output.append(block);
        }
        EXPECT_THAT(ear == 0 ? output.left : output.right,
                    test::DelayedCopyOf(input, GetParam(), test::Tolerance{residueLimit}));
        EXPECT_THAT(ear == 0 ? output.right : output.left, test::Silence());
    }
}
INSTANTIATE_TEST_SUITE_P(BothSidesOfEveryPartitionEdge, ImpulseResponses,
                         ::testing::Values(0, 15, 16, 47, 48, 63, 64, 65, 95, 96, 97, 127, 128, 159, 160, 191,
                                           192, 223, 224, 254, 255, 256, 257, 383, 384, 385, 511, 512, 639,
                                           640, 655));

class Scripts : public ::testing::TestWithParam<std::uint32_t> {};

/// Null test against the plain convolver: replacements in any block of the layers' periods, crossfaded and not,
/// between blocks, and with host calls shorter than a block.
TEST_P(Scripts, ReplaceResponsesAsThePlainConvolverDoes) {
    const Case given = smallCase();
    std::mt19937 random(GetParam());
    Convolution plain(48000.0, given.blockSize, given.partitionCount, given.factor);
    const auto convolver = layered(given, smallPlan());
    Signal input = test::noise(300 * given.blockSize, test::Seed{GetParam() + 50});
    SampleBuffer response(2, given.length());
    SampleBuffer expected(2, given.blockSize);
    SampleBuffer expectedOld(2, given.blockSize);
    SampleBuffer heard(2, given.blockSize);
    SampleBuffer heardOld(2, given.blockSize);
    Residue residue;
    for (std::uint64_t frame = 0; frame < input.size(); frame += given.blockSize) {
        const auto span = test::blockOf(input, frame, given.blockSize);
        const bool update = random() % 9 == 0;
        if (update)
            response = test::noiseResponse(given.length(), test::Seed{static_cast<std::uint32_t>(random())});
        bool updateHere = update;
        if (update && random() % 3 == 0) {
            convolver->prepare(response);
            updateHere = false;
        }
        convolver->workAhead(random() % given.blockSize);
        if (update == updateHere && random() % 2 == 0) {
            plain.processCrossfaded(span, expectedOld, expected, response, update);
            convolver->processCrossfaded(span, heardOld, heard, response, update);
            residue.add(expectedOld, heardOld);
        } else {
            plain.process(span, expected, response, update);
            convolver->process(span, heard, response, updateHere);
        }
        residue.add(expected, heard);
        ASSERT_LT(residue.difference, residueLimit * std::max(1.0f, residue.peak)) << frame / given.blockSize;
    }
    EXPECT_LT(residue.relative(), residueLimit);
    EXPECT_GT(residue.peak, 1.0f);
}
INSTANTIATE_TEST_SUITE_P(Seeds, Scripts, ::testing::Range(1u, 13u));

/// All blocks of a stream through a convolver of the small plan, with `work` called before each.
template <typename Work>
test::Stereo streamed(std::uint64_t firstChange, Work work) {
    const Case given = smallCase();
    const SampleBuffer first = test::noiseResponse(given.length(), test::Seed{4});
    const SampleBuffer second = test::noiseResponse(given.length(), test::Seed{5});
    const auto convolver = layered(given, smallPlan());
    Signal input = test::noise(200 * given.blockSize, test::Seed{6});
    SampleBuffer block(2, given.blockSize);
    test::Stereo output;
    for (std::uint64_t index = 0; index < 200; ++index) {
        work(*convolver);
        convolver->process(test::blockOf(input, index * given.blockSize, given.blockSize), block,
                           index < firstChange ? first : second, index == 0 || index == firstChange);
        output.append(block);
    }
    return output;
}

TEST(LayeredConvolution, GivesTheSameBitsHoweverTheHostCutsItsCalls) {
    const auto whole = streamed(77, [](orvane::IConvolution&) {});
    for (const std::uint64_t step : {1u, 3u, 5u, 15u}) {
        const auto cut = streamed(77, [step](orvane::IConvolution& convolver) {
            for (std::uint64_t pending = step; pending < 16; pending += step)
                convolver.workAhead(pending);
        });
        EXPECT_EQ(cut.left, whole.left) << step;
        EXPECT_EQ(cut.right, whole.right) << step;
    }
}

/// A replacement in any block of a period leaves the bits of a response that was there always.
TEST(LayeredConvolution, KeepsTheInputsHistoryWhenItsResponseIsReplaced) {
    const auto always = streamed(0, [](orvane::IConvolution&) {});
    for (std::uint64_t change = 60; change < 77; ++change) {
        const auto changed = streamed(change, [](orvane::IConvolution&) {});
        const auto since = static_cast<std::ptrdiff_t>(change * 16);
        EXPECT_TRUE(std::equal(changed.left.begin() + since, changed.left.end(), always.left.begin() + since))
            << change;
        EXPECT_TRUE(
            std::equal(changed.right.begin() + since, changed.right.end(), always.right.begin() + since))
            << change;
        EXPECT_NE(changed.left[change * 16 - 1], always.left[change * 16 - 1]);
    }
}

TEST(LayeredConvolution, AResponseOfZerosLeavesNothingOfThePast) {
    const Case given = smallCase();
    const auto convolver = layered(given, smallPlan());
    const SampleBuffer loud = test::noiseResponse(given.length(), test::Seed{7});
    const SampleBuffer nothing(2, given.length());
    Signal input = test::noise(60 * given.blockSize, test::Seed{8});
    SampleBuffer block(2, given.blockSize);
    test::Stereo output;
    for (std::uint64_t index = 0; index < 60; ++index) {
        convolver->process(test::blockOf(input, index * given.blockSize, given.blockSize), block,
                           index < 50 ? loud : nothing, index == 0 || index == 50);
        if (index >= 50)
            output.append(block);
    }
    EXPECT_THAT(output.left, test::Silence());
    EXPECT_THAT(output.right, test::Silence());
}

TEST(LayeredConvolution, WritesAShorterAndALongerOutputAsThePlainConvolverDoes) {
    const Case given = smallCase();
    const SampleBuffer response = test::noiseResponse(given.length(), test::Seed{9});
    for (const std::uint64_t length : {10u, 20u}) {
        Convolution plain(48000.0, given.blockSize, given.partitionCount, given.factor);
        const auto convolver = layered(given, smallPlan());
        Signal input = test::noise(60 * given.blockSize, test::Seed{10});
        SampleBuffer expected(2, length);
        SampleBuffer heard(2, length);
        Residue residue;
        for (std::uint64_t index = 0; index < 60; ++index) {
            std::fill_n(heard.channelPointers[1], length, 9.0f);
            const auto span = test::blockOf(input, index * given.blockSize, given.blockSize);
            plain.process(span, expected, response, index == 0);
            convolver->process(span, heard, response, index == 0);
            residue.add(expected, heard);
        }
        EXPECT_LT(residue.relative(), residueLimit);
    }
}

class LayeredBadInput : public ::testing::TestWithParam<float> {};

/// Property: wherever the plain convolver is finite again, so is this one, and right.
TEST_P(LayeredBadInput, IsForgottenNoLaterThanByThePlainConvolver) {
    const Case given = smallCase();
    for (std::uint64_t bad = 20; bad < 29; ++bad) {
        Convolution plain(48000.0, given.blockSize, given.partitionCount, given.factor);
        const auto convolver = layered(given, smallPlan());
        const SampleBuffer response = test::noiseResponse(given.length(), test::Seed{11});
        Signal input = test::noise(130 * given.blockSize, test::Seed{12});
        input[bad * given.blockSize + 7] = GetParam();
        SampleBuffer expected(2, given.blockSize);
        SampleBuffer heard(2, given.blockSize);
        Residue residue;
        std::uint64_t finiteBlocks = 0;
        for (std::uint64_t index = 0; index < 130; ++index) {
            const auto span = test::blockOf(input, index * given.blockSize, given.blockSize);
            plain.process(span, expected, response, index == 0);
            convolver->process(span, heard, response, index == 0);
            if (!std::isfinite(expected.channelPointers[0][0]))
                continue;
            ++finiteBlocks;
            residue.add(expected, heard);
        }
        EXPECT_EQ(finiteBlocks, 130u - 42u);
        EXPECT_LT(residue.relative(), residueLimit);
    }
}
INSTANTIATE_TEST_SUITE_P(NotANumberAndInfinity, LayeredBadInput,
                         ::testing::Values(std::numeric_limits<float>::quiet_NaN(),
                                           std::numeric_limits<float>::infinity(),
                                           -std::numeric_limits<float>::infinity()));

TEST(LayeredConvolution, NeitherAllocatesNorLocksWhileItRuns) {
    for (const std::uint64_t blockSize :
         {32u, 64u, 128u, 139u, 256u, 441u, 480u, 512u, 513u, 1009u, 1024u, 2048u}) {
        for (const std::int32_t factor : {1, 2}) {
            const Case given{blockSize, 140, factor};
            ASSERT_FALSE(given.plan().layers.empty()) << blockSize;
            const auto convolver = layered(given, given.plan());
            const SampleBuffer response = test::noiseResponse(given.length(), test::Seed{13});
            Signal input = test::noise(blockSize, test::Seed{14});
            SampleBuffer oldBlock(2, blockSize);
            SampleBuffer newBlock(2, blockSize);
            const auto span = test::blockOf(input, 0, blockSize);
            const test::RealtimeScope scope;
            for (std::uint64_t index = 0; index < 70; ++index) {
                convolver->workAhead(blockSize / 2);
                if (index % 2 == 0)
                    convolver->process(span, newBlock, response, index % 32 == 0);
                else
                    convolver->processCrossfaded(span, oldBlock, newBlock, response, index % 32 == 1);
            }
            const auto seen = scope.violations();
            EXPECT_EQ(seen, test::RealtimeViolations{}) << blockSize;
        }
    }
}

// The plan.

TEST(LayerPlans, CoverTheResponseWithoutGapAndLeaveEachLayerTimeToWork) {
    for (const std::uint64_t blockSize :
         {1u, 32u, 64u, 128u, 139u, 256u, 441u, 480u, 512u, 513u, 1009u, 1024u, 2048u})
        for (const std::uint64_t partitionCount : {65u, 100u, 431u, 1000u, 3442u, 6883u})
            for (const std::int32_t factor : {1, 2, 4}) {
                const Case given{blockSize, partitionCount, factor};
                const LayerPlan plan = given.plan();
                EXPECT_LE(plan.layers.size(), 2u);
                std::uint64_t covered = plan.headPartitions * blockSize;
                for (const LayerShape& layer : plan.layers) {
                    EXPECT_EQ(layer.firstSample, covered);
                    EXPECT_GE(layer.firstSample, 2 * layer.partitionLength);
                    EXPECT_GE(layer.transformLength, 2 * layer.partitionLength);
                    EXPECT_EQ(layer.partitionLength % blockSize, 0u);
                    covered += layer.sampleCount;
                }
                EXPECT_EQ(covered, given.length()) << blockSize << ", " << partitionCount;
            }
}

TEST(LayerPlans, LeaveWhatTheBandLimitActsOnToTheHead) {
    for (const std::int32_t factor : {2, 4}) {
        const Case given{64, 3442, factor};
        EXPECT_GE(given.plan().headPartitions, 1721u);
        EXPECT_FALSE(given.plan().layers.empty());
    }
}

TEST(ReverbConvolutionFactory, UpTo64PartitionsGivesTheBitsOfThePlainPath) {
    orvane::ReverbConvolutionFactory fastFactory;
    orvane::ReverbConvolutionFactory plainFactory({.path = orvane::RenderPath::plain});
    const SampleBuffer response = test::noiseResponse(64 * 32, test::Seed{15});
    const auto fast = fastFactory.create(48000.0, 32, 64, 1);
    const auto plain = plainFactory.create(48000.0, 32, 64, 1);
    EXPECT_EQ(fast->outputGain(), plain->outputGain());
    Signal input = test::noise(80 * 32, test::Seed{16});
    SampleBuffer heard(2, 32);
    SampleBuffer expected(2, 32);
    for (std::uint64_t frame = 0; frame < input.size(); frame += 32) {
        fast->process(test::blockOf(input, frame, 32), heard, response, frame == 0);
        plain->process(test::blockOf(input, frame, 32), expected, response, frame == 0);
        EXPECT_TRUE(
            std::equal(heard.channel(0).begin(), heard.channel(0).end(), expected.channel(0).begin()));
        EXPECT_TRUE(
            std::equal(heard.channel(1).begin(), heard.channel(1).end(), expected.channel(1).begin()));
    }
}

TEST(ReverbConvolutionFactory, BeyondThatItLayersOnTheFastPathOnly) {
    orvane::ReverbConvolutionFactory fast;
    orvane::ReverbConvolutionFactory plain({.path = orvane::RenderPath::plain});
    EXPECT_NE(dynamic_cast<LayeredConvolution*>(fast.create(48000.0, 64, 3442, 1).get()), nullptr);
    EXPECT_EQ(dynamic_cast<LayeredConvolution*>(fast.create(48000.0, 64, 64, 1).get()), nullptr);
    EXPECT_NE(dynamic_cast<Convolution*>(plain.create(48000.0, 64, 3442, 1).get()), nullptr);
}

} // namespace
