// SPDX-License-Identifier: GPL-3.0-or-later
#include "assembly/Product.h"
#include "assembly/ReferenceRenderer.h"
#include "base/ISpatialProcessor.h"
#include "base/SampleBuffer.h"
#include "binaural/BinauralComponentFactory.h"
#include "binaural/ConvolutionFactory.h"
#include "binaural/SpeakerBinauralProcessorBuilder.h"
#include "support/NoiseHead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

using orvane::SampleBuffer;
using test::reference::Place;
using test::reference::residueDb;

constexpr std::uint64_t blockSize = 128;

struct Rate {
    float hertz;
    std::uint64_t headLength;
};

/// What 32-bit rounding alone may leave, most of it that of high passes near 80 Hz, whose poles keep errors the longer
/// the higher the rate. It differs by chance from place to place: over all azimuths it lies between -110 and -80 dB.
double roundingLimitDb(const Rate& rate) { return rate.hertz > 48000.0f ? -74.0 : -80.0; }

std::vector<float> samplesOf(const SampleBuffer& buffer, std::uint64_t ear, std::uint64_t count) {
    return {buffer.channelPointers[ear], buffer.channelPointers[ear] + count};
}

/// A loudspeaker of a Scene as the product builds it.
struct Loudspeaker {
    Loudspeaker(const std::string& scene, const Place& at, const Rate& rate)
        : head(rate.headLength),
          product(&head),
          reference{head, test::reference::SceneValues(test::reference::sceneNamed(scene)),
                    static_cast<double>(rate.hertz), blockSize} {
        product.chooseScene(scene);
        product.updateMappers();
        view = product.factory.createSpeakerParameterSetView(
            orvane::SpatialPosition(static_cast<float>(at.elevation), static_cast<float>(at.azimuth),
                                    static_cast<float>(at.distance)),
            product.parameterSet.get());
    }

    test::NoiseHead head;
    test::Product product;
    test::reference::Renderer reference;
    std::unique_ptr<orvane::kestrum::core::ISpeakerParameterSetView> view;
};

class SceneResponse : public ::testing::TestWithParam<listed::Scene> {
protected:
    std::string scene{GetParam().name};
};

/// Slow reference: direct sound, clarity and six reflections by definition, in double precision, for every Scene
/// and several directions and rates. Drawn twice, since reflections live on from block to block.
TEST_P(SceneResponse, IsDrawnAsItsReferenceSays) {
    for (const Rate& rate : {Rate{44100, 128}, Rate{48000, 139}, Rate{96000, 278}}) {
        for (const Place& place : {Place{-30, 0, 1.5}, Place{110, 0, 1.5}, Place{-135, 45, 1.5}}) {
            SCOPED_TRACE(testing::Message()
                         << rate.hertz << " Hz, " << place.azimuth << "/" << place.elevation);
            Loudspeaker speaker(scene, place, rate);
            const orvane::kestrum::core::BinauralProcessorBuilder builder(
                rate.hertz, blockSize, speaker.view.get(),
                speaker.product.parameterSet->createReloadParameterSet(),
                std::make_unique<orvane::BinauralComponentFactory>(),
                std::make_unique<orvane::ConvolutionFactory>(), &speaker.head, &speaker.product.factory);
            ASSERT_EQ(builder.responseLength(), speaker.reference.responseLength());
            const auto stages = builder.createStages();
            SampleBuffer response(2, builder.responseLength() + blockSize);
            for (int block = 0; block < 2; ++block) {
                response.clear();
                for (const auto& stage : stages)
                    stage->process(response);
            }
            const test::reference::Ears expected = speaker.reference.response(place);
            for (std::uint64_t ear = 0; ear < 2; ++ear) {
                const double residue =
                    residueDb(samplesOf(response, ear, builder.responseLength()), expected[ear]);
                EXPECT_LT(residue, roundingLimitDb(rate)) << ear;
                for (std::uint64_t i = builder.responseLength(); i < response.numSamples; ++i)
                    ASSERT_EQ(response.channelPointers[ear][i], 0.0f);
            }
            if (::testing::Test::HasFailure())
                return;
        }
    }
}

/// The same through the whole loudspeaker, an impulse in: with the taper at the end and the convolver's gain, and
/// only whole partitions of it.
TEST_P(SceneResponse, IsWhatAnImpulseSoundsLikeTaperedAndInWholePartitions) {
    const Place place{30, 0, 1.5};
    for (const Rate& rate : {Rate{44100, 128}, Rate{48000, 139}}) {
        SCOPED_TRACE(rate.hertz);
        Loudspeaker speaker(scene, place, rate);
        const auto processor = speaker.product.factory.createBinauralProcessor(
            rate.hertz, blockSize, &speaker.head, speaker.view.get(),
            speaker.product.parameterSet->createReloadParameterSet());
        const test::reference::Ears expected = speaker.reference.loudspeaker(place);
        SampleBuffer input(1, blockSize);
        SampleBuffer output(2, blockSize);
        processor->process(input, output); // fades in from nothing
        input.channelPointers[0][0] = 1.0f;
        std::vector<std::vector<float>> heard(2);
        for (std::size_t start = 0; start < expected[0].size() + 2 * blockSize; start += blockSize) {
            processor->process(input, output);
            input.clear();
            for (std::uint64_t ear = 0; ear < 2; ++ear)
                heard[ear].insert(heard[ear].end(), output.channel(ear).begin(), output.channel(ear).end());
        }
        for (std::size_t ear = 0; ear < 2; ++ear) {
            EXPECT_LT(residueDb(heard[ear], expected[ear]), roundingLimitDb(rate)) << ear;
            for (std::size_t i = expected[ear].size(); i < heard[ear].size(); ++i)
                ASSERT_NEAR(heard[ear][i], 0.0f, 1e-7f) << i;
        }
    }
}
INSTANTIATE_TEST_SUITE_P(OfTheTable, SceneResponse, ::testing::ValuesIn(listed::scenes),
                         [](const auto& scene) {
                             std::string name(scene.param.name);
                             std::erase_if(name, [](char c) { return c == ' ' || c == '/'; });
                             return name;
                         });

} // namespace
