// SPDX-License-Identifier: GPL-3.0-or-later
// Analytic reference: the stand-in delays channel 0 by one block and multiplies it by a gain that is 1/2 at
// first.
#include "render/Renderer.h"

#include "StandInPlugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <random>
#include <vector>

namespace {

using namespace orvane::kestrum::render;
using orvane::kestrum::host::ProcessMode;
using test::MemorySink;
using test::MemorySource;
using test::StandInPlugin;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Le;

std::vector<float> noise(std::size_t length) {
    std::mt19937 random(3);
    std::vector<float> samples(length);
    for (float& sample : samples)
        sample = static_cast<float>(random() % 2001) / 1000.0f - 1.0f;
    return samples;
}

std::vector<float> halved(std::vector<float> samples) {
    for (float& sample : samples)
        sample *= 0.5f;
    return samples;
}

RenderPlan planWithBlock(std::uint32_t block) {
    RenderPlan plan;
    plan.sampleRate = 1000;
    plan.block = block;
    plan.settleMilliseconds = 0;
    return plan;
}

std::vector<float> run(StandInPlugin& plugin, const std::vector<float>& input, const RenderPlan& plan,
                       RenderFacts* facts = nullptr) {
    plugin.prepare(plan.sampleRate, plan.block, ProcessMode::offline);
    MemorySource source({input, std::vector<float>(input.size())});
    MemorySink sink;
    const RenderFacts result = renderStream(plugin, source, sink, plan);
    if (facts != nullptr)
        *facts = result;
    return sink.left();
}

TEST(Renderer, TakesTheRealDelayOffSoThatTheResultLiesUnderTheInput) {
    StandInPlugin plugin;
    const auto input = noise(1000);
    RenderFacts facts;
    EXPECT_EQ(run(plugin, input, planWithBlock(60), &facts), halved(input));
    EXPECT_EQ(facts.delayRemoved, 60u);
    EXPECT_EQ(facts.writtenFrames, 1000u);
}

TEST(Renderer, KeepsTheTailBehindTheInputsEnd) {
    StandInPlugin plugin;
    plugin.echoGain = 0.5f;
    plugin.echoDelay = 200;
    std::vector<float> expected{1};
    expected.resize(201);
    expected[0] = 0.5f;
    expected[200] = 0.25f;
    EXPECT_EQ(run(plugin, {1, 0, 0}, planWithBlock(16)), expected);
}

TEST(Renderer, RawKeepsTheDelayAndRoundsUpToWholeBlocks) {
    StandInPlugin plugin;
    RenderPlan plan = planWithBlock(4);
    plan.raw = true;
    EXPECT_THAT(run(plugin, {1, 2, 3, 4, 5, 6}, plan), ElementsAre(0, 0, 0, 0, 0.5f, 1, 1.5f, 2));
    EXPECT_THAT(plugin.blockLengths, ElementsAre(4, 4));
}

TEST(Renderer, VaryingBlocksStayWithinTheirBoundAndGiveTheSameStream) {
    const auto input = noise(5000);
    StandInPlugin equal;
    RenderPlan plan = planWithBlock(64);
    plan.raw = true;
    const auto expected = run(equal, input, plan);
    for (const std::uint32_t seed : {1u, 2u, 3u}) {
        StandInPlugin varying;
        plan.varyingBlocks = seed;
        EXPECT_EQ(run(varying, input, plan), expected);
        EXPECT_THAT(varying.blockLengths, Each(Le(64u)));
        EXPECT_THAT(varying.blockLengths, ::testing::Contains(Le(8u)));
        EXPECT_GT(varying.blockLengths.size(), equal.blockLengths.size());
    }
}

TEST(Renderer, OneSeedAlwaysGivesTheSameBlocks) {
    RenderPlan plan = planWithBlock(64);
    plan.varyingBlocks = 5;
    StandInPlugin first;
    StandInPlugin second;
    run(first, noise(1000), plan);
    run(second, noise(1000), plan);
    EXPECT_EQ(first.blockLengths, second.blockLengths);
}

TEST(Renderer, CutsAHostBlockAtAParameterChange) {
    StandInPlugin plugin;
    RenderPlan plan = planWithBlock(4);
    plan.raw = true;
    plan.automation = {{0, {StandInPlugin::gainId, 1.0, false}}, {6, {StandInPlugin::gainId, 0.25, false}}};
    // gain 2 for the first internal block; it is 1/2 again when the second one is complete
    EXPECT_THAT(run(plugin, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, plan),
                ElementsAre(0, 0, 0, 0, 2, 2, 2, 2, 0.5f, 0.5f, 0.5f, 0.5f));
    EXPECT_THAT(plugin.blockLengths, ElementsAre(4, 2, 2, 4));
}

TEST(Renderer, AChangeGivesTheSameStreamHoweverTheHostCutsIt) {
    const auto input = noise(3000);
    RenderPlan plan = planWithBlock(64);
    plan.automation = {{777, {StandInPlugin::gainId, 1.0, false}},
                       {1501, {StandInPlugin::gainId, 0.1, false}}};
    StandInPlugin equal;
    StandInPlugin varying;
    const auto expected = run(equal, input, plan);
    plan.varyingBlocks = 9;
    EXPECT_EQ(run(varying, input, plan), expected);
}

TEST(Renderer, PausesAfterARebuildingChangeBeforeTheNextBlock) {
    StandInPlugin plugin;
    RenderPlan plan = planWithBlock(10);
    plan.settleMilliseconds = 30;
    plan.automation = {{20, {StandInPlugin::sceneId, 1.0, true}}, {20, {StandInPlugin::layoutId, 1.0, true}}};
    const auto before = std::chrono::steady_clock::now();
    run(plugin, noise(100), plan);
    EXPECT_THAT(plugin.flushedBefore, ElementsAre(2)); // once for both changes, after two blocks
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(30));
}

TEST(Renderer, PacedByTheClockTakesAsLongAsTheSound) {
    StandInPlugin plugin;
    RenderPlan plan = planWithBlock(10);
    plan.raw = true;
    plan.realtime = true;
    const auto before = std::chrono::steady_clock::now();
    run(plugin, noise(100), plan); // 100 frames at 1000 Hz; the last block is given at 90 ms
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(90));
}

TEST(Renderer, TellsWhatTheRunTook) {
    StandInPlugin plugin;
    RenderPlan plan = planWithBlock(10);
    plan.raw = true;
    RenderFacts facts;
    run(plugin, noise(95), plan, &facts);
    EXPECT_EQ(facts.fedFrames, 100u);
    EXPECT_EQ(facts.writtenFrames, 100u);
    EXPECT_EQ(facts.blockCount, 10u);
    EXPECT_EQ(facts.delayRemoved, 0u);
    EXPECT_GT(facts.meanLoad, 0.0);
    EXPECT_GE(facts.worstLoad, facts.meanLoad);
}

TEST(Renderer, ProgressNeverFallsAndEndsAtOne) {
    StandInPlugin plugin;
    plugin.prepare(1000, 10, ProcessMode::offline);
    MemorySource source({noise(95), noise(95)});
    MemorySink sink;
    std::vector<double> shares;
    renderStream(plugin, source, sink, planWithBlock(10),
                 [&shares](double share) { shares.push_back(share); });
    EXPECT_TRUE(std::ranges::is_sorted(shares));
    EXPECT_EQ(shares.back(), 1.0);
}

TEST(Renderer, AnInputWithoutFramesGivesAnOutputWithoutFrames) {
    StandInPlugin plugin;
    EXPECT_TRUE(run(plugin, {}, planWithBlock(10)).empty());
    RenderPlan plan = planWithBlock(10);
    plan.raw = true;
    EXPECT_TRUE(run(plugin, {}, plan).empty());
}

} // namespace
