// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineManager.h"
#include "engine/StandIns.h"
#include "engine/XFadedEngine.h"
#include "parameters/ParameterSet.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using orvane::EngineManager;
using orvane::SampleBuffer;
using test::ConstantEngine;
using test::EngineCensus;
using ::testing::Each;

constexpr std::uint64_t blockSize = 32;
constexpr double sampleRate = 48000.0;

std::vector<float> contents(const SampleBuffer& buffer, std::uint64_t channel) {
    const orvane::SampleSpan span = buffer.channel(channel);
    return {span.begin(), span.end()};
}

/// Numbers its engines: the n-th one says n. Can be told to fail and to wait at a gate.
class NumberedEngines final : public orvane::IEngineFactory {
public:
    struct Shared {
        EngineCensus census;
        std::atomic<int> created{0};
        std::atomic<int> crossfades{0};
        std::atomic<int> failures{0};
        std::atomic<bool> failing{false};
        std::atomic<bool> gateClosed{false};
        std::atomic<bool> atTheGate{false};
        std::atomic<int> fadesStarted{0};
        std::atomic<bool> releasesAtOnce{
            false}; ///< Old engines go when their fade has ended, not with its wrapper.
    };

    explicit NumberedEngines(Shared& sharedState) : shared(sharedState) {}

    std::unique_ptr<orvane::IEngine> createEngine(std::uint64_t /*blockSize*/,
                                                  double /*sampleRate*/) override {
        if (shared.failing) {
            ++shared.failures;
            throw std::runtime_error("no engine today");
        }
        return std::make_unique<ConstantEngine>(static_cast<float>(++shared.created), shared.census);
    }

    std::unique_ptr<orvane::IEngine> createCrossfadedEngine(std::shared_ptr<orvane::IEngine> oldEngine,
                                                            std::uint64_t frames, double rate) override {
        while (shared.gateClosed) {
            shared.atTheGate = true;
            std::this_thread::yield();
        }
        auto next = createEngine(frames, rate);
        ++shared.crossfades;
        std::unique_ptr<zmtl::ISleep> sleep = std::make_unique<test::SleepUntilWoken>();
        if (shared.releasesAtOnce)
            sleep = std::make_unique<test::ShortSleep>();
        return std::make_unique<orvane::XFadedEngine>(std::move(oldEngine), std::move(next), frames, rate,
                                                      10.0f, std::move(sleep),
                                                      [this] { ++shared.fadesStarted; });
    }

private:
    Shared& shared;
};

struct EngineManagerTest : ::testing::Test {
    EngineManagerTest()
        : manager(std::make_unique<EngineManager>(std::make_unique<NumberedEngines>(shared), &notifier)) {}

    /// One block; returns the left channel, from a buffer that was full of noise before.
    std::vector<float> block() const {
        SampleBuffer buffer(3, blockSize);
        for (std::uint64_t channel = 0; channel < 3; ++channel)
            std::fill_n(buffer.channelPointers[channel], blockSize, 9.0f);
        manager->process(buffer, buffer);
        EXPECT_THAT(contents(buffer, 2), Each(0.0f));
        return contents(buffer, 0);
    }

    /// Waits for a state that another thread brings about; the test's own time limit ends a wait in vain.
    static void waitFor(const std::function<bool()>& state) {
        while (!state())
            std::this_thread::yield();
    }

    orvane::ParameterSet notifier;
    NumberedEngines::Shared shared;
    std::unique_ptr<EngineManager> manager;
};

TEST_F(EngineManagerTest, BeforePrepareAndAfterReleaseEveryChannelIsZeroed) {
    EXPECT_THAT(block(), Each(0.0f));
    manager->prepare(blockSize, sampleRate);
    EXPECT_THAT(block(), Each(1.0f));
    manager->release();
    EXPECT_THAT(block(), Each(0.0f));
    EXPECT_EQ(shared.census.alive, 0);
}

TEST_F(EngineManagerTest, PrepareMayBeRepeatedAndReplacesTheEngine) {
    manager->prepare(blockSize, sampleRate);
    manager->prepare(blockSize, 44100.0);
    EXPECT_THAT(block(), Each(2.0f));
    EXPECT_EQ(shared.census.alive, 1);
}

TEST_F(EngineManagerTest, WhileMutedThereIsSilenceAndTheEngineDoesNotAdvance) {
    manager->prepare(blockSize, sampleRate);
    manager->setMuted(true);
    EXPECT_THAT(block(), Each(0.0f));
    manager->setMuted(false);
    EXPECT_THAT(block(), Each(1.0f));
}

TEST_F(EngineManagerTest, AFailedPrepareReachesTheCallerAndLeavesSilence) {
    shared.failing = true;
    EXPECT_THROW(manager->prepare(blockSize, sampleRate), std::runtime_error);
    EXPECT_THAT(block(), Each(0.0f));
    shared.failing = false;
    manager->prepare(blockSize, sampleRate); // the lock was given back
    EXPECT_THAT(block(), Each(1.0f));
}

TEST_F(EngineManagerTest, AFailedPrepareAfterASuccessfulOneLeavesTheOlderEngineInService) {
    manager->prepare(blockSize, sampleRate);
    shared.failing = true;
    EXPECT_THROW(manager->prepare(blockSize, 22050.0), std::runtime_error);
    EXPECT_THAT(block(), Each(1.0f));
}

class EngineManagerBlockSize : public EngineManagerTest,
                               public ::testing::WithParamInterface<std::uint64_t> {};

TEST_P(EngineManagerBlockSize, BelowTwoSamplesIsRefused) {
    EXPECT_THROW(manager->prepare(GetParam(), sampleRate), std::invalid_argument);
    EXPECT_THAT(block(), Each(0.0f));
}
INSTANTIATE_TEST_SUITE_P(NoneAndOne, EngineManagerBlockSize, ::testing::Values(0, 1));

TEST_F(EngineManagerTest, AReloadRequestBringsTheNextEngineIn) {
    manager->prepare(blockSize, sampleRate);
    manager->reloadRequested();
    waitFor([&] { return shared.crossfades == 1; });
    while (block().back() != 2.0f)
        ;
    EXPECT_EQ(shared.fadesStarted, 1);
}

TEST_F(EngineManagerTest, AStructuralParameterRequestsTheReload) {
    manager->prepare(blockSize, sampleRate);
    notifier.setCustomRoom(true, true);
    waitFor([&] { return shared.crossfades == 1; });
    while (block().back() != 2.0f)
        ;
    EXPECT_EQ(shared.fadesStarted, 1);
}

TEST_F(EngineManagerTest, TenRequestsInQuickSuccessionGiveOneOrTwoRebuilds) {
    manager->prepare(blockSize, sampleRate);
    shared.gateClosed = true;
    manager->reloadRequested();
    waitFor([&] { return shared.atTheGate.load(); });
    for (int request = 0; request < 9; ++request)
        manager->reloadRequested();
    shared.gateClosed = false;
    waitFor([&] { return shared.crossfades == 2; });
    manager->release(); // waits for whatever is still under way
    EXPECT_EQ(shared.crossfades, 2);
}

TEST_F(EngineManagerTest, ARequestWhileNotPreparedCausesNoRebuildNowOrLater) {
    manager->reloadRequested();
    manager->prepare(blockSize, sampleRate);
    // The request is either dropped by the background task or taken along by prepare; a second one is served
    // alone.
    manager->reloadRequested();
    waitFor([&] { return shared.crossfades == 1; });
    manager->release();
    EXPECT_EQ(shared.created, 2);
}

TEST_F(EngineManagerTest, PrepareTakesAPendingRequestWithIt) {
    manager->prepare(blockSize, sampleRate);
    manager->release();
    manager->prepare(2, 192000.0); // the shortest poll period: the background task looks all the time
    manager->release();
    for (int round = 0; round < 50; ++round) {
        manager->reloadRequested(); // not prepared: dropped by the background task, or taken along by prepare
        manager->prepare(2, 192000.0);
        // Two hundred polls' worth of time in which a request that was left standing would be served.
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1);
        while (std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        manager->release();
    }
    manager.reset(); // the background task has ended
    EXPECT_EQ(shared.crossfades, 0);
}

TEST_F(EngineManagerTest, ReleaseDuringARebuildWaitsForItAndTheRebuiltEngineIsGone) {
    manager->prepare(blockSize, sampleRate);
    shared.gateClosed = true;
    manager->reloadRequested();
    waitFor([&] { return shared.atTheGate.load(); });
    std::atomic<bool> released{false};
    std::thread host([&] {
        manager->release();
        released = true;
    });
    EXPECT_FALSE(released);
    EXPECT_THAT(block(), Each(1.0f)); // the audio thread does not wait for either
    shared.gateClosed = false;
    host.join();
    EXPECT_EQ(shared.crossfades, 1);
    EXPECT_EQ(shared.census.alive, 0);
    EXPECT_THAT(block(), Each(0.0f));
}

TEST_F(EngineManagerTest, ARebuildThatThrowsLeavesTheEngineAudibleAndEndsFurtherReloads) {
    manager->prepare(blockSize, sampleRate);
    shared.failing = true;
    manager->reloadRequested();
    waitFor([&] { return shared.failures == 1; });
    EXPECT_THAT(block(), Each(1.0f));
    shared.failing = false;
    manager->reloadRequested();
    manager.reset();
    EXPECT_EQ(shared.crossfades, 0);
}

/// A host that is prepared but sends no blocks: each change replaces the engine that still waits.
TEST_F(EngineManagerTest, FiveHundredChangesWithoutABlockLeaveAtMostTwoEnginesAndNoHeapOfThreads) {
    const auto threads = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/task"),
                             std::filesystem::directory_iterator{});
    };
    manager->prepare(2, 192000.0); // the shortest poll period
    const auto threadsBefore = threads();
    for (int change = 1; change <= 500; ++change) {
        manager->reloadRequested();
        waitFor([&] { return shared.crossfades == change; });
    }
    waitFor([&] { return shared.census.alive <= 2; });
    EXPECT_EQ(shared.census.alive, 2);
    EXPECT_LE(threads(), threadsBefore + 1); // the one release task
    while (block().back() != 501.0f)
        ;
    EXPECT_EQ(shared.fadesStarted, 1);
}

/// A host that sends short blocks and changes the structure between all of them: 60 blocks are one fade.
TEST_F(EngineManagerTest, ChangesFasterThanFadesWaitForOneToEndAndTheLastIsServed) {
    shared.releasesAtOnce = true;
    manager->prepare(blockSize, 192000.0);
    int mostAlive = 0;
    for (int change = 0; change < 30; ++change) {
        const int created = shared.created;
        manager->reloadRequested();
        // Blocks go on only when the request has to wait for them, so that the audio is slow against the rebuilds.
        auto patience = std::chrono::steady_clock::now() + std::chrono::milliseconds(5);
        while (shared.created == created) {
            std::this_thread::yield();
            if (std::chrono::steady_clock::now() > patience) {
                block();
                patience += std::chrono::milliseconds(5);
            }
        }
        block();
        block(); // the fade has begun
        mostAlive = std::max(mostAlive, shared.census.alive.load());
    }
    EXPECT_LE(mostAlive,
              7); // of thirty: five that sound, one that waits for its fade, one that has just ended
    const int created = shared.created;
    manager->reloadRequested();
    while (shared.created == created || block().back() != static_cast<float>(shared.created))
        block();
}

TEST_F(EngineManagerTest, AFailedRebuildLetsTheWaitingFadeBegin) {
    manager->prepare(blockSize, sampleRate);
    manager->reloadRequested();
    waitFor([&] { return shared.crossfades == 1; });
    shared.failing = true;
    manager->reloadRequested();
    waitFor([&] { return shared.failures == 1; });
    while (block().back() != 2.0f)
        ;
    EXPECT_EQ(shared.fadesStarted, 1);
}

TEST_F(EngineManagerTest, ABlockNeitherLocksNorAllocatesInAnyState) {
    SampleBuffer buffer(2, blockSize);
    const auto violations = [&] {
        const test::RealtimeScope scope;
        manager->process(buffer, buffer);
        return scope.violations().total();
    };
    EXPECT_EQ(violations(), 0u);
    manager->prepare(blockSize, sampleRate);
    EXPECT_EQ(violations(), 0u);
    manager->reloadRequested();
    waitFor([&] { return shared.crossfades == 1; });
    for (int round = 0; round < 20; ++round)
        EXPECT_EQ(violations(), 0u) << round;
    manager->release();
    EXPECT_EQ(violations(), 0u);
}

/// Stress for the race detectors: blocks, rebuilds, preparations and releases at the same time.
TEST_F(EngineManagerTest, SurvivesBlocksRebuildsAndPreparationsAtTheSameTime) {
    manager->prepare(2, 192000.0);
    std::atomic<bool> done{false};
    std::thread audio([&] {
        EngineCensus::forbiddenHere() = true;
        SampleBuffer buffer(2, 2);
        while (!done)
            manager->process(buffer, buffer);
    });
    std::thread automation([&] {
        for (int round = 0; round < 200; ++round) {
            manager->reloadRequested();
            std::this_thread::yield();
        }
    });
    for (int round = 0; round < 20; ++round) {
        manager->release();
        manager->prepare(2, 192000.0);
    }
    automation.join();
    done = true;
    audio.join();
    manager.reset();
    EXPECT_FALSE(shared.census.diedWhereForbidden);
    EXPECT_EQ(shared.census.alive, 0);
}

} // namespace
