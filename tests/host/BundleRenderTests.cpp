// SPDX-License-Identifier: GPL-3.0-or-later
// Properties of what comes out of the built bundle; the data folder has to be installed.
#include "BundleSupport.h"

#include "render/Names.h"
#include "render/Renderer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;

constexpr std::uint32_t block = 128;
constexpr double rate = 48000;

class EveryLayout : public ::testing::TestWithParam<std::size_t> {};

/// Each channel of the layout by itself is heard, and what lies beyond the layout's channels is not.
TEST_P(EveryLayout, RendersEachOfItsChannels) {
    const auto& layout = orvane::kestrum::render::layoutChoices().all()[GetParam()];
    constexpr unsigned inputs = 16;
    const auto plugin = makeInstance(inputs, layout.name);
    for (unsigned channel = 0; channel < inputs; ++channel) {
        plugin->prepare(rate, block, ProcessMode::realtime);
        Channels input = silence(inputs, 40 * block);
        input[channel] = noise(1, 40 * block)[0];
        const Channels output = play(*plugin, input, block);
        const bool inside = channel < layout.channelCount;
        EXPECT_EQ(peakOf(output) > 0.001f, inside) << "channel " << channel;
        if (inside) {
            EXPECT_GT(energyOf(output[0]), 0.0) << "channel " << channel;
            EXPECT_GT(energyOf(output[1]), 0.0) << "channel " << channel;
        }
    }
}
INSTANTIATE_TEST_SUITE_P(InTableOrder, EveryLayout, ::testing::Range<std::size_t>(0, 32),
                         [](const auto& layout) { return "Layout" + std::to_string(layout.param); });

TEST(BundleRender, LeftIsLeftAndRightIsRight) {
    const auto plugin = makeInstance(2, "2.0 +/-30°");
    for (const std::size_t channel : {std::size_t{0}, std::size_t{1}}) {
        plugin->prepare(rate, block, ProcessMode::realtime);
        Channels input = silence(2, 100 * block);
        input[channel] = noise(1, 100 * block)[0];
        const Channels output = play(*plugin, input, block);
        // the near ear is louder; at 35 degrees a head makes several decibels of it
        EXPECT_GT(10 * std::log10(energyOf(output[channel]) / energyOf(output[1 - channel])), 3.0);
        // and it is reached first: the far ear's lag with the best correlation is positive
        double best = 0;
        std::size_t bestPlace = 0; // 40 is no lag
        for (std::size_t place = 0; place <= 80; ++place) {
            double sum = 0;
            for (std::size_t frame = 4000; frame < 12000; ++frame)
                sum += static_cast<double>(output[channel][frame]) * output[1 - channel][frame + place - 40];
            if (sum > best) {
                best = sum;
                bestPlace = place;
            }
        }
        // at 35 degrees about 0.3 ms, 14 samples
        EXPECT_GT(bestPlace, 40u + 5) << "channel " << channel;
        EXPECT_LT(bestPlace, 40u + 30) << "channel " << channel;
    }
}

struct Sound {
    unsigned channels;
    const char* layout;
    std::uint32_t block;
};
class Sounds : public ::testing::TestWithParam<Sound> {};

/// The same stream, bit for bit, however the host cuts it.
TEST_P(Sounds, ComeOutTheSameInVaryingAndInEqualBlocks) {
    const auto [channels, layout, size] = GetParam();
    const Channels input = noise(channels, 30000);
    const auto plugin = makeInstance(channels, layout, "Mix Room");
    plugin->prepare(rate, size, ProcessMode::realtime);
    const Channels whole = play(*plugin, input, size);
    EXPECT_GT(peakOf(whole), 0.01f);
    for (const std::uint32_t host : {std::uint32_t{1}, size / 2, size - 1}) {
        plugin->prepare(rate, size, ProcessMode::realtime);
        EXPECT_EQ(play(*plugin, input, host), whole) << "host blocks of " << host;
    }
}

/// The same call twice gives the same bits.
TEST_P(Sounds, RepeatBitForBit) {
    const auto [channels, layout, size] = GetParam();
    const Channels input = noise(channels, 30000);
    Channels first;
    for (int round = 0; round < 2; ++round) {
        const auto plugin = makeInstance(channels, layout, "Mix Room");
        plugin->prepare(rate, size, ProcessMode::offline);
        const Channels output = play(*plugin, input, size);
        if (round == 0)
            first = output;
        EXPECT_EQ(output, first);
    }
}
INSTANTIATE_TEST_SUITE_P(OfManyKinds, Sounds,
                         ::testing::Values(Sound{2, "2.0 +/-30°", 64}, Sound{6, "5.1 ITU", 512},
                                           Sound{1, "1.0", 513}, Sound{12, "7.1.4", 63}));

class DelayOfBlocks : public ::testing::TestWithParam<std::uint32_t> {};

/// The delay is the prepared block, whatever power of two is reported: another block moves the stream and
/// changes it only by rounding. The start is left out, where a new engine fades its input in block by block.
TEST_P(DelayOfBlocks, IsTheBlockItself) {
    const Channels input = noise(2, 24000);
    const auto plugin = makeInstance(2, "2.0 +/-30°");
    plugin->prepare(rate, 512, ProcessMode::realtime);
    const Channels reference = play(*plugin, input, 512);
    plugin->prepare(rate, GetParam(), ProcessMode::realtime);
    const Channels moved = play(*plugin, input, GetParam());
    double difference = 0;
    double energy = 0;
    for (std::size_t frame = 8000; frame < 16000; ++frame) {
        const double expected = reference[0][frame + 512];
        const double found = moved[0][frame + GetParam()];
        difference += (found - expected) * (found - expected);
        energy += expected * expected;
    }
    EXPECT_LT(10 * std::log10(difference / energy), -80.0); // other transform lengths round elsewhere
}
INSTANTIATE_TEST_SUITE_P(PowersAndOthers, DelayOfBlocks, ::testing::Values(2, 60, 64, 480, 513, 4096));

TEST(BundleRender, TheTailEndsWithinTheRenderersBound) {
    class Impulse final : public orvane::kestrum::render::IAudioSource {
    public:
        unsigned channelCount() const override { return 2; }
        std::uint64_t frameCount() const override { return 100; }
        void read(std::span<float* const> channels, std::uint64_t frames) override {
            for (float* const channel : channels)
                std::fill(channel, channel + frames, 0.0f);
            if (!given)
                channels[0][0] = 1;
            given = true;
        }
        bool given = false;
    } source;
    class Keeper final : public orvane::kestrum::render::IAudioSink {
    public:
        void write(std::span<const float> interleaved) override {
            samples.insert(samples.end(), interleaved.begin(), interleaved.end());
        }
        std::vector<float> samples;
    } sink;
    const auto plugin = makeInstance(2, "2.0 +/-30°");
    orvane::kestrum::render::RenderPlan plan;
    plan.sampleRate = rate;
    plan.block = 512;
    plugin->prepare(rate, 512, ProcessMode::offline);
    const auto facts = renderStream(*plugin, source, sink, plan);
    EXPECT_GE(facts.writtenFrames, 100u);
    EXPECT_LT(facts.writtenFrames, 48000u); // a dry room: no more than the head's own response and the fade
    EXPECT_EQ(sink.samples.size(), 2 * facts.writtenFrames);
}

} // namespace
