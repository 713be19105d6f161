// SPDX-License-Identifier: GPL-3.0-or-later
#include "assembly/Product.h"
#include "engine/assembly/EngineBuilder.h"
#include "engine/assembly/EngineFactory.h"
#include "room/ReverbFilterFactory.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using test::Channels;
using test::Product;

constexpr double sampleRate = 48000.0;
constexpr std::uint64_t blockSize = 64;

std::vector<std::string> layoutNames(const Product& product) {
    std::vector<std::string> names;
    product.layouts->forEach([&](const auto& layout) { names.push_back(layout.name); });
    return names;
}

double largestStep(const std::vector<float>& samples) {
    double step = 0;
    for (std::size_t frame = 1; frame < samples.size(); ++frame)
        step = std::max(
            step, std::abs(static_cast<double>(samples[frame]) - static_cast<double>(samples[frame - 1])));
    return step;
}

/// A slow sine on all sixteen channels, one block after the other.
class Playback {
public:
    explicit Playback(Product& played)
        : product(played), bus(16, std::vector<float>(blockSize)), pointers(test::channelPointers(bus)) {}

    void block() {
        for (std::size_t frame = 0; frame < blockSize; ++frame) {
            const auto value =
                static_cast<float>(0.1 * std::sin(2.0 * 3.14159265358979 * 100.0 *
                                                  static_cast<double>(position++) / sampleRate));
            for (std::vector<float>& channel : bus)
                channel[frame] = value;
        }
        orvane::SampleBuffer view(pointers.data(), 16, blockSize);
        product.manager->process(view, view);
        left.insert(left.end(), bus[0].begin(), bus[0].end());
        right.insert(right.end(), bus[1].begin(), bus[1].end());
    }

    void blocks(int count) {
        for (int index = 0; index < count; ++index)
            block();
    }

    /// Plays on until the next engine is in service, its fade is over and what it plays has settled.
    void throughTheNextFade() {
        for (const int before = product.reloadsFinished; product.reloadsFinished == before;)
            block();
        blocks(30);
    }

    std::vector<float> left;
    std::vector<float> right;

private:
    Product& product;
    Channels bus;
    std::vector<float*> pointers;
    std::uint64_t position = 0;
};

class LayoutSwitch : public ::testing::TestWithParam<int> {};

/// From one layout to each of the others while a sine plays: the output's largest step from sample to sample
/// stays that of the louder of the two settled sines (plus the slope of the linear fade itself).
TEST_P(LayoutSwitch, DuringPlaybackMakesNoStepLargerThanTheSignalsOwn) {
    Product product;
    const std::vector<std::string> names = layoutNames(product);
    const std::string& from = names[static_cast<std::size_t>(GetParam())];
    // Every pair; under a sanitizer, where each costs ten times as much, every fifth, another fifth from each
    // layout.
    const std::size_t stride = test::RealtimeScope::countingWorks ? 1 : 5;
    for (std::size_t target = static_cast<std::size_t>(GetParam()) % stride; target < names.size();
         target += stride) {
        SCOPED_TRACE(from + " to " + names[target]);
        product.chooseLayout(from);
        product.prepare(blockSize, sampleRate);
        Playback playback(product);
        playback.blocks(30);
        const std::size_t switchAt = playback.left.size();
        const double before = largestStep({playback.left.end() - 960, playback.left.end()});
        const double levelBefore = *std::max_element(playback.left.end() - 960, playback.left.end());
        if (names[target] == from)
            continue;
        product.chooseLayout(names[target]);
        playback.throughTheNextFade();
        const double after = largestStep({playback.left.end() - 960, playback.left.end()});
        const double levelAfter = *std::max_element(playback.left.end() - 960, playback.left.end());
        const double fadeSlope = (levelBefore + levelAfter) / 480.0;
        EXPECT_LE(largestStep({playback.left.begin() + static_cast<std::ptrdiff_t>(switchAt) - 960,
                               playback.left.end()}),
                  1.05 * std::max(before, after) + fadeSlope);
    }
}
INSTANTIATE_TEST_SUITE_P(FromEachLayout, LayoutSwitch, ::testing::Range(0, 32));

TEST(StructuralChange, AStormOfLayoutsAndScenesDuringPlaybackStaysFiniteAndEndsAtTheLastOne) {
    Product product;
    product.prepare(blockSize, sampleRate);
    const std::vector<std::string> names = layoutNames(product);
    const char* const scenes[] = {"Mix Room", "Kitchen", "Analytic Dry", "Stadium", "Car"};
    std::mt19937 generator(5);
    Playback playback(product);
    for (int change = 0; change < 40; ++change) {
        product.chooseLayout(names[generator() % names.size()]);
        product.chooseScene(scenes[generator() % 5]);
        playback.blocks(static_cast<int>(generator() % 6));
        std::this_thread::yield();
    }
    for (const float sample : playback.left)
        ASSERT_TRUE(std::isfinite(sample));
    product.manager->release(); // a rebuild that is under way ends first
    product.chooseLayout("5.1 ITU");
    product.prepare(blockSize, sampleRate);
    Product fresh;
    fresh.scene->setValue(product.scene->getValue());
    fresh.chooseLayout("5.1 ITU");
    fresh.prepare(blockSize, sampleRate);
    Playback again(product);
    again.blocks(40);
    Playback reference(fresh);
    reference.blocks(40);
    EXPECT_EQ(again.left, reference.left);
    EXPECT_EQ(again.right, reference.right);
}

/// A restored session: the Scene arrives before the first preparation, and no crossfade ever runs
/// reloadFinished.
TEST(StructuralChange, ARestoredSceneSoundsFromItsFirstBlockAsIfItHadBeenChosenByHand) {
    Product restored;
    restored.chooseScene("Kitchen");
    restored.focus->setValue(-40.0f);
    restored.prepare(blockSize, sampleRate);

    Product byHand;
    byHand.prepare(blockSize, sampleRate);
    Playback before(byHand);
    before.blocks(10);
    byHand.chooseScene("Kitchen");
    byHand.focus->setValue(-40.0f);
    before.throughTheNextFade();
    byHand.manager->release();
    byHand.prepare(blockSize, sampleRate);

    Playback first(restored);
    first.blocks(40);
    Playback second(byHand);
    second.blocks(40);
    EXPECT_EQ(first.left, second.left);
}

TEST(StructuralChange, TheNewScenesValuesArriveWithTheNewEngineAndNotBefore) {
    Product product;
    product.prepare(blockSize, sampleRate);
    Playback playback(product);
    playback.blocks(4);
    product.chooseScene("Kitchen"); // master gain 3.6 where the default Scene has 4.5
    EXPECT_EQ(product.parameterSet->getOutputGainDb(), 4.5f);
    playback.throughTheNextFade();
    EXPECT_FLOAT_EQ(product.parameterSet->getOutputGainDb(), 3.6f);
}

// Engine construction.

struct EngineConstruction : ::testing::Test {
    std::unique_ptr<orvane::kestrum::core::EngineFactory> engineFactory() {
        return std::make_unique<orvane::kestrum::core::EngineFactory>(
            product.speakerSetup.get(), product.layouts.get(), &product.factory, product.parameterSet.get(),
            product.hrir, test::reverbFolder(), std::make_unique<orvane::kestrum::core::EngineBuilder>(),
            std::make_unique<orvane::ReverbFilterFactory>(), [this] {
                ++reloads;
                product.updateMappers();
            });
    }
    Product product;
    int reloads = 0; ///< Calls of reloadFinished.
};

TEST_F(EngineConstruction, EveryLayoutGivesAnEngineWithOneSpeakerPerChannel) {
    const auto engines = engineFactory();
    for (const std::string& name : layoutNames(product)) {
        product.chooseLayout(name);
        EXPECT_EQ(engines->createEngine(32, sampleRate)->speakerCount(),
                  product.layouts->get(product.speakerSetup->getValue()).channelCount)
            << name;
    }
}

TEST_F(EngineConstruction, ALayoutOutsideTheTableIsRefused) {
    product.speakerSetup->setValue(12345);
    try {
        engineFactory()->createEngine(32, sampleRate);
        FAIL() << "expected an exception";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "layout not supported");
    }
}

TEST_F(EngineConstruction, ACrossfadedEngineCountsTheNewLayoutsSpeakers) {
    const auto engines = engineFactory();
    std::shared_ptr<orvane::IEngine> old = engines->createEngine(32, sampleRate);
    product.chooseLayout("7.1.4");
    const auto crossfaded = engines->createCrossfadedEngine(std::move(old), 32, sampleRate);
    EXPECT_EQ(crossfaded->speakerCount(), 12u);
}

using Ears = std::array<std::vector<float>, 2>;

/// Constant blocks through one engine: 0.25 left and `right` right. What either ear hears.
Ears play(orvane::IEngine& engine, int blocks, float right) {
    Ears ears;
    orvane::SampleBuffer block(2, blockSize);
    for (int index = 0; index < blocks; ++index) {
        std::fill_n(block.channelPointers[0], blockSize, 0.25f);
        std::fill_n(block.channelPointers[1], blockSize, right);
        engine.process(block, block);
        for (std::size_t ear = 0; ear < 2; ++ear)
            ears[ear].insert(ears[ear].end(), block.channelPointers[ear],
                             block.channelPointers[ear] + blockSize);
    }
    return ears;
}

Ears playBoth(orvane::IEngine& engine, int blocks) { return play(engine, blocks, 0.25f); }

/// In the left channel only, so that a turned head hears it elsewhere.
Ears playLeft(orvane::IEngine& engine, int blocks) { return play(engine, blocks, 0.0f); }

// Reference: an engine that is faded out sounds like one that nobody has touched.
TEST_F(EngineConstruction, AUsersMoveDuringACrossfadeReachesTheNewEngineOnly) {
    const auto engines = engineFactory();
    const auto untouched = engines->createEngine(blockSize, sampleRate);
    std::shared_ptr<orvane::IEngine> old = engines->createEngine(blockSize, sampleRate);
    const float before = playBoth(*untouched, 1000)[0].back();
    playBoth(*old, 1000);
    const auto crossfaded = engines->createCrossfadedEngine(std::move(old), blockSize, sampleRate);
    EXPECT_NEAR(playBoth(*crossfaded, 1)[0].back(), before, 1e-6f);
    product.masterGain->setValue(-96.0f);
    const std::vector<float> fade = playBoth(*crossfaded, 7)[0];
    for (std::size_t frame = 0; frame < 440; ++frame) // an old engine that followed would be gone by then
        ASSERT_GE(fade[frame], 0.99f * before * (1.0f - static_cast<float>(frame + 1) / 480.0f)) << frame;
    EXPECT_NEAR(playBoth(*crossfaded, 60)[0].back(), 0.0f, 1e-4f);
}

// Reference: two equal engines cancel out of a linear fade, if both turn with the head.
TEST_F(EngineConstruction, TheHeadTurnsInBothEnginesOfACrossfade) {
    product.chooseScene("Analytic Dry"); // direct sound only, so that a new engine is at rest at once
    product.updateMappers();
    const auto engines = engineFactory();
    const auto alone = engines->createEngine(blockSize, sampleRate);
    std::shared_ptr<orvane::IEngine> old = engines->createEngine(blockSize, sampleRate);
    playLeft(*alone, 50);
    playLeft(*old, 50);
    const auto crossfaded = engines->createCrossfadedEngine(std::move(old), blockSize, sampleRate);
    EXPECT_EQ(playLeft(*crossfaded, 1), playLeft(*alone, 1));
    product.headRotation->setValue(90.0f);
    const Ears turned = playLeft(*alone, 20);
    const Ears fading = playLeft(*crossfaded, 20);
    // The new engine's own fade-in takes a quarter away in the middle of the fade, a little more for coming
    // through its response later; and its bass shelf is still settling.
    for (std::size_t ear = 0; ear < 2; ++ear)
        for (std::size_t frame = 0; frame < turned[ear].size(); ++frame) {
            ASSERT_LE(std::abs(fading[ear][frame]), std::abs(turned[ear][frame]) * 1.01f + 1e-5f) << frame;
            ASSERT_GE(std::abs(fading[ear][frame]), std::abs(turned[ear][frame]) * 0.72f - 1e-5f) << frame;
        }
}

TEST_F(EngineConstruction, WithoutAnOldEngineNothingIsToldOfAFade) {
    const auto engines = engineFactory();
    const auto first = engines->createCrossfadedEngine(nullptr, blockSize, sampleRate);
    playBoth(*first, 12);
    EXPECT_EQ(reloads, 0);
}

TEST_F(EngineConstruction, ACrossfadeNeitherAllocatesNorLocksFromItsFirstBlockOn) {
    auto engines = engineFactory();
    std::shared_ptr<orvane::IEngine> old = engines->createEngine(blockSize, sampleRate);
    const auto crossfaded = engines->createCrossfadedEngine(std::move(old), blockSize, sampleRate);
    orvane::SampleBuffer block(2, blockSize);
    const test::RealtimeScope scope;
    for (int index = 0; index < 12; ++index)
        crossfaded->process(block, block);
    EXPECT_EQ(scope.violations().total(), 0u) << scope.violations();
}

/// Stress for the race detectors: audio, automation and rebuilds at the same time.
TEST(StructuralChange, AudioAutomationAndRebuildsSideBySideStayFinite) {
    Product product;
    product.prepare(blockSize, sampleRate);
    std::atomic<bool> playing{false};
    std::atomic<bool> done{false};
    Playback playback(product);
    std::thread audio([&] {
        while (!done) {
            playback.block();
            playing = true;
        }
    });
    while (!playing)
        std::this_thread::yield();
    const std::vector<std::string> names = layoutNames(product);
    std::mt19937 generator(9);
    for (int round = 0; round < 60; ++round) {
        product.ambience->setValue(static_cast<float>(generator() % 101));
        product.focus->setValue(static_cast<float>(generator() % 201) - 100.0f);
        product.headRotation->setValue(static_cast<float>(generator() % 361) - 180.0f);
        product.masterGain->setValue(static_cast<float>(generator() % 24) - 12.0f);
        product.chooseLayout(names[generator() % names.size()]);
        if (round % 7 == 0)
            product.chooseScene(round % 2 == 0 ? "Kitchen" : "Mix Room");
        std::this_thread::yield();
    }
    done = true;
    audio.join();
    EXPECT_FALSE(playback.left.empty());
    EXPECT_TRUE(std::ranges::all_of(playback.left, [](float sample) { return std::isfinite(sample); }));
}

} // namespace
