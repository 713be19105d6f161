// SPDX-License-Identifier: GPL-3.0-or-later
// Samples that are no numbers: what they spoil, the fast path gives back as soon as the plain one, and afterwards
// both sound alike again.
#include "assembly/EngineRig.h"
#include "base/ISpatialProcessor.h"
#include "binaural/ConvolutionFactory.h"
#include "binaural/ReverbConvolutionFactory.h"
#include "data/TenmarshHrir.h"
#include "support/NoiseHrirReader.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <ostream>
#include <span>
#include <vector>

namespace {

using orvane::RenderOptions;
using orvane::RenderPath;
using test::Signal;

constexpr double sampleRate = 48000.0;
constexpr std::size_t poisonedBlock = 5;

const std::vector<float> poisons{std::numeric_limits<float>::quiet_NaN(),
                                 std::numeric_limits<float>::infinity(),
                                 -std::numeric_limits<float>::infinity()};

/// Noise; one sample of block `poisonedBlock` is `poison`.
Signal poisoned(std::size_t blockCount, std::uint64_t blockSize, float poison) {
    Signal input = test::noise(blockCount * blockSize, test::Seed{31});
    input[poisonedBlock * blockSize + blockSize / 3] = poison;
    return input;
}

/// Renders block `index` from `input` to `output`.
using Render =
    std::function<void(const orvane::SampleBuffer& input, orvane::SampleBuffer& output, std::size_t index)>;

Signal leftEar(Signal input, std::uint64_t blockSize, const Render& render) {
    Signal left;
    orvane::SampleBuffer output(2, blockSize);
    for (std::size_t start = 0; start + blockSize <= input.size(); start += blockSize) {
        float* const samples = input.data() + start;
        const orvane::SampleBuffer block(&samples, 1, blockSize);
        render(block, output, start / blockSize);
        left.insert(left.end(), output.channelPointers[0], output.channelPointers[0] + blockSize);
    }
    return left;
}

/// @return the first block from which on all are finite.
std::size_t recovery(const Signal& output, std::uint64_t blockSize) {
    std::size_t last = output.size();
    while (last > 0 && std::isfinite(output[last - 1]))
        --last;
    return (last + blockSize - 1) / blockSize;
}

/// `fast` is finite again no later than `plain`, and from there on within `tolerance` of it.
void expectToRecoverAlike(const Signal& fast, const Signal& plain, std::uint64_t blockSize, float tolerance) {
    const std::size_t healthy = recovery(plain, blockSize);
    ASSERT_GT(healthy, poisonedBlock);
    ASSERT_LT(healthy, plain.size() / blockSize - 2);
    EXPECT_LE(recovery(fast, blockSize), healthy);
    for (std::size_t i = healthy * blockSize; i < plain.size(); ++i)
        ASSERT_LE(std::abs(fast[i] - plain[i]), tolerance) << "sample " << i;
}

struct Case {
    bool reverb;
    std::uint64_t blockSize;
    std::uint64_t partitionCount;
};
std::ostream& operator<<(std::ostream& stream, const Case& tried) {
    return stream << (tried.reverb ? "Reverb" : "Loudspeaker") << tried.blockSize << "Times"
                  << tried.partitionCount;
}

class Convolvers : public ::testing::TestWithParam<Case> {};

Signal convolved(const RenderOptions& options, const Case& tried, float poison) {
    const std::uint64_t length = tried.blockSize * tried.partitionCount;
    const auto convolution = tried.reverb ? orvane::ReverbConvolutionFactory(options).create(
                                                sampleRate, tried.blockSize, tried.partitionCount, 1)
                                          : orvane::ConvolutionFactory(options).create(
                                                sampleRate, tried.blockSize, tried.partitionCount, 1);
    orvane::SampleBuffer response(2, length + tried.blockSize);
    for (std::uint64_t ear = 0; ear < 2; ++ear) {
        const Signal noise = test::noise(length, test::Seed{41 + static_cast<std::uint32_t>(ear)});
        std::ranges::copy(noise, response.channelPointers[ear]);
    }
    orvane::SampleBuffer old(2, tried.blockSize);
    const std::size_t blockCount = poisonedBlock + 2 * tried.partitionCount + 40;
    return leftEar(poisoned(blockCount, tried.blockSize, poison), tried.blockSize,
                   [&](const orvane::SampleBuffer& input, orvane::SampleBuffer& output, std::size_t index) {
                       if (tried.reverb)
                           convolution->process(input.channel(0), output, response, index == 0);
                       else
                           convolution->processCrossfaded(input.channel(0), old, output, response,
                                                          index % 3 == 0);
                   });
}

/// Null test against the plain path. The tolerance allows for partitions of several sizes, where they are used.
TEST_P(Convolvers, RecoverFromOneBadSampleNoLaterThanThePlainPath) {
    const Case tried = GetParam();
    for (const float poison : poisons) {
        SCOPED_TRACE(poison);
        const Signal plain = convolved({RenderPath::plain, {}}, tried, poison);
        const float tolerance =
            tried.partitionCount <= 64
                ? 0.0f
                : 1e-6f * std::sqrt(static_cast<float>(tried.blockSize * tried.partitionCount));
        for (const orvane::InstructionSet set : orvane::supportedInstructionSets())
            expectToRecoverAlike(convolved({RenderPath::fast, set}, tried, poison), plain, tried.blockSize,
                                 tolerance);
    }
}
INSTANTIATE_TEST_SUITE_P(OfBothKinds, Convolvers,
                         ::testing::Values(Case{false, 64, 1}, Case{false, 64, 32}, Case{false, 139, 9},
                                           Case{true, 64, 1}, Case{true, 64, 64}, Case{true, 128, 41},
                                           Case{true, 64, 65}, Case{true, 64, 300}, Case{true, 128, 513}),
                         [](const auto& tried) { return ::testing::PrintToString(tried.param); });

/// Drawing, convolution and fade together, while the head turns on: no filter here keeps what is bad.
TEST(ALoudspeaker, RecoversFromOneBadSampleNoLaterThanThePlainPath) {
    constexpr std::uint64_t blockSize = 256;
    constexpr std::size_t blockCount = 80;
    orvane::TenmarshHrir store(std::make_unique<test::NoiseHrirReader>());
    store.load(static_cast<std::int32_t>(sampleRate), "");
    const auto played = [&](const RenderOptions& options, float poison) {
        const test::Product product(&store, test::reverbFolder(), options);
        const auto speaker = product.factory.createSpeakerProcessor(
            orvane::SpatialPosition(0, -30, 1.5f), product.parameterSet.get(), sampleRate, blockSize, &store);
        return leftEar(
            poisoned(blockCount, blockSize, poison), blockSize,
            [&](const orvane::SampleBuffer& input, orvane::SampleBuffer& output, std::size_t index) {
                const std::size_t degrees = index / 2; // still every other block
                product.headRotation->setValue(static_cast<float>(degrees));
                speaker->process(input, output);
            });
    };
    for (const float poison : poisons) {
        SCOPED_TRACE(poison);
        const Signal plain = played({RenderPath::plain, {}}, poison);
        expectToRecoverAlike(played({}, poison), plain, blockSize, 0.0f);
    }
}

/// Null test against a product that never met a bad sample. The filters of a running engine keep what is no
/// number, on either path; a new preparation starts without it, and whatever engines share is unharmed.
TEST(AnEngine, ThatIsPreparedAnewAfterBadSamplesSoundsAsIfThereHadBeenNone) {
    constexpr std::uint64_t blockSize = 512;
    orvane::TenmarshHrir store(std::make_unique<test::NoiseHrirReader>());
    store.load(static_cast<std::int32_t>(sampleRate), "");
    const auto render = [&](test::Product& product, float poison) {
        test::Channels input;
        for (std::uint32_t channel = 0; channel < 6; ++channel)
            input.push_back(test::noise(20 * blockSize, test::Seed{channel + 1}));
        if (poison != 0.0f)
            for (test::Signal& channel : input)
                channel[blockSize] = poison;
        product.prepare(blockSize, sampleRate);
        return product.render(input, blockSize);
    };
    const auto product = [&](const RenderOptions& options) {
        auto made = std::make_unique<test::Product>(&store, test::reverbFolder(), options);
        made->chooseLayout("5.1 ITU");
        return made;
    };
    const auto plain = product({RenderPath::plain, {}});
    const test::Channels expected = render(*plain, 0.0f);
    const auto fast = product({});
    for (const float poison : poisons) {
        SCOPED_TRACE(poison);
        EXPECT_FALSE(std::isfinite(render(*fast, poison)[0].back()));
        EXPECT_EQ(render(*fast, 0.0f), expected);
    }
}

} // namespace
