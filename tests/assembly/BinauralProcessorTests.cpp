// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"
#include "binaural/BinauralComponentFactory.h"
#include "binaural/BinauralProcessor.h"
#include "binaural/BinauralProcessorBuilder.h"
#include "binaural/ConvolutionFactory.h"
#include "binaural/SpeakerBinauralProcessorBuilder.h"
#include "engine/assembly/ComponentFactory.h"
#include "parameters/ParameterSet.h"
#include "parameters/core/ParameterSet.h"
#include "room/DirectFilterRenderer.h"
#include "room/SpeakerDirectFilterRenderer.h"
#include "room/SpeakerReflectionRenderer.h"
#include "support/RealtimeScope.h"
#include "support/SphericalHead.h"
#include "support/StandInHrir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

namespace {

using namespace orvane;

struct ResponseLengthCase {
    std::uint32_t roomId;
    bool dynamic;
    float sampleRate;
    std::uint64_t blockSize;
    std::uint64_t expected;
};

class ResponseLength : public ::testing::TestWithParam<ResponseLengthCase> {};

// Expected: base length times rate / 44100, truncated, at least one block; worked out by hand.
TEST_P(ResponseLength, FollowsTheRoomTheRateAndTheBlock) {
    const ResponseLengthCase& given = GetParam();
    EXPECT_EQ(binauralResponseLength(given.roomId, given.dynamic, given.sampleRate, given.blockSize),
              given.expected);
}
INSTANTIATE_TEST_SUITE_P(Rooms, ResponseLength,
                         ::testing::Values(ResponseLengthCase{1, false, 96000.0f, 512, 4458},
                                           ResponseLengthCase{0, false, 44100.0f, 512, 512},
                                           ResponseLengthCase{48, false, 44100.0f, 64, 64},
                                           ResponseLengthCase{24, false, 44100.0f, 64, 1024},
                                           ResponseLengthCase{15, false, 44100.0f, 64, 2048},
                                           ResponseLengthCase{36, false, 44100.0f, 64, 4096},
                                           ResponseLengthCase{32, false, 44100.0f, 64, 8192},
                                           ResponseLengthCase{2, false, 44100.0f, 64, 8192},
                                           ResponseLengthCase{15, true, 44100.0f, 64, 8192},
                                           ResponseLengthCase{15, false, 24000.0f, 64, 1114},
                                           ResponseLengthCase{24, false, 44100.0f, 2048, 2048}));

/// A loudspeaker without a room, with the parameters open to the test.
struct Loudspeaker {
    explicit Loudspeaker(std::uint64_t blockSize, std::uint32_t room = 24, bool watchSource = false,
                         float rate = 44100.0f)
        : block(blockSize) {
        general.setRoomType(static_cast<VirtualAcoustics::Type>(room), false);
        general.setReflectionsOn(false, false);
        general.setWatchSource(watchSource, false);
        BinauralProcessorBuilder builder(rate, blockSize, &general, general.createReloadParameterSet(),
                                         std::make_unique<BinauralComponentFactory>(),
                                         std::make_unique<ConvolutionFactory>(), &head);
        length = builder.responseLength();
        processor = std::make_unique<BinauralProcessor>(blockSize, watchSource, &general, builder);
    }

    /// Feeds `input` block by block.
    std::pair<std::vector<float>, std::vector<float>> render(const std::vector<float>& input) const {
        SampleBuffer source(1, block);
        SampleBuffer output(2, block);
        std::pair<std::vector<float>, std::vector<float>> result;
        for (std::size_t start = 0; start + block <= input.size(); start += block) {
            std::copy_n(input.data() + start, block, source.channelPointers[0]);
            processor->process(source, output);
            result.first.insert(result.first.end(), output.channelPointers[0],
                                output.channelPointers[0] + block);
            result.second.insert(result.second.end(), output.channelPointers[1],
                                 output.channelPointers[1] + block);
        }
        return result;
    }

    ParameterSet general;
    test::SphericalHead head;
    std::uint64_t block;
    std::uint64_t length = 0;
    std::unique_ptr<BinauralProcessor> processor;
};

TEST(BinauralProcessor, RendersAnImpulseAsTheResponseOfItsDirection) {
    Loudspeaker speaker(64);
    speaker.general.setAzimuth(-90.0f, false);
    std::vector<float> input(512);
    speaker.render(std::vector<float>(128)); // the first block fades in from nothing
    input[10] = 1.0f;
    const auto [left, right] = speaker.render(input);
    const auto leftEar = test::SphericalHead::ear(-1, -90, 0);
    const auto rightEar = test::SphericalHead::ear(1, -90, 0);
    const float level = speaker.general.getDistanceLevel() * speaker.general.getFarFade();
    EXPECT_NEAR(left[10 + leftEar.delay], leftEar.gain * level, 1e-5f);
    EXPECT_NEAR(right[10 + rightEar.delay], rightEar.gain * level, 1e-5f);
}

TEST(BinauralProcessor, TheFirstBlockFadesInFromAnEmptyResponse) {
    // With blocks of 32 the fade takes the whole block, sample 0 being wholly old.
    Loudspeaker speaker(32);
    std::vector<float> ones(32 * 8, 1.0f);
    const auto [left, right] = speaker.render(ones);
    EXPECT_EQ(left[0], 0.0f);
    const auto ear = test::SphericalHead::ear(-1, 0, 0);
    const float level = speaker.general.getDistanceLevel();
    EXPECT_NEAR(left[31], ear.gain * level, 1e-5f); // last sample of the block: wholly new
    EXPECT_NEAR(left[25], ear.gain * level * 25.0f / 31.0f, 1e-5f);
}

TEST(BinauralProcessor, ACrossfadeOfALargeBlockTakesItsFirst64Samples) {
    Loudspeaker speaker(512);
    const std::vector<float> ones(512, 1.0f);
    speaker.render(ones);
    speaker.render(ones);
    const float settled = speaker.render(ones).first[511];
    speaker.general.setDirectGainDb(-20.0f, false);
    const auto left = speaker.render(ones).first;
    EXPECT_NEAR(left[0], settled, 1e-6f);
    EXPECT_NEAR(left[32], settled * (1.0f - 0.9f * 32.0f / 63.0f), 1e-5f);
    for (std::size_t frame = 64; frame < 512; ++frame)
        ASSERT_NEAR(left[frame], settled * 0.1f, 1e-6f) << frame;
}

TEST(BinauralProcessor, AHardSwitchTakesTheNewResponseAtOnce) {
    Loudspeaker speaker(64, 24, true);
    const std::vector<float> ones(64, 1.0f);
    for (int block = 0; block < 4; ++block)
        speaker.render(ones);
    const float settled = speaker.render(ones).first[63];
    speaker.general.setDirectGainDb(-20.0f, false);
    EXPECT_NEAR(speaker.render(ones).first[0], settled * 0.1f, 1e-6f);
}

TEST(BinauralProcessor, TheLast15SamplesOfAResponseAreRampedDown) {
    // A head whose response is 1 everywhere fills a response of exactly its length.
    struct Ones final : test::StandInHrir {
        std::uint64_t length() const noexcept override { return 1024; }
        std::uint64_t getResponse(SampleBuffer& out, std::int32_t, std::int32_t,
                                  bool) const noexcept override {
            for (std::uint64_t channel = 0; channel < 2; ++channel)
                std::fill_n(out.channelPointers[channel], out.numSamples, 1.0f);
            return generation();
        }
    } ones;
    ParameterSet general;
    general.setRoomType(static_cast<VirtualAcoustics::Type>(24), false);
    general.setReflectionsOn(false, false);
    const BinauralProcessorBuilder builder(44100.0f, 64, &general, general.createReloadParameterSet(),
                                           std::make_unique<BinauralComponentFactory>(),
                                           std::make_unique<ConvolutionFactory>(), &ones);
    BinauralProcessor processor(64, false, &general, builder);
    SampleBuffer input(1, 64);
    SampleBuffer output(2, 64);
    processor.process(input, output);
    input.channelPointers[0][0] = 1.0f;
    std::vector<float> response;
    for (int block = 0; block < 17; ++block) {
        processor.process(input, output);
        response.insert(response.end(), output.channelPointers[0], output.channelPointers[0] + 64);
        input.clear();
    }
    const float level = response[500];
    EXPECT_GT(level, 0.1f);
    for (int i = 1; i <= 15; ++i)
        EXPECT_NEAR(response[static_cast<std::size_t>(1024 - 15 + i - 1)],
                    level / (4.0f * static_cast<float>(i)), 1e-5f)
            << i;
    EXPECT_NEAR(response[1024 - 16], level, 1e-5f);
    for (std::size_t frame = 1024; frame < response.size(); ++frame)
        EXPECT_NEAR(response[frame], 0.0f, 1e-5f) << frame;
}

TEST(BinauralProcessor, AResponseShorterThanItsRampThrowsOutOfTheBlock) {
    Loudspeaker speaker(8, 0);
    ASSERT_EQ(speaker.length, 8u);
    SampleBuffer input(1, 8);
    SampleBuffer output(2, 8);
    EXPECT_THROW(speaker.processor->process(input, output), std::out_of_range);
}

TEST(BinauralProcessor, AttenuationMakesTheOutputQuieter) {
    Loudspeaker speaker(64);
    const std::vector<float> ones(64, 1.0f);
    for (int block = 0; block < 4; ++block)
        speaker.render(ones);
    const float before = speaker.render(ones).first[63];
    speaker.general.setAttenuationValue(25.0f, false); // 25 * 0.24 = 6 dB
    EXPECT_NEAR(speaker.render(ones).first[63], before * std::pow(10.0f, -6.0f / 20.0f), 1e-6f);
}

TEST(BinauralProcessor, MultiplesOf48KilohertzAreALittleQuieter) {
    Loudspeaker at44(64, 24, false, 44100.0f);
    Loudspeaker at48(64, 24, false, 48000.0f);
    const std::vector<float> ones(64 * 4, 1.0f);
    EXPECT_NEAR(at48.render(ones).first.back() / at44.render(ones).first.back(), 44100.0f / 48000.0f, 1e-5f);
}

TEST(BinauralProcessor, NeitherAllocatesNorLocksWhileItDrawsAndConvolves) {
    Loudspeaker speaker(64);
    SampleBuffer input(1, 64);
    SampleBuffer output(2, 64);
    const test::RealtimeScope scope;
    for (int block = 0; block < 8; ++block) {
        speaker.general.setAzimuth(static_cast<float>(block * 15), false);
        speaker.processor->process(input, output);
    }
    EXPECT_EQ(scope.violations().total(), 0u) << scope.violations();
}

// The two direct renderers.

TEST(DirectFilterRenderer, AsksForTheTruncatedDirectionMirroredToTheStoresSide) {
    struct Recorder final : test::StandInHrir {
        std::uint64_t length() const noexcept override { return 16; }
        std::uint64_t getResponse(SampleBuffer&, std::int32_t a, std::int32_t e,
                                  bool s) const noexcept override {
            azimuth = a;
            elevation = e;
            simple = s;
            return generation();
        }
        mutable std::int32_t azimuth = 0;
        mutable std::int32_t elevation = 0;
        mutable bool simple = false;
    } recorder;
    ParameterSet general;
    general.setAzimuth(30.7f, false);
    general.setElevation(-12.9f, false);
    const BinauralComponentFactory factory;
    DirectFilterRenderer renderer(44100.0f, &general, &recorder, true, factory);
    SampleBuffer response(2, 64);
    renderer.process(response);
    EXPECT_EQ(recorder.azimuth, -30);
    EXPECT_EQ(recorder.elevation, -12);
    EXPECT_TRUE(recorder.simple);
}

TEST(DirectFilterRenderer, ScalesByGainAndDistance) {
    ParameterSet general;
    general.setDirectGainDb(-6.0f, false);
    general.setDistance(10.0f, false);
    const test::SphericalHead head;
    const BinauralComponentFactory factory;
    test::SphericalHead store;
    DirectFilterRenderer renderer(44100.0f, &general, &store, false, factory);
    SampleBuffer response(2, 200);
    renderer.process(response);
    // Level law and far fade at 10 m: 1 / (10.7^0.75 + 0.3265), 1 - 3/26.
    const double expected =
        std::pow(10.0, -6.0 / 20.0) / (std::pow(10.7, 0.75) + 0.3265) * (1.0 - 3.0 / 26.0);
    EXPECT_NEAR(response.channelPointers[0][20], expected, 1e-6);
}

TEST(SpeakerDirectFilterRenderer, ShapesWithClarityBeforeItScales) {
    // At clarity 0 the stage multiplies by 0.875 and removes the Nyquist bin, whatever the level.
    kestrum::core::ParameterSet parameters(std::make_unique<ParameterSet>());
    parameters.setClarity(0.0f, false);
    test::SphericalHead store;
    const BinauralComponentFactory factory;
    kestrum::core::DirectFilterRenderer renderer(&parameters, &store, false, factory);
    SampleBuffer response(2, 512);
    renderer.process(response);
    const double level = 1.0 / (std::pow(3.7, 0.75) + 0.3265); // 3 m
    EXPECT_NEAR(response.channelPointers[0][20], 0.875 * level * (1.0 - 1.0 / 256.0), 1e-5);
    EXPECT_EQ(response.channelPointers[0][300], 0.0f);
}

TEST(SpeakerBinauralProcessorBuilder, MakesTheLoudspeakersOwnRenderers) {
    kestrum::core::ParameterSet parameters(std::make_unique<ParameterSet>());
    test::SphericalHead store;
    const kestrum::core::ComponentFactory productFactory;
    const kestrum::core::BinauralProcessorBuilder builder(
        44100.0f, 64, &parameters, parameters.createReloadParameterSet(),
        std::make_unique<BinauralComponentFactory>(), std::make_unique<ConvolutionFactory>(), &store,
        &productFactory);
    const auto stages = builder.createStages();
    ASSERT_EQ(stages.size(), 2u);
    EXPECT_NE(dynamic_cast<kestrum::core::DirectFilterRenderer*>(stages[0].get()), nullptr);
    EXPECT_NE(dynamic_cast<kestrum::core::ReflectionRenderer*>(stages[1].get()), nullptr);
}

} // namespace
