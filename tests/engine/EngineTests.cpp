// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Engine.h"

#include "base/IEngine.h"
#include "base/IFade.h"
#include "base/IReverbProcessor.h"
#include "engine/IEngineManager.h"
#include "filters/IGenericBiquadFilter.h"
#include "parameters/ParameterSet.h"
#include "parameters/StubComponentFactory.h"
#include "parameters/core/IParameterMapper.h"
#include "parameters/core/ISelectorFallback.h"
#include "parameters/core/ISelectorValue.h"
#include "parameters/core/ISliderValue.h"
#include "parameters/core/ISpeakerParameterSetView.h"
#include "parameters/core/IToggleValue.h"
#include "parameters/core/ParameterSet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane::kestrum::core;
using orvane::SampleBuffer;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What the stand-ins of one engine saw.
struct Seen {
    std::vector<std::string> calls;
    std::vector<float> reverbInput; ///< First sample of each channel.
    std::vector<orvane::SpatialPosition> places;
    std::vector<std::uint64_t> workedAhead; ///< Samples pending at each call.
    float filterFrequency = 0;
    float filterQuality = 0;
    float filterInputGain = 0;
};

class HalvingFade final : public orvane::IFade {
public:
    explicit HalvingFade(Seen& seenByTest) : seen(seenByTest) {}
    void apply(SampleBuffer& buffer) override {
        seen.calls.emplace_back("fade");
        buffer.multiplyBy(0.5f);
    }

private:
    Seen& seen;
};

class TenfoldFilter final : public orvane::IGenericBiquadFilter {
public:
    explicit TenfoldFilter(Seen& seenByTest) : seen(seenByTest) {}
    void process(orvane::SampleSpan buffer) override { process(buffer, buffer); }
    void process(orvane::SampleSpan in, orvane::SampleSpan out) override {
        seen.calls.emplace_back("filter");
        for (std::uint64_t i = 0; i < in.length; ++i)
            out[i] = 10.0f * in[i];
    }
    void setFrequency(float frequencyHz) override { seen.filterFrequency = frequencyHz; }
    void setQ(float q) override { seen.filterQuality = q; }
    void setGain(float /*gain*/) override {}
    void setInputGain(float gain) override { seen.filterInputGain = gain; }
    void reset() override {}

private:
    Seen& seen;
};

/// Left as it comes, right with the opposite sign.
class PlainSpeaker final : public orvane::ISpatialProcessor {
public:
    PlainSpeaker(Seen& seenByTest, std::string callName) : seen(seenByTest), name(std::move(callName)) {}
    void process(const SampleBuffer& input, SampleBuffer& output) override {
        seen.calls.push_back(name);
        output.writeChannelScaled(0, input.channel(0), 1.0f);
        output.writeChannelScaled(1, input.channel(0), -1.0f);
    }

private:
    Seen& seen;
    std::string name;
};

class ConstantReverb final : public IReverbProcessor {
public:
    explicit ConstantReverb(Seen& seenByTest) : seen(seenByTest) {}
    void process(const SampleBuffer& input, SampleBuffer& output) override {
        seen.calls.emplace_back("reverb");
        seen.reverbInput.clear();
        for (std::uint64_t channel = 0; channel < input.numChannels; ++channel)
            seen.reverbInput.push_back(input.channelPointers[channel][0]);
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            std::fill_n(output.channelPointers[ear], output.numSamples, 100.0f);
    }
    void workAhead(std::uint64_t pendingSamples) override { seen.workedAhead.push_back(pendingSamples); }

private:
    Seen& seen;
};

class DoublingOutput final : public orvane::IInPlaceProcessor {
public:
    explicit DoublingOutput(Seen& seenByTest) : seen(seenByTest) {}
    void process(SampleBuffer& buffer) override {
        seen.calls.emplace_back("output");
        buffer.multiplyBy(2.0f);
    }

private:
    Seen& seen;
};

class StandInFactory final : public test::StubComponentFactory {
public:
    explicit StandInFactory(Seen& seenByTest) : seen(seenByTest) {}
    std::unique_ptr<orvane::ISpatialProcessor>
    createSpeakerProcessor(const orvane::SpatialPosition& position, IParameterSet* /*set*/,
                           double /*sampleRate*/, std::uint64_t /*blockSize*/,
                           orvane::IHrir* /*hrir*/) const override {
        seen.places.push_back(position);
        return std::make_unique<PlainSpeaker>(seen, "speaker " + std::to_string(seen.places.size()));
    }
    std::unique_ptr<orvane::IGenericBiquadFilter> createLowpassFilter(double /*sampleRate*/) const override {
        return std::make_unique<TenfoldFilter>(seen);
    }
    std::unique_ptr<orvane::IInPlaceProcessor>
    createOutputProcessor(double /*sampleRate*/, IParameterSet* /*set*/, float /*gainDb*/) const override {
        return std::make_unique<DoublingOutput>(seen);
    }

private:
    Seen& seen;
};

/// An engine whose processors are stand-ins, so that only its own work is seen.
class EngineTest : public ::testing::Test {
protected:
    std::unique_ptr<Engine> makeEngine(std::uint64_t blockSize, std::uint64_t channelCount) {
        return std::make_unique<Engine>(48000.0, blockSize, channelCount, 0.0f, &parameterSet, nullptr,
                                        &factory, std::make_unique<ConstantReverb>(seen),
                                        std::make_unique<HalvingFade>(seen));
    }

    /// Feeds the samples first, first + 1, ... into every channel and returns the left ear.
    static std::vector<float> feed(Engine& engine, std::uint64_t channelCount, std::uint64_t frames,
                                   float first, float sentinel = 0.0f) {
        SampleBuffer input(channelCount, frames);
        for (std::uint64_t channel = 0; channel < channelCount; ++channel)
            std::iota(input.channelPointers[channel], input.channelPointers[channel] + frames, first);
        SampleBuffer output(2, frames);
        std::fill_n(output.channelPointers[0], 2 * frames, sentinel);
        engine.process(input, output);
        return {output.channelPointers[0], output.channelPointers[0] + frames};
    }

    /// How often the graph has run.
    std::ptrdiff_t runs() const { return std::count(seen.calls.begin(), seen.calls.end(), "output"); }

    Seen seen;
    StandInFactory factory{seen};
    ParameterSet parameterSet{std::make_unique<orvane::ParameterSet>()};
};

TEST_F(EngineTest, RunsFadeFilterSpeakersReverbAndOutputInThisOrder) {
    const auto engine = makeEngine(4, 2);
    engine->addSpeaker({orvane::SpatialPosition(0, 30, 1.5f)}, 1);
    engine->addLowFrequencyChannel(0); // added last, yet it runs first: the order is that of the channels
    EXPECT_EQ(engine->speakerCount(), 2u);
    feed(*engine, 2, 4, 1.0f);
    EXPECT_THAT(seen.calls, ElementsAre("fade", "filter", "speaker 2", "speaker 1", "reverb", "output"));
}

// Expected by hand from a first sample of 1: the fade halves, the filter takes channel 0 tenfold.
TEST_F(EngineTest, TheReverbSeesEveryChannelBehindFadeAndFilterAndIsAddedBeforeTheOutputStage) {
    const auto engine = makeEngine(4, 2);
    engine->addLowFrequencyChannel(0);
    engine->addSpeaker({orvane::SpatialPosition(0, 30, 1.5f)}, 1);
    feed(*engine, 2, 4, 1.0f);
    EXPECT_THAT(seen.reverbInput, ElementsAre(5.0f, 0.5f));
    SampleBuffer output(2, 4);
    engine->process(SampleBuffer(2, 4), output);
    EXPECT_EQ(output.channelPointers[0][0], 2.0f * (5.0f + 0.5f + 100.0f));
    EXPECT_EQ(output.channelPointers[1][0], 2.0f * (-5.0f - 0.5f + 100.0f));
}

TEST_F(EngineTest, WithoutReverbAtItsConstructionTheReverbNeverRuns) {
    parameterSet.setReverbOn(false, false);
    const auto engine = makeEngine(4, 1);
    engine->addSpeaker({orvane::SpatialPosition(0, 0, 1.5f)}, 0);
    parameterSet.setReverbOn(true, false); // a matter of the next engine
    feed(*engine, 1, 4, 1.0f);
    EXPECT_THAT(seen.calls, ElementsAre("fade", "speaker 1", "output"));
}

TEST_F(EngineTest, TheLowFrequencyChannelIsSetTo80HertzAndTenDecibelsStraightAhead) {
    const auto engine = makeEngine(4, 1);
    engine->addLowFrequencyChannel(0);
    EXPECT_EQ(seen.filterFrequency, 80.0f);
    EXPECT_EQ(seen.filterQuality, 1.0f);
    EXPECT_EQ(seen.filterInputGain, 3.1622777f); // 10^(10 / 20)
    ASSERT_EQ(seen.places.size(), 1u);
    EXPECT_EQ(seen.places[0].azimuth, 0.0f);
    EXPECT_EQ(seen.places[0].elevation, 0.0f);
    EXPECT_EQ(seen.places[0].distance, 1.5f);
}

TEST_F(EngineTest, AHostBlockOfTheInternalLengthRunsTheGraphOnceAndComesOutOneBlockLater) {
    parameterSet.setReverbOn(false, false);
    const auto engine = makeEngine(4, 1);
    engine->addSpeaker({orvane::SpatialPosition(0, 0, 1.5f)}, 0);
    EXPECT_THAT(feed(*engine, 1, 4, 1.0f), Each(0.0f));
    EXPECT_EQ(runs(), 1);
    EXPECT_THAT(feed(*engine, 1, 4, 5.0f), ElementsAre(1.0f, 2.0f, 3.0f, 4.0f)); // halved, then doubled
    EXPECT_EQ(runs(), 2);
}

TEST_F(EngineTest, OfEightHostBlocksOfAnEighthOnlyTheLastRunsTheGraphAndTheOutputIsContinuous) {
    parameterSet.setReverbOn(false, false);
    const auto engine = makeEngine(512, 1);
    engine->addSpeaker({orvane::SpatialPosition(0, 0, 1.5f)}, 0);
    std::vector<float> heard;
    for (int call = 0; call < 24; ++call) {
        const std::vector<float> part = feed(*engine, 1, 64, static_cast<float>(64 * call + 1));
        heard.insert(heard.end(), part.begin(), part.end());
        ASSERT_EQ(runs(), (call + 1) / 8) << call;
    }
    std::vector<float> expected(24 * 64, 0.0f);
    std::iota(expected.begin() + 512, expected.end(), 1.0f);
    EXPECT_EQ(heard, expected);
}

TEST_F(EngineTest, HostCallsThatRenderNothingLetTheReverbWorkAheadAndTellHowMuchOfTheBlockIsThere) {
    const auto engine = makeEngine(64, 1);
    for (const std::uint64_t frames : {16u, 16u, 31u, 32u, 40u})
        feed(*engine, 1, frames, 1.0f);
    EXPECT_EQ(runs(), 2);
    EXPECT_THAT(seen.workedAhead, ElementsAre(16u, 32u, 63u)); // the fourth call and the fifth render
}

TEST_F(EngineTest, WithoutReverbThereIsNoWorkAhead) {
    parameterSet.setReverbOn(false, false);
    const auto engine = makeEngine(64, 1);
    feed(*engine, 1, 16, 1.0f);
    EXPECT_THAT(seen.workedAhead, IsEmpty());
}

TEST_F(EngineTest, AnOversizedHostBlockRunsTheGraphOnceAndKeepsTheTailThatTheFifoCannotFill) {
    parameterSet.setReverbOn(false, false);
    const auto engine = makeEngine(4, 1);
    engine->addSpeaker({orvane::SpatialPosition(0, 0, 1.5f)}, 0);
    EXPECT_THAT(feed(*engine, 1, 8, 1.0f), ElementsAre(0, 0, 0, 0, 1, 2, 3, 4));
    EXPECT_EQ(runs(), 1);
    // The ring of eight keeps the newest: 9 to 16, of which one internal block is rendered.
    EXPECT_THAT(feed(*engine, 1, 8, 9.0f, -7.0f), ElementsAre(9, 10, 11, 12, -7, -7, -7, -7));
    EXPECT_EQ(runs(), 2);
}

TEST_F(EngineTest, TooFewChannelsGiveSilenceAndLeaveTheFifosAsTheyWere) {
    parameterSet.setReverbOn(false, false);
    const auto engine = makeEngine(4, 2);
    engine->addSpeaker({orvane::SpatialPosition(0, 0, 1.5f)}, 0);
    EXPECT_THAT(feed(*engine, 1, 4, 1.0f, 9.0f), Each(0.0f));
    EXPECT_THAT(seen.calls, IsEmpty());
    EXPECT_THAT(feed(*engine, 2, 4, 1.0f), Each(0.0f)); // the pre-fill of one block is still there
    EXPECT_THAT(feed(*engine, 2, 4, 5.0f), ElementsAre(1.0f, 2.0f, 3.0f, 4.0f));
}

TEST_F(EngineTest, ChannelsBeyondTheLayoutAreNotHeard) {
    parameterSet.setReverbOn(false, false);
    const auto engine = makeEngine(4, 1);
    engine->addSpeaker({orvane::SpatialPosition(0, 0, 1.5f)}, 0);
    feed(*engine, 3, 4, 1.0f);
    EXPECT_THAT(feed(*engine, 3, 4, 5.0f), ElementsAre(1.0f, 2.0f, 3.0f, 4.0f));
}

} // namespace
