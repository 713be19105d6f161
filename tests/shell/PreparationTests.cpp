// SPDX-License-Identifier: GPL-3.0-or-later
// The three states of the processor, and how it stands between the host's buffer and the engine manager. The
// manager is a stand-in that writes down what it is asked for.
#include "TestDataFolder.h"
#include "TestProcessor.h"

#include "base/SampleBuffer.h"
#include "parameters/core/Scene.h"
#include "parameters/core/SelectorId.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <xmmintrin.h>

#include <cmath>
#include <memory>
#include <stdexcept>

namespace {

using orvane::kestrum::core::Scene;
using orvane::kestrum::core::selectorId;
using test::Processor;

/// What the stand-in saw, and what it is to do. Outlives the processor that it is lent to.
struct Record {
    int prepared = 0;
    int released = 0;
    std::uint64_t blockSize = 0;
    double sampleRate = 0;
    float outputGainAtPrepare = 0;
    float distanceAtPrepare = 0;
    std::uint64_t inputChannels = 0;
    std::uint64_t outputChannels = 0;
    std::uint64_t frames = 0;
    const float* firstInput = nullptr;
    const float* firstOutput = nullptr;
    unsigned controlWord = 0;
    std::function<void()> onPrepare;
    std::function<void(orvane::SampleBuffer&)> onProcess;
    std::function<void()> reloadFinished;
    orvane::kestrum::core::IParameterSet* parameterSet = nullptr;
};

class RecordingManager final : public orvane::IEngineManager {
public:
    explicit RecordingManager(Record& record) : record(record) {}

    void prepare(std::uint64_t blockSize, double sampleRate) override {
        ++record.prepared;
        record.blockSize = blockSize;
        record.sampleRate = sampleRate;
        record.outputGainAtPrepare = record.parameterSet->getOutputGainDb();
        record.distanceAtPrepare = record.parameterSet->getDistance();
        if (record.onPrepare)
            record.onPrepare();
    }
    void release() override { ++record.released; }
    void process(const orvane::SampleBuffer& input, orvane::SampleBuffer& output) override {
        record.inputChannels = input.numChannels;
        record.outputChannels = output.numChannels;
        record.frames = output.numSamples;
        record.firstInput = input.numChannels > 0 ? input.channelPointers[0] : nullptr;
        record.firstOutput = output.numChannels > 0 ? output.channelPointers[0] : nullptr;
        record.controlWord = _mm_getcsr();
        if (record.onProcess)
            record.onProcess(output);
    }
    void setMuted(bool) noexcept override {}

private:
    Record& record;
};

std::unique_ptr<Processor> recordedProcessor(Record& record) {
    return test::makeProcessor([&record](auto* parameterSet, std::function<void()> reloadFinished) {
        record.parameterSet = parameterSet;
        record.reloadFinished = std::move(reloadFinished);
        return std::make_unique<RecordingManager>(record);
    });
}

juce::AudioBuffer<float> loudBuffer(int channels, int frames) {
    juce::AudioBuffer<float> buffer(channels, frames);
    for (int channel = 0; channel < channels; ++channel)
        juce::FloatVectorOperations::fill(buffer.getWritePointer(channel), 0.5f, frames);
    return buffer;
}

TEST(Preparation, PassesBlockSizeAndRateOnAndRunsTheEngineFromThen) {
    Record record;
    const auto processor = recordedProcessor(record);
    processor->prepareToPlay(96000.0, 480);
    EXPECT_EQ(record.prepared, 1);
    EXPECT_EQ(record.blockSize, 480u); // the internal block is what was announced, not the power of two
    EXPECT_EQ(record.sampleRate, 96000.0);
    EXPECT_EQ(processor->getLatencySamples(), 512);
    EXPECT_FALSE(processor->hasError());
    auto buffer = loudBuffer(2, 480);
    test::process(*processor, buffer);
    EXPECT_EQ(record.frames, 480u);
}

TEST(Preparation, BeforeItAndAfterAReleaseEveryChannelIsSilentAndTheEngineIsNotAsked) {
    Record record;
    const auto processor = recordedProcessor(record);
    ASSERT_TRUE(test::setInputs(*processor, 6));
    auto buffer = loudBuffer(6, 32);
    test::process(*processor, buffer);
    EXPECT_TRUE(test::isSilent(buffer));
    processor->prepareToPlay(48000.0, 32);
    processor->releaseResources();
    EXPECT_EQ(record.released, 1);
    buffer = loudBuffer(6, 32);
    test::process(*processor, buffer);
    EXPECT_TRUE(test::isSilent(buffer));
    EXPECT_EQ(record.frames, 0u);
}

TEST(Preparation, AnyExceptionOfItIsKeptFromTheHostAndRaisesTheFlag) {
    Record record;
    const auto processor = recordedProcessor(record);
    for (const std::function<void()>& failure : std::vector<std::function<void()>>{
             [] { throw std::runtime_error("files"); }, [] { throw std::bad_alloc(); }, [] { throw 42; }}) {
        record.onPrepare = failure;
        EXPECT_NO_THROW(processor->prepareToPlay(48000.0, 64));
        EXPECT_TRUE(processor->hasError());
        auto buffer = loudBuffer(2, 64);
        test::process(*processor, buffer);
        EXPECT_TRUE(test::isSilent(buffer));
    }
    record.onPrepare = nullptr;
    processor->prepareToPlay(48000.0, 64);
    EXPECT_FALSE(processor->hasError());
}

TEST(Preparation, AReleaseDoesNotClearTheFlag) {
    Record record;
    const auto processor = recordedProcessor(record);
    record.onPrepare = [] { throw std::runtime_error("files"); };
    processor->prepareToPlay(48000.0, 64);
    processor->releaseResources();
    EXPECT_TRUE(processor->hasError());
}

TEST(Preparation, AFailureAfterASuccessWithoutAReleaseWarnsWhileTheOlderEngineGoesOn) {
    Record record;
    const auto processor = recordedProcessor(record);
    processor->prepareToPlay(48000.0, 64);
    record.onPrepare = [] { throw std::runtime_error("files"); };
    processor->prepareToPlay(48000.0, 64);
    EXPECT_TRUE(processor->hasError());
    auto buffer = loudBuffer(2, 64);
    test::process(*processor, buffer);
    EXPECT_EQ(record.frames, 64u);
    EXPECT_FALSE(test::isSilent(buffer)); // the stand-in leaves the block as it is
}

TEST(Preparation, NonsenseRatesAndBlocksReachNobodyUnchecked) {
    Record record;
    const auto processor = recordedProcessor(record);
    processor->prepareToPlay(48000.0, 0);
    EXPECT_EQ(record.blockSize, 0u);
    EXPECT_EQ(processor->getLatencySamples(), 0);
    processor->prepareToPlay(48000.0, -5);
    EXPECT_EQ(record.blockSize, 0u);
    for (const double rate : {0.0, -48000.0, std::nan(""), HUGE_VAL, 1e18})
        EXPECT_NO_THROW(processor->prepareToPlay(rate, 64)) << rate;
}

/// Expected values: the row of the Scene in the product's table.
TEST(Preparation, PushesTheValuesOfARestoredSceneBeforeTheEngineIsBuilt) {
    Record record;
    const auto processor = recordedProcessor(record);
    const auto& kitchen = Scene::get(selectorId("Kitchen"));
    processor->getProcessorState()->getScene()->setValue(selectorId("Kitchen"));
    processor->getProcessorState()->getMasterGain()->setValue(-6.0f);
    processor->prepareToPlay(48000.0, 64);
    EXPECT_EQ(record.distanceAtPrepare, kitchen.sourceDistance);
    EXPECT_NEAR(record.outputGainAtPrepare, kitchen.masterGainDb - 6.0f, 1e-5f);
}

/// The same values once more, as a crossfade pushes them, on the audio thread.
TEST(Preparation, WhatRunsAtEachCrossfadePushesTheValuesOfTheSceneWithoutAllocatingOrLocking) {
    Record record;
    const auto processor = recordedProcessor(record);
    processor->prepareToPlay(48000.0, 64);
    const auto& car = Scene::get(selectorId("Car"));
    processor->getProcessorState()->getScene()->setValue(selectorId("Car"));
    EXPECT_NE(record.parameterSet->getDistance(), car.sourceDistance);
    test::RealtimeViolations seen;
    {
        const test::RealtimeScope scope;
        record.reloadFinished();
        seen = scope.violations();
    }
    EXPECT_EQ(seen, test::RealtimeViolations{});
    EXPECT_EQ(record.parameterSet->getDistance(), car.sourceDistance);
    EXPECT_NEAR(record.parameterSet->getOutputGainDb(), car.masterGainDb, 1e-5f);
    EXPECT_EQ(record.parameterSet->getReflectionHighPassFrequency(), car.reflectionHighPassFrequency);
    EXPECT_EQ(record.parameterSet->getReverbGainDb(), car.reverbGainDb); // Ambience at 50 adds nothing
    EXPECT_EQ(record.parameterSet->getReflectionGainDb(), car.reflectionGainDb); // Focus at 0 adds nothing
}

struct Width {
    int inputBus;
    int buffer;
};

class EngineViews : public ::testing::TestWithParam<Width> {};

/// The buffer is as wide as the wider bus; only what belongs to the input bus is input.
TEST_P(EngineViews, AreTheHostsOwnMemoryWithTheInputAsWideAsItsBus) {
    Record record;
    const auto processor = recordedProcessor(record);
    ASSERT_TRUE(test::setInputs(*processor, GetParam().inputBus));
    processor->prepareToPlay(48000.0, 64);
    auto buffer = loudBuffer(GetParam().buffer, 64);
    test::process(*processor, buffer);
    EXPECT_EQ(record.inputChannels,
              static_cast<std::uint64_t>(std::min(GetParam().inputBus, GetParam().buffer)));
    EXPECT_EQ(record.outputChannels, static_cast<std::uint64_t>(GetParam().buffer));
    EXPECT_EQ(record.firstInput, buffer.getReadPointer(0));
    EXPECT_EQ(record.firstOutput, buffer.getReadPointer(0));
}
INSTANTIATE_TEST_SUITE_P(Widths, EngineViews,
                         ::testing::Values(Width{1, 2}, Width{2, 2}, Width{6, 6}, Width{16, 16}, Width{6, 4},
                                           Width{2, 8}));

TEST(BlockPath, ABlockThatWasMarkedClearIsReadAsItsMemoryStands) {
    Record record;
    const auto processor = recordedProcessor(record);
    processor->prepareToPlay(48000.0, 16);
    juce::AudioBuffer<float> buffer(2, 16);
    buffer.clear();
    record.onProcess = [](orvane::SampleBuffer& output) { output.channelPointers[0][3] = 0.25f; };
    test::process(*processor, buffer);
    EXPECT_FALSE(buffer.hasBeenCleared()); // else the host would take the block for silence
    EXPECT_EQ(buffer.getSample(0, 3), 0.25f);
}

TEST(BlockPath, WhatThrowsInABlockEndsInSilenceAndTheNextBlockRuns) {
    Record record;
    const auto processor = recordedProcessor(record);
    processor->prepareToPlay(48000.0, 16);
    for (const bool standard : {true, false}) {
        record.onProcess = [standard](orvane::SampleBuffer&) {
            if (standard)
                throw std::runtime_error("ramp");
            throw 1;
        };
        auto buffer = loudBuffer(2, 16);
        EXPECT_NO_THROW(test::process(*processor, buffer));
        EXPECT_TRUE(test::isSilent(buffer));
    }
    record.onProcess = nullptr;
    auto buffer = loudBuffer(2, 16);
    test::process(*processor, buffer);
    EXPECT_FALSE(test::isSilent(buffer));
    EXPECT_FALSE(processor->hasError());
}

TEST(BlockPath, DenormalsAreFlushedForTheLengthOfABlockAndTheHostsModeComesBack) {
    Record record;
    const auto processor = recordedProcessor(record);
    processor->prepareToPlay(48000.0, 16);
    const unsigned hostMode = _mm_getcsr();
    auto buffer = loudBuffer(2, 16);
    test::process(*processor, buffer);
    constexpr unsigned flushToZero = 0x8000;
    constexpr unsigned denormalsAreZero = 0x0040;
    EXPECT_EQ(record.controlWord & (flushToZero | denormalsAreZero), flushToZero | denormalsAreZero);
    EXPECT_EQ(_mm_getcsr() & (flushToZero | denormalsAreZero), hostMode & (flushToZero | denormalsAreZero));

    record.onProcess = [](orvane::SampleBuffer&) { throw std::runtime_error("ramp"); };
    test::process(*processor, buffer);
    EXPECT_EQ(_mm_getcsr() & (flushToZero | denormalsAreZero), hostMode & (flushToZero | denormalsAreZero));
}

TEST(BlockPath, AnEmptyBlockIsHarmless) {
    Record record;
    const auto processor = recordedProcessor(record);
    processor->prepareToPlay(48000.0, 16);
    juce::AudioBuffer<float> none(2, 0);
    test::process(*processor, none);
    EXPECT_EQ(record.frames, 0u);
}

} // namespace
