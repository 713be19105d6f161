// SPDX-License-Identifier: GPL-3.0-or-later
#include "assembly/Product.h"
#include "parameters/core/Scene.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using test::Channels;
using test::Product;
using ::testing::Each;

constexpr double sampleRate = 48000.0;

Channels noise(std::size_t channelCount, std::size_t frames, std::uint32_t seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> uniform(-0.5f, 0.5f);
    Channels result(channelCount, std::vector<float>(frames));
    for (std::vector<float>& channel : result)
        std::generate(channel.begin(), channel.end(), [&] { return uniform(generator); });
    return result;
}

double energy(const std::vector<float>& samples, std::size_t from = 0) {
    return std::inner_product(samples.begin() + static_cast<std::ptrdiff_t>(from), samples.end(),
                              samples.begin() + static_cast<std::ptrdiff_t>(from), 0.0);
}

std::vector<std::string> layoutNames(const Product& product) {
    std::vector<std::string> names;
    product.layouts->forEach([&](const auto& layout) { names.push_back(layout.name); });
    return names;
}

TEST(BlockPath, BeforePrepareThereIsSilence) {
    Product product;
    const Channels output = product.render(noise(2, 1024, 1), 256);
    EXPECT_THAT(output[0], Each(0.0f));
    EXPECT_THAT(output[1], Each(0.0f));
}

TEST(BlockPath, TheFirstInternalBlockIsTheLatency) {
    Product product;
    product.prepare(256, sampleRate);
    const Channels output = product.render(noise(2, 1024, 1), 256);
    for (std::size_t frame = 0; frame < 256; ++frame)
        ASSERT_EQ(output[0][frame], 0.0f);
    EXPECT_GT(energy(output[0]), 0.0);
}

TEST(BlockPath, ANewEngineFadesInOverTenMilliseconds) {
    Product product;
    product.prepare(64, sampleRate);
    const Channels output = product.render(Channels(2, std::vector<float>(4800, 1.0f)), 64);
    // A constant input: the output's envelope rises for 480 samples behind the latency, then stays.
    const float settled = output[0][4799];
    EXPECT_LT(std::abs(output[0][64 + 48]), 0.25f * std::abs(settled));
    EXPECT_GT(std::abs(output[0][64 + 480 + 200]), 0.9f * std::abs(settled));
}

/// Left is left: the first channel of the default layout is louder and earlier at the left ear.
TEST(BlockPath, TheFirstChannelOfStereoIsLouderAndEarlierAtTheLeftEar) {
    Product product;
    product.chooseScene("Analytic Dry");
    product.focus->setValue(100.0f); // clarity 0: the response keeps its shape
    product.prepare(256, sampleRate);
    Channels input(2, std::vector<float>(4096));
    input[0][2048] = 1.0f;
    const Channels output = product.render(input, 256);
    EXPECT_GT(energy(output[0]), 1.5 * energy(output[1]));
    const auto arrival = [](const std::vector<float>& samples) {
        const auto peak = std::max_element(samples.begin(), samples.end(),
                                           [](float a, float b) { return std::abs(a) < std::abs(b); });
        return peak - samples.begin();
    };
    EXPECT_LT(arrival(output[0]), arrival(output[1]));
}

class EveryLayout : public ::testing::TestWithParam<int> {};

/// Reference: the spherical head itself. Each channel alone has the level and arrival differences of its
/// place.
TEST_P(EveryLayout, PlacesEachChannelAtItsAngle) {
    Product product;
    const std::string name = layoutNames(product)[static_cast<std::size_t>(GetParam())];
    SCOPED_TRACE(name);
    product.chooseLayout(name);
    product.chooseScene("Analytic Dry");
    product.focus->setValue(100.0f);
    product.prepare(256, 44100.0);
    const auto& layout = product.layouts->get(product.speakerSetup->getValue());
    product.render(Channels(layout.channelCount, std::vector<float>(2048)), 256); // past the fade-in
    for (std::size_t channel = 0; channel < layout.channelCount; ++channel) {
        SCOPED_TRACE(channel);
        const orvane::Speaker& speaker = layout.speakers[channel];
        Channels input(layout.channelCount, std::vector<float>(2048));
        input[channel][512] = 1.0f;
        const Channels output = product.render(input, 256);
        if (speaker.type == orvane::Speaker::Type::lowFrequency) {
            for (std::size_t frame = 0; frame < output[0].size(); ++frame)
                ASSERT_NEAR(output[0][frame], output[1][frame], 1e-9f); // straight ahead of a symmetric head
            EXPECT_GT(energy(output[0]), 0.0);
            continue;
        }
        // The grid cell that the direction truncates to, in degrees to the right.
        const int azimuth = -(static_cast<int>(180 - speaker.position.azimuth) / 5 * 5 - 180);
        const int elevation = static_cast<int>(speaker.position.elevation + 90) / 5 * 5 - 90;
        const auto left = test::SphericalHead::ear(-1, azimuth, elevation);
        const auto right = test::SphericalHead::ear(1, azimuth, elevation);
        const double levelDifference = 10.0 * std::log10(energy(output[0]) / energy(output[1]));
        EXPECT_NEAR(levelDifference, 20.0 * std::log10(left.gain / right.gain), 0.1); // the bass shelf's tail
        const auto arrival = [](const std::vector<float>& samples) {
            return std::max_element(samples.begin(), samples.end(),
                                    [](float a, float b) { return std::abs(a) < std::abs(b); }) -
                   samples.begin();
        };
        EXPECT_EQ(arrival(output[0]), 512 + 256 + static_cast<std::ptrdiff_t>(left.delay));
        EXPECT_EQ(arrival(output[1]), 512 + 256 + static_cast<std::ptrdiff_t>(right.delay));
    }
}

TEST_P(EveryLayout, GivesTheSameStreamForVaryingAndForFixedHostBlocks) {
    Product fixed;
    const std::string name = layoutNames(fixed)[static_cast<std::size_t>(GetParam())];
    fixed.chooseLayout(name);
    fixed.prepare(128, sampleRate);
    Product varying;
    varying.chooseLayout(name);
    varying.prepare(128, sampleRate);
    const std::uint64_t channels = fixed.layouts->get(fixed.speakerSetup->getValue()).channelCount;
    const Channels input = noise(channels, 2048, 7);
    const Channels expected = fixed.render(input, 128);

    std::mt19937 generator(11);
    Channels output(2);
    for (std::size_t start = 0; start < 2048;) {
        const std::size_t count = std::min<std::size_t>(1 + generator() % 128, 2048 - start);
        Channels part;
        for (const std::vector<float>& channel : input)
            part.emplace_back(channel.begin() + static_cast<std::ptrdiff_t>(start),
                              channel.begin() + static_cast<std::ptrdiff_t>(start + count));
        const Channels rendered = varying.render(part, count);
        for (std::size_t ear = 0; ear < 2; ++ear)
            output[ear].insert(output[ear].end(), rendered[ear].begin(), rendered[ear].end());
        start += count;
    }
    EXPECT_EQ(output, expected);
}
INSTANTIATE_TEST_SUITE_P(OfTheTable, EveryLayout, ::testing::Range(0, 32));

TEST(BlockPath, FewerChannelsThanTheLayoutNeedsGiveSilenceOverManyBlocksAndNeverFeedback) {
    Product product;
    product.chooseLayout("5.1 ITU");
    product.prepare(64, sampleRate);
    const Channels output = product.render(noise(2, 6400, 3), 64);
    EXPECT_THAT(output[0], Each(0.0f));
    EXPECT_THAT(output[1], Each(0.0f));
}

TEST(BlockPath, ASingleChannelLayoutRendersTheFirstChannelOfAStereoInputOnly) {
    Product product;
    product.chooseLayout("1.0");
    product.prepare(64, sampleRate);
    Channels input = noise(2, 2048, 3);
    const Channels both = product.render(input, 64);
    Product again;
    again.chooseLayout("1.0");
    again.prepare(64, sampleRate);
    std::fill(input[1].begin(), input[1].end(), 0.0f);
    EXPECT_EQ(again.render(input, 64), both);
    EXPECT_GT(energy(both[0]), 0.0);
}

TEST(BlockPath, ChannelsBeyondStereoAreSilencedInTheOutput) {
    Product product;
    product.chooseLayout("Quad");
    product.prepare(32, sampleRate);
    Channels bus = noise(4, 32, 5);
    std::vector<float*> pointers = test::channelPointers(bus);
    orvane::SampleBuffer view(pointers.data(), 4, 32);
    product.manager->process(view, view);
    EXPECT_THAT(bus[2], Each(0.0f));
    EXPECT_THAT(bus[3], Each(0.0f));
}

TEST(BlockPath, TheLowFrequencyChannelIsLowPassedAndTenDecibelsUp) {
    // Property: at 20 Hz the low-frequency channel is 10 dB above the centre channel, at 2 kHz far below it.
    const auto level = [](std::size_t channel, double frequency) {
        Product product;
        product.chooseLayout("5.1 ITU");
        product.chooseScene("Analytic Dry");
        product.focus->setValue(100.0f);
        product.prepare(512, 48000.0);
        Channels input(6, std::vector<float>(48000));
        for (std::size_t frame = 0; frame < 48000; ++frame)
            input[channel][frame] = static_cast<float>(
                std::sin(2.0 * 3.14159265358979 * frequency * static_cast<double>(frame) / 48000.0));
        const Channels output = product.render(input, 512);
        return 10.0 * std::log10(energy(output[0], 24000));
    };
    EXPECT_NEAR(level(3, 20.0) - level(2, 20.0), 10.0,
                0.3); // Q 1 rises by 0.25 dB at a quarter of its corner
    EXPECT_LT(level(3, 2000.0) - level(2, 2000.0), -40.0);
}

TEST(BlockPath, IsLinearInItsInput) {
    const Channels input = noise(6, 4096, 21);
    Channels doubled = input;
    for (std::vector<float>& channel : doubled)
        for (float& sample : channel)
            sample *= 2.0f; // a power of two: exact in floats
    const auto rendered = [](const Channels& source) {
        Product product;
        product.chooseLayout("5.1 ITU");
        product.prepare(128, sampleRate);
        return product.render(source, 128);
    };
    const Channels once = rendered(input);
    const Channels twice = rendered(doubled);
    for (std::size_t frame = 0; frame < once[0].size(); ++frame)
        ASSERT_NEAR(twice[0][frame], 2.0f * once[0][frame], 1e-5f);
}

TEST(BlockPath, ZeroInGivesExactZeroOut) {
    Product product;
    product.chooseLayout("7.1.4");
    product.prepare(256, sampleRate);
    const Channels output = product.render(Channels(12, std::vector<float>(2048)), 256);
    EXPECT_THAT(output[0], Each(0.0f));
}

class HeadTurn : public ::testing::TestWithParam<float> {};

/// Reference: turning the head by the angle of a loudspeaker pair puts one of them straight ahead.
TEST_P(HeadTurn, BringsASourceAheadWhenTheRotationEqualsItsAzimuth) {
    Product product;
    product.chooseLayout("2.0 +/-45°");
    product.chooseScene("Analytic Dry");
    product.focus->setValue(100.0f);
    product.headRotation->setValue(GetParam());
    product.prepare(256, sampleRate);
    Channels input(2, std::vector<float>(4096));
    input[GetParam() > 0 ? 1 : 0][2048] = 1.0f;
    const Channels output = product.render(input, 256);
    // One grid cell of 5 degrees is what truncation may take.
    EXPECT_NEAR(10.0 * std::log10(energy(output[0]) / energy(output[1])), 0.0, 1.2);
}
INSTANTIATE_TEST_SUITE_P(ToEitherSide, HeadTurn, ::testing::Values(-45.0f, 45.0f));

TEST(BlockPath, NeitherAllocatesNorLocksInAnyLayoutOrScene) {
    Product product;
    std::vector<std::pair<std::string, std::string>> choices; // layout, Scene
    for (const std::string& name : layoutNames(product))
        choices.emplace_back(name, "Mix Room");
    for (const orvane::kestrum::core::Scene::Preset& scene : orvane::kestrum::core::Scene::presets())
        choices.emplace_back("5.1 ITU", scene.name);
    for (const auto& [name, scene] : choices) {
        SCOPED_TRACE(scene);
        product.chooseLayout(name);
        product.chooseScene(scene);
        product.prepare(128, sampleRate);
        std::vector<std::vector<float>> bus(16, std::vector<float>(128, 0.25f));
        std::vector<float*> pointers = test::channelPointers(bus);
        orvane::SampleBuffer view(pointers.data(), 16, 128);
        product.headRotation->setValue(33.0f);
        const test::RealtimeScope scope;
        for (int block = 0; block < 4; ++block)
            product.manager->process(view, view);
        ASSERT_EQ(scope.violations().total(), 0u) << name << ": " << scope.violations();
    }
}

TEST(BlockPath, NeitherAllocatesNorLocksThroughAWholeCrossfade) {
    Product product;
    product.prepare(64, sampleRate);
    std::vector<std::vector<float>> bus(16, std::vector<float>(64, 0.25f));
    std::vector<float*> pointers = test::channelPointers(bus);
    orvane::SampleBuffer view(pointers.data(), 16, 64);
    product.chooseScene("Kitchen");
    while (product.reloadsFinished == 0) {
        const test::RealtimeScope scope;
        product.manager->process(view, view);
        ASSERT_EQ(scope.violations().total(), 0u) << scope.violations();
    }
    for (int block = 0; block < 20; ++block) {
        const test::RealtimeScope scope;
        product.manager->process(view, view);
        ASSERT_EQ(scope.violations().total(), 0u) << scope.violations();
    }
}

} // namespace
