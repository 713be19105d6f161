// SPDX-License-Identifier: GPL-3.0-or-later
// Property: a change during playback moves the output no faster than the sounds before and after it move by
// themselves.
#include "BundleSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;

constexpr double rate = 48000;
constexpr std::uint32_t block = 256;
constexpr unsigned channels = 16;
constexpr std::size_t blocksAtMost =
    200000; // many seconds of work: a rebuild that has not come by then never will

/// A 750 Hz sine in all channels. A block holds four whole periods, so that steady output repeats block by
/// block.
class Sine {
public:
    Channels next() {
        Channels input(channels, std::vector<float>(block));
        for (std::size_t frame = 0; frame < block; ++frame, ++position) {
            const auto sample = static_cast<float>(
                0.1 * std::sin(2 * 3.14159265358979 * static_cast<double>(position % 64) / 64));
            for (auto& channel : input)
                channel[frame] = sample;
        }
        return input;
    }

private:
    std::size_t position = 0;
};

class Steps {
public:
    void add(const Channels& output) {
        for (std::size_t channel = 0; channel < 2; ++channel)
            for (const float sample : output[channel]) {
                if (started)
                    largest = std::max(largest, std::abs(sample - last[channel]));
                last[channel] = sample;
                started = started || channel == 1;
            }
    }
    float largest = 0;

private:
    bool started = false;
    float last[2]{};
};

/// The steady output's largest step, and one block of it.
struct Steady {
    float step;
    Channels lastBlock;
};

Steady steadyStep(const std::string& layout, const std::string& scene) {
    const auto plugin = makeInstance(channels, layout, scene);
    plugin->prepare(rate, block, ProcessMode::realtime);
    Sine sine;
    for (int round = 0; round < 100; ++round)
        play(*plugin, sine.next(), block);
    Steps steps;
    Channels output;
    for (int round = 0; round < 25; ++round) {
        output = play(*plugin, sine.next(), block);
        steps.add(output);
    }
    return {steps.largest, output};
}

/// The largest distance between two blocks.
float distance(const Channels& left, const Channels& right) {
    float largest = 0;
    for (std::size_t channel = 0; channel < left.size(); ++channel)
        for (std::size_t frame = 0; frame < left[channel].size(); ++frame)
            largest = std::max(largest, std::abs(left[channel][frame] - right[channel][frame]));
    return largest;
}

/// Mean power of both ears together; of a sine of whole periods in a block it is steady.
float powerOf(const Channels& played) {
    float sum = 0;
    for (const auto& channel : played)
        for (const float sample : channel)
            sum += sample * sample;
    return sum / static_cast<float>(played[0].size());
}

struct Change {
    const char* fromLayout;
    const char* fromScene;
    const char* toLayout;
    const char* toScene;
};
class Changes : public ::testing::TestWithParam<Change> {};

TEST_P(Changes, ArriveWithoutAClickAndWithoutAHole) {
    const auto [fromLayout, fromScene, toLayout, toScene] = GetParam();
    const Steady before = steadyStep(fromLayout, fromScene);
    const Steady after = steadyStep(toLayout, toScene);
    const float close = 0.001f * peakOf(after.lastBlock);
    EXPECT_GT(distance(before.lastBlock, after.lastBlock), 10 * close) << "the change could not be noticed";

    const auto plugin = makeInstance(channels, fromLayout, fromScene);
    plugin->prepare(rate, block, ProcessMode::realtime);
    Sine sine;
    for (int round = 0; round < 100; ++round)
        play(*plugin, sine.next(), block);
    set(*plugin, "layout", toLayout);
    set(*plugin, "scene", toScene);
    Steps steps;
    float loudest = 0;
    float quietest = std::numeric_limits<float>::max();
    std::size_t round = 0;
    bool arrived = false;
    for (; round < blocksAtMost && !arrived; ++round) {
        const Channels output = play(*plugin, sine.next(), block);
        steps.add(output);
        loudest = std::max(loudest, powerOf(output));
        quietest = std::min(quietest, powerOf(output));
        arrived = distance(output, after.lastBlock) < close;
    }
    EXPECT_TRUE(arrived);
    // an equal-gain fade of 10 ms adds less than a twentieth to the sine's own step
    EXPECT_LT(steps.largest, 1.1f * std::max(before.step, after.step));
    const float powerBefore = powerOf(before.lastBlock);
    const float powerAfter = powerOf(after.lastBlock);
    EXPECT_LT(loudest, std::pow(10.0f, 0.1f) * std::max(powerBefore, powerAfter));   // 1 dB
    EXPECT_GT(quietest, std::pow(10.0f, -0.6f) * std::min(powerBefore, powerAfter)); // 6 dB
}
// None ends in a large room: begun in a room, a tone passes levels far from the one that it settles at.
INSTANTIATE_TEST_SUITE_P(OfLayoutAndScene, Changes,
                         ::testing::Values(Change{"2.0 +/-30°", "Analytic Dry", "5.1 ITU", "Analytic Dry"},
                                           Change{"9.1.6", "Analytic Dry", "1.0", "Analytic Dry"},
                                           Change{"1.0", "Analytic Dry", "9.1.6", "Analytic Dry"},
                                           Change{"5.1 ITU", "Analytic Dry", "5.1 Film", "Mix Room"},
                                           Change{"7.1.4", "Mix Room", "Quad", "Analytic Dry"},
                                           Change{"2.0 +/-30°", "Stadium", "2.0 +/-30°", "Analytic Dry"},
                                           Change{"2.0 +/-30°", "Live Venue", "2.0 +/-30°",
                                                  "Analytic Position"},
                                           Change{"5.1 ITU", "Mix Room", "5.1 ITU", "Mix Room Small"}));

TEST(BundleSwitch, AStormOfChangesKeepsPlaying) {
    const auto plugin = makeInstance(channels, "2.0 +/-30°");
    plugin->prepare(rate, block, ProcessMode::realtime);
    const auto layoutId = findParameter(*plugin, "Speaker Layouts")->id;
    const auto sceneId = findParameter(*plugin, "Scenes")->id;
    const auto gainId = findParameter(*plugin, "Master Gain")->id;
    Sine sine;
    for (int round = 0; round < 500; ++round) {
        plugin->setParameter(layoutId, (round * 7 % 32) / 31.0);
        plugin->setParameter(sceneId, (round * 5 % 16) / 15.0);
        plugin->setParameter(gainId, 0.7 + 0.0004 * round);
        EXPECT_TRUE(std::isfinite(peakOf(play(*plugin, sine.next(), block)))) << "round " << round;
    }
}

TEST(BundleSwitch, ChangesWithoutAnyBlockAreBorne) {
    const auto plugin = makeInstance(channels, "2.0 +/-30°");
    plugin->prepare(rate, block, ProcessMode::realtime);
    const auto sceneId = findParameter(*plugin, "Scenes")->id;
    for (int round = 0; round < 500; ++round) {
        plugin->setParameter(sceneId, (round % 16) / 15.0);
        plugin->flushParameters();
    }
    Sine sine;
    float peak = 0;
    for (std::size_t round = 0; round < blocksAtMost && peak < 0.001f; ++round)
        peak = peakOf(play(*plugin, sine.next(), block));
    EXPECT_TRUE(std::isfinite(peak));
    EXPECT_GT(peak, 0.001f);
}

} // namespace
