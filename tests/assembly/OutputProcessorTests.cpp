// SPDX-License-Identifier: GPL-3.0-or-later
#include "assembly/Product.h"
#include "base/IInPlaceProcessor.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace {

using orvane::SampleBuffer;

constexpr double sampleRate = 48000.0;
constexpr std::uint64_t frames = 64;

/// The same noise in both ears.
SampleBuffer noiseBlock(std::uint32_t seed) {
    const test::Signal signal = test::noise(frames, test::Seed{seed});
    SampleBuffer buffer(2, frames);
    for (std::uint64_t ear = 0; ear < 2; ++ear)
        std::copy(signal.begin(), signal.end(), buffer.channelPointers[ear]);
    return buffer;
}

void expectSameBits(const SampleBuffer& actual, const SampleBuffer& expected) {
    for (std::uint64_t ear = 0; ear < 2; ++ear)
        for (std::uint64_t frame = 0; frame < frames; ++frame)
            ASSERT_EQ(actual.channelPointers[ear][frame], expected.channelPointers[ear][frame])
                << ear << ", " << frame;
}

/// Reference: the three stages one after the other. A bass shelf and a gain that moves do not commute, so the
/// bits tell the order. The gain that holds at construction is there from the first frame, without a ramp.
TEST(OutputProcessor, IsBassReductionThenMasterGainThenCompensationAndFollowsTheParameter) {
    test::Product product;
    product.parameterSet->setOutputGainDb(-20.0f, false);
    const auto output = product.factory.createOutputProcessor(sampleRate, product.parameterSet.get(), -9.4f);
    float gainDb = -20.0f;
    const auto bass = product.factory.createBassReductionProcessor(sampleRate);
    const auto master = product.factory.createMasterGainProcessor(&gainDb, sampleRate);
    const auto compensation = product.factory.createGainCompensationProcessor(-9.4f);
    for (std::uint32_t block = 0; block < 4; ++block) {
        SCOPED_TRACE(block);
        gainDb = block < 2 ? -20.0f : 6.0f;
        product.parameterSet->setOutputGainDb(gainDb, false);
        SampleBuffer actual = noiseBlock(block);
        SampleBuffer expected = noiseBlock(block);
        output->process(actual);
        bass->process(expected);
        master->process(expected);
        compensation->process(expected);
        expectSameBits(actual, expected);
    }
}

TEST(OutputProcessor, NeitherAllocatesNorLocks) {
    test::Product product;
    const auto output = product.factory.createOutputProcessor(sampleRate, product.parameterSet.get(), 0.6f);
    product.parameterSet->setOutputGainDb(3.0f, false);
    SampleBuffer buffer = noiseBlock(1);
    const test::RealtimeScope scope;
    output->process(buffer);
    EXPECT_EQ(scope.violations().total(), 0u) << scope.violations();
}

} // namespace
