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

// Analytic reference: the old engine alone for one block, then a linear fade, where the gain of the new engine
// on sample k is (k + 1) * step.
TEST_F(XFadedEngineTest, FadesLinearlyFromTheOldEngineToTheNewOne) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(3.0f, census));
    EXPECT_THAT(render(*engine, blockSize, blockSize), Each(1.0f));
    const std::vector<float> fade = render(*engine, 640, blockSize);
    for (std::uint64_t k = 0; k < fadeLength - 2; ++k) {
        const double phase = static_cast<double>(k + 1) / fadeLength;
        ASSERT_NEAR(fade[k], 1.0 + 2.0 * phase, 2e-4) << k; // 480 float additions of the step
    }
    for (std::uint64_t k = fadeLength; k < fade.size(); ++k)
        ASSERT_EQ(fade[k], 3.0f) << k;
    EXPECT_EQ(fadesStarted, 1);
}

TEST_F(XFadedEngineTest, TheStepIsThatOf480SamplesAt48Kilohertz) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(0.0f, census), std::make_unique<ConstantEngine>(1.0f, census));
    const std::vector<float> output = render(*engine, blockSize + 1, blockSize);
    EXPECT_EQ(output[blockSize], static_cast<float>(1000.0 / (10.0 * 48000.0)));
}

TEST_F(XFadedEngineTest, AFadeThatEndsInsideABlockLeavesTheRestToTheNewEngine) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(0.25f, census));
    const std::vector<float> output = render(*engine, 640, blockSize);
    EXPECT_NE(output[512], 0.25f); // last block: still mixed at its start
    EXPECT_EQ(output[blockSize + fadeLength], 0.25f);
    EXPECT_EQ(output[639], 0.25f);
}

TEST_F(XFadedEngineTest, ShortHostBlocksGiveTheSameFadeAsLongOnes) {
    const auto longBlocks =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(-1.0f, census));
    const std::vector<float> expected = render(*longBlocks, 768, 128);
    const auto shortBlocks =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(-1.0f, census));
    EXPECT_EQ(render(*shortBlocks, 768, 32), expected);
}

/// Host blocks of one length after the other, over and over.
struct HostBlocks {
    const char* name;
    std::vector<std::uint64_t> lengths;
};

class FadeBeginning : public XFadedEngineTest, public ::testing::WithParamInterface<HostBlocks> {};

// Analytic reference: an engine's latency is one internal block of samples, however a host cuts them up.
TEST_P(FadeBeginning, IsTheSampleBehindOneInternalBlockAndTellsItOnce) {
    constexpr std::uint64_t internalBlock = 512;
    std::vector<std::uint64_t> toldIn; // first samples of the host blocks in which the start was told
    std::uint64_t position = 0;
    auto next = std::make_unique<ConstantEngine>(3.0f, census);
    const ConstantEngine& newEngine = *next;
    std::uint64_t newBlocksBefore = 0;
    XFadedEngine engine(std::make_shared<ConstantEngine>(1.0f, census), std::move(next), internalBlock,
                        sampleRate, fadeMilliseconds, std::make_unique<test::SleepUntilWoken>(), [&] {
                            toldIn.push_back(position);
                            newBlocksBefore = newEngine.blocks;
                        });
    std::vector<float> output;
    std::uint64_t hostBlocks = 0;
    std::uint64_t tellingBlock = 0;
    while (position < 2 * internalBlock) {
        const std::uint64_t frames = GetParam().lengths[hostBlocks++ % GetParam().lengths.size()];
        if (position + frames > internalBlock && tellingBlock == 0)
            tellingBlock = hostBlocks;
        SampleBuffer block(2, frames);
        engine.process(block, block);
        const std::vector<float> left = contents(block, 0);
        output.insert(output.end(), left.begin(), left.end());
        EXPECT_EQ(newEngine.blocks, hostBlocks); // it runs from the first block on
        position += frames;
    }
    for (std::uint64_t k = 0; k < internalBlock; ++k)
        ASSERT_EQ(output[k], 1.0f) << k;
    const float step = 1.0f / fadeLength;
    EXPECT_NEAR(output[internalBlock], 1.0f + 2.0f * step, 1e-6f);
    EXPECT_NEAR(output[internalBlock + 1], 1.0f + 4.0f * step, 1e-6f);
    EXPECT_EQ(output[internalBlock + fadeLength], 3.0f);
    ASSERT_EQ(toldIn.size(), 1u);
    EXPECT_LE(toldIn.front(), internalBlock);
    EXPECT_EQ(newBlocksBefore, tellingBlock - 1); // told before the new engine renders that block
}
INSTANTIATE_TEST_SUITE_P(OfHostBlocks, FadeBeginning,
                         ::testing::Values(HostBlocks{"Of64", {64}}, HostBlocks{"Of512", {512}},
                                           HostBlocks{"Of500", {500}}, HostBlocks{"Of37", {37}},
                                           HostBlocks{"Of511", {511}}, HostBlocks{"Of1", {1}},
                                           HostBlocks{"OfMany", {512, 1, 100, 0, 64, 333}},
                                           HostBlocks{"OfNoneFirst", {0, 256}}),
                         [](const auto& blocks) { return blocks.param.name; });

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
    EXPECT_EQ(output[blockSize - 1], 1.0f);
    EXPECT_LT(output[200], 1.0f); // only the new engine's share is there, still fading in
}

TEST_F(XFadedEngineTest, ChannelsBeyondTheOldOutputAreOnlyFadedIn) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(1.0f, census));
    SampleBuffer input(4, blockSize);
    SampleBuffer output(4, blockSize);
    for (int block = 0; block < 2; ++block) {
        for (std::uint64_t channel = 0; channel < 4; ++channel)
            std::fill_n(output.channelPointers[channel], blockSize, 9.0f);
        engine->process(input, output);
        EXPECT_NEAR(output.channelPointers[0][10], 1.0f, 1e-6f); // equal engines cancel out of the fade
        EXPECT_THAT(contents(output, 2), Each(0.0f));
        EXPECT_THAT(contents(output, 3), Each(0.0f));
    }
}

TEST_F(XFadedEngineTest, AnOldEngineOfOneSpeakerStillDeliversStereo) {
    const auto engine = wrap(std::make_shared<ConstantEngine>(1.0f, census, 1),
                             std::make_unique<ConstantEngine>(1.0f, census));
    SampleBuffer input(2, blockSize);
    SampleBuffer output(2, blockSize);
    for (int block = 0; block < 2; ++block) {
        engine->process(input, output);
        EXPECT_EQ(contents(output, 0), contents(output, 1));
        EXPECT_NEAR(output.channelPointers[1][0], 1.0f, 1e-6f);
    }
}

TEST_F(XFadedEngineTest, InputAndOutputMayBeOneBuffer) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(1.0f, census));
    SampleBuffer shared(2, blockSize);
    for (int block = 0; block < 2; ++block) {
        engine->process(shared, shared);
        EXPECT_NEAR(shared.channelPointers[0][blockSize - 1], 1.0f, 1e-6f);
    }
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
    render(*engine, 768, blockSize);
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
    render(*engine, 2 * blockSize, blockSize);
    engine.reset();
    EXPECT_EQ(census.alive, 0);
}

TEST_F(XFadedEngineTest, DestroyedBeforeItsFadeHasBegunItEndsItsReleaseTaskAtOnce) {
    auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(2.0f, census));
    render(*engine, blockSize / 2, blockSize / 2);
    engine.reset();
    EXPECT_EQ(census.alive, 0);
    EXPECT_EQ(fadesStarted, 0);
}

TEST_F(XFadedEngineTest, ANestedChainUnwinds) {
    auto inner =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(2.0f, census));
    render(*inner, 2 * blockSize, blockSize); // begun, so it cannot be called off
    auto outer = wrap(std::move(inner), std::make_unique<ConstantEngine>(3.0f, census));
    render(*outer, 768, blockSize);
    sleep->wake();
    while (census.alive > 1)
        std::this_thread::yield();
    EXPECT_THAT(render(*outer, blockSize, blockSize), Each(3.0f));
}

TEST_F(XFadedEngineTest, AMissingStartFunctionThrowsOutOfTheBlockInWhichTheFadeBegins) {
    auto engine = std::make_unique<XFadedEngine>(
        std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(2.0f, census),
        blockSize, sampleRate, fadeMilliseconds, std::make_unique<test::SleepUntilWoken>(), nullptr);
    SampleBuffer block(2, blockSize);
    engine->process(block, block);
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
    EXPECT_EQ(render(*engine, 768, blockSize).back(), 2.0f);
    EXPECT_EQ(fadesStarted, 1);
}

TEST_F(XFadedEngineTest, AFadeThatWaitsForTheNewEnginesSoundCanBeHeld) {
    const auto old = std::make_shared<ConstantEngine>(1.0f, census);
    const auto engine = wrap(old, std::make_unique<ConstantEngine>(2.0f, census));
    render(*engine, blockSize - 1, blockSize - 1);
    EXPECT_EQ(engine->holdFade(), old);
    EXPECT_THAT(render(*engine, 2 * blockSize, blockSize), Each(1.0f));
    EXPECT_EQ(fadesStarted, 0);
}

/// The new engine has run on meanwhile, so its sound is there when the fade may begin.
TEST_F(XFadedEngineTest, AResumedFadeBeginsAtOnceWhenTheNewEnginesSoundHasArrivedMeanwhile) {
    auto next = std::make_unique<ConstantEngine>(2.0f, census);
    const ConstantEngine& newEngine = *next;
    const auto engine = wrap(std::make_shared<ConstantEngine>(1.0f, census), std::move(next));
    engine->holdFade();
    render(*engine, 4 * blockSize, blockSize);
    EXPECT_EQ(newEngine.blocks, 4u);
    engine->resumeFade();
    EXPECT_GT(render(*engine, blockSize, blockSize).front(), 1.0f);
    EXPECT_EQ(fadesStarted, 1);
}

TEST_F(XFadedEngineTest, AFadeThatHasBegunCannotBeHeld) {
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(1.0f, census), std::make_unique<ConstantEngine>(2.0f, census));
    render(*engine, 2 * blockSize, blockSize);
    EXPECT_EQ(engine->holdFade(), nullptr);
    render(*engine, 640, blockSize);
    EXPECT_EQ(engine->holdFade(), nullptr);
}

TEST_F(XFadedEngineTest, TheOldEngineStaysWithItsValuesFromTheFirstBlockOnAndTheNewOneFollows) {
    float value = 1.0f;
    const auto engine =
        wrap(std::make_shared<test::FollowingEngine>(value), std::make_unique<test::FollowingEngine>(value));
    EXPECT_THAT(render(*engine, blockSize / 2, blockSize / 2), Each(1.0f));
    value = 8.0f;
    EXPECT_THAT(render(*engine, blockSize / 2, blockSize / 2), Each(1.0f));
    const std::vector<float> fade = render(*engine, 640, blockSize);
    EXPECT_NEAR(fade[0], 1.0f + 7.0f / fadeLength, 1e-5f);
    EXPECT_NEAR(fade[239], 4.5f, 1e-3f); // the middle of 1 and 8
    EXPECT_EQ(fade.back(), 8.0f);
    value = 9.0f;
    EXPECT_THAT(render(*engine, blockSize, blockSize), Each(9.0f));
}

TEST_F(XFadedEngineTest, ANestedFadeFreezesBothOfItsEngines) {
    float value = 1.0f;
    auto inner =
        wrap(std::make_shared<test::FollowingEngine>(value), std::make_unique<test::FollowingEngine>(value));
    render(*inner, blockSize, blockSize); // the inner fade begins with the next block
    value = 3.0f;
    const auto outer = wrap(std::move(inner), std::make_unique<test::FollowingEngine>(value));
    render(*outer, 1, 1); // old stays 1, its successor 3
    value = 100.0f;
    const std::vector<float> waiting = render(*outer, blockSize - 1, blockSize - 1);
    for (std::uint64_t k = 0; k < waiting.size(); ++k)
        ASSERT_NEAR(waiting[k], 1.0f + 2.0f * static_cast<float>(k + 2) / fadeLength, 1e-4f) << k;
}

TEST_F(XFadedEngineTest, AFrozenWrapperWhoseOldEngineIsGoneFreezesTheOneThatIsLeft) {
    float value = 1.0f;
    const auto engine =
        wrap(std::make_shared<ConstantEngine>(5.0f, census), std::make_unique<test::FollowingEngine>(value));
    render(*engine, 768, blockSize);
    sleep->wake();
    while (census.alive > 0)
        std::this_thread::yield();
    engine->freezeParameters();
    value = 2.0f;
    EXPECT_THAT(render(*engine, blockSize, blockSize), Each(1.0f));
}

TEST_F(XFadedEngineTest, TheBlocksOfAFadeNeitherAllocateNorLock) {
    float value = 1.0f;
    const auto engine =
        wrap(std::make_shared<test::FollowingEngine>(value), std::make_unique<test::FollowingEngine>(value));
    SampleBuffer block(2, blockSize);
    const test::RealtimeScope scope;
    for (int round = 0; round < 7; ++round)
        engine->process(block, block);
    EXPECT_EQ(scope.violations().total(), 0u) << scope.violations();
}

} // namespace
