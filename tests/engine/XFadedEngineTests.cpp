// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/StandIns.h"
#include "engine/XFadedEngine.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

namespace {

using orvane::SampleBuffer;
using orvane::XFadedEngine;
using test::ConstantEngine;
using test::EngineCensus;
using ::testing::Each;

constexpr double sampleRate = 48000.0;
constexpr std::uint64_t blockSize = 128;
constexpr float fadeMilliseconds = 10.0f;
constexpr std::uint64_t fadeLength = 480; // 10 ms at 48 kHz

std::vector<float> contents(const SampleBuffer& buffer, std::uint64_t channel) {
    const orvane::SampleSpan span = buffer.channel(channel);
    return {span.begin(), span.end()};
}

struct XFadedEngineTest : ::testing::Test {
    std::unique_ptr<XFadedEngine> wrap(std::shared_ptr<orvane::IEngine> old,
                                       std::unique_ptr<orvane::IEngine> next) {
        auto sleeper = std::make_unique<test::SleepUntilWoken>();
        sleep = sleeper.get();
        return std::make_unique<XFadedEngine>(std::move(old), std::move(next), blockSize, sampleRate,
                                              fadeMilliseconds, std::move(sleeper),
                                              [this] { ++fadesStarted; });
    }

    /// Renders `frames` samples in host blocks of `hostBlock` and returns the left channel.
    static std::vector<float> render(orvane::IEngine& engine, std::uint64_t frames, std::uint64_t hostBlock) {
        std::vector<float> result;
        SampleBuffer input(2, hostBlock);
        SampleBuffer output(2, hostBlock);
        while (result.size() < frames) {
            engine.process(input, output);
            const std::vector<float> left = contents(output, 0);
            result.insert(result.end(), left.begin(), left.end());
        }
        result.resize(frames);
        return result;
    }

    EngineCensus census;
    test::SleepUntilWoken* sleep = nullptr;
    int fadesStarted = 0;
};

TEST_F(XFadedEngineTest, WithoutAnOldEngineTheNewOneIsHeardAtFullLevelAtOnce) {
    const auto engine = wrap(nullptr, std::make_unique<ConstantEngine>(1.0f, census));
    EXPECT_THAT(render(*engine, 256, blockSize), Each(1.0f));
    EXPECT_EQ(fadesStarted, 0);
}

// Analytic reference: linear fade, gain of the new engine on sample k is (k + 1) * step.
TEST_F(XFadedEngineTest, FadesLinearlyFromTheOldEngineToTheNewOne) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(3.0f, census));
    const std::vector<float> output = render(*engine, 640, blockSize);
    for (std::uint64_t k = 0; k < fadeLength - 2; ++k) {
        const double phase = static_cast<double>(k + 1) / fadeLength;
        ASSERT_NEAR(output[k], 1.0 + 2.0 * phase, 2e-4) << k; // 480 float additions of the step
    }
    for (std::uint64_t k = fadeLength; k < output.size(); ++k)
        ASSERT_EQ(output[k], 3.0f) << k;
    EXPECT_EQ(fadesStarted, 1);
}

TEST_F(XFadedEngineTest, TheStepIsThatOf480SamplesAt48Kilohertz) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(0.0f, census), std::make_unique<ConstantEngine>(1.0f, census));
    const std::vector<float> output = render(*engine, 1, blockSize);
    EXPECT_EQ(output[0], static_cast<float>(1000.0 / (10.0 * 48000.0)));
}

TEST_F(XFadedEngineTest, AFadeThatEndsInsideABlockLeavesTheRestToTheNewEngine) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(0.25f, census));
    const std::vector<float> output = render(*engine, 512, blockSize);
    EXPECT_NE(output[384], 0.25f); // last block: still mixed at its start
    EXPECT_EQ(output[fadeLength], 0.25f);
    EXPECT_EQ(output[511], 0.25f);
}

TEST_F(XFadedEngineTest, ShortHostBlocksGiveTheSameFadeAsLongOnes) {
    const auto longBlocks =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(-1.0f, census));
    const std::vector<float> expected = render(*longBlocks, 640, 128);
    const auto shortBlocks =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(-1.0f, census));
    EXPECT_EQ(render(*shortBlocks, 640, 32), expected);
}

TEST_F(XFadedEngineTest, TheOldEngineIsAskedForNoMoreThanTheHostsBlock) {
    const auto old = std::make_shared<ConstantEngine>(1.0f, census);
    const auto engine = wrap(old, std::make_unique<ConstantEngine>(2.0f, census));
    render(*engine, 20, 20);
    EXPECT_EQ(old->longestView, 20u);
}

TEST_F(XFadedEngineTest, AHostBlockLongerThanAnnouncedReadsNothingBeyondTheOldOutput) {
    const auto old = std::make_shared<ConstantEngine>(1.0f, census);
    const auto engine = wrap(old, std::make_unique<ConstantEngine>(2.0f, census));
    const std::vector<float> output = render(*engine, 300, 300);
    EXPECT_EQ(old->longestView, blockSize);
    EXPECT_LT(output[200], 1.0f); // only the new engine's share is there, still fading in
}

TEST_F(XFadedEngineTest, ChannelsBeyondTheOldOutputAreOnlyFadedIn) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(1.0f, census));
    SampleBuffer input(4, blockSize);
    SampleBuffer output(4, blockSize);
    engine->process(input, output);
    EXPECT_NEAR(output.channelPointers[0][10], 1.0f, 1e-6f); // equal engines cancel out of the fade
    EXPECT_THAT(contents(output, 2), Each(0.0f));
    EXPECT_THAT(contents(output, 3), Each(0.0f));
}

TEST_F(XFadedEngineTest, AnOldEngineOfOneSpeakerStillDeliversStereo) {
    const auto engine = wrap(std::make_shared<ConstantEngine>(1.0f, census, 1),
                             std::make_unique<ConstantEngine>(1.0f, census));
    SampleBuffer input(2, blockSize);
    SampleBuffer output(2, blockSize);
    engine->process(input, output);
    EXPECT_EQ(contents(output, 0), contents(output, 1));
    EXPECT_NEAR(output.channelPointers[1][0], 1.0f, 1e-6f);
}

TEST_F(XFadedEngineTest, InputAndOutputMayBeOneBuffer) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(1.0f, census));
    SampleBuffer shared(2, blockSize);
    engine->process(shared, shared);
    EXPECT_NEAR(shared.channelPointers[0][blockSize - 1], 1.0f, 1e-6f);
}

TEST_F(XFadedEngineTest, SpeakerCountIsTheNewEngines) {
    const auto engine = wrap(std::make_shared<ConstantEngine>(1.0f, census, 6),
                             std::make_unique<ConstantEngine>(1.0f, census, 12));
    EXPECT_EQ(engine->speakerCount(), 12u);
    const auto empty = wrap(nullptr, nullptr);
    EXPECT_EQ(empty->speakerCount(), 0u);
}

TEST_F(XFadedEngineTest, WithoutANewEngineTheOutputIsLeftAlone) {
    const auto engine = wrap(nullptr, nullptr);
    SampleBuffer block(2, 4);
    block.channelPointers[0][0] = 5.0f;
    engine->process(block, block);
    EXPECT_EQ(block.channelPointers[0][0], 5.0f);
}

TEST_F(XFadedEngineTest, TheReleaseTaskDestroysTheOldEngineAfterTheFade) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(2.0f, census));
    EngineCensus::forbiddenHere() = true;
    render(*engine, 640, blockSize);
    EngineCensus::forbiddenHere() = false;
    sleep->wake();
    while (census.alive > 1)
        std::this_thread::yield();
    EXPECT_FALSE(census.diedWhereForbidden);
    EXPECT_THAT(render(*engine, 256, blockSize), Each(2.0f));
}

TEST_F(XFadedEngineTest, DestroyedDuringItsFadeItEndsItsReleaseTaskAtOnce) {
    // The stand-in sleep never ends by itself: without the wake-up in the destructor this test would hang.
    auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(2.0f, census));
    render(*engine, blockSize, blockSize);
    engine.reset();
    EXPECT_EQ(census.alive, 0);
}

TEST_F(XFadedEngineTest, ANestedChainUnwinds) {
    auto inner =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(2.0f, census));
    render(*inner, blockSize, blockSize); // begun, so it cannot be called off
    auto outer = wrap(std::move(inner), std::make_unique<ConstantEngine>(3.0f, census));
    render(*outer, 640, blockSize);
    sleep->wake();
    while (census.alive > 1)
        std::this_thread::yield();
    EXPECT_THAT(render(*outer, blockSize, blockSize), Each(3.0f));
}

TEST_F(XFadedEngineTest, AMissingStartFunctionThrowsOutOfTheFirstBlock) {
    auto engine = std::make_unique<XFadedEngine>(
        std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(2.0f, census),
        blockSize, sampleRate, fadeMilliseconds, std::make_unique<test::SleepUntilWoken>(), nullptr);
    SampleBuffer block(2, blockSize);
    EXPECT_THROW(engine->process(block, block), std::bad_function_call);
}

TEST_F(XFadedEngineTest, AFadeTimeOfZeroSwitchesAtOnce) {
    auto sleeper = std::make_unique<test::SleepUntilWoken>();
    XFadedEngine engine(std::make_shared<ConstantEngine>(1.0f, census),
                        std::make_unique<ConstantEngine>(2.0f, census), blockSize, sampleRate, 0.0f,
                        std::move(sleeper), [] {});
    EXPECT_THAT(render(engine, blockSize, blockSize), Each(2.0f));
}

TEST_F(XFadedEngineTest, AHeldFadeLetsOnlyTheOldEngineBeHeard) {
    const auto old = std::make_shared<ConstantEngine>(1.0f, census);
    const auto engine = wrap(old, std::make_unique<ConstantEngine>(2.0f, census));
    EXPECT_EQ(engine->holdFade(), old);
    EXPECT_THAT(render(*engine, 256, blockSize), Each(1.0f));
    EXPECT_EQ(fadesStarted, 0);
    engine->resumeFade();
    EXPECT_EQ(render(*engine, 640, blockSize).back(), 2.0f);
    EXPECT_EQ(fadesStarted, 1);
}

TEST_F(XFadedEngineTest, AFadeThatHasBegunCannotBeHeld) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(2.0f, census));
    render(*engine, blockSize, blockSize);
    EXPECT_EQ(engine->holdFade(), nullptr);
    render(*engine, 640, blockSize);
    EXPECT_EQ(engine->holdFade(), nullptr);
}

TEST_F(XFadedEngineTest, TheBlocksOfAFadeNeitherAllocateNorLock) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(2.0f, census));
    SampleBuffer block(2, blockSize);
    const test::RealtimeScope scope;
    for (int round = 0; round < 6; ++round)
        engine->process(block, block);
    EXPECT_EQ(scope.violations().total(), 0u) << scope.violations();
}

} // namespace
