// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineHandover.h"
#include "engine/StandIns.h"
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

using orvane::EngineHandover;
using test::ConstantEngine;
using test::EngineCensus;

TEST(EngineHandover, StartsEmpty) {
    EngineHandover handover;
    EXPECT_EQ(EngineHandover::Reader(handover).engine(), nullptr);
    EXPECT_EQ(handover.current(), nullptr);
}

TEST(EngineHandover, GivesTheReaderWhatWasPublishedAndTheWriterWhatStoodBefore) {
    EngineCensus census;
    const auto first = std::make_shared<ConstantEngine>(1.0f, census);
    const auto second = std::make_shared<ConstantEngine>(2.0f, census);
    EngineHandover handover(first);
    EXPECT_EQ(EngineHandover::Reader(handover).engine(), first.get());
    EXPECT_EQ(handover.exchange(second), first);
    EXPECT_EQ(EngineHandover::Reader(handover).engine(), second.get());
    EXPECT_EQ(handover.exchange(nullptr), second);
    EXPECT_EQ(EngineHandover::Reader(handover).engine(), nullptr);
}

TEST(EngineHandover, ReadingNeitherLocksNorAllocates) {
    EngineCensus census;
    EngineHandover handover(std::make_shared<ConstantEngine>(1.0f, census));
    const test::RealtimeScope scope;
    { const EngineHandover::Reader reader(handover); }
    EXPECT_EQ(scope.violations().total(), 0u);
}

TEST(EngineHandover, AWriterWaitsUntilTheReaderHasLeft) {
    EngineCensus census;
    EngineHandover handover(std::make_shared<ConstantEngine>(1.0f, census));
    std::atomic<bool> returned{false};
    std::thread writer;
    {
        const EngineHandover::Reader reader(handover);
        writer = std::thread([&] {
            handover.exchange(nullptr).reset();
            returned = true;
        });
        // As long as the scope stands, the engine is alive, whatever the writer does.
        for (int look = 0; look < 1000; ++look) {
            EXPECT_EQ(census.alive, 1);
            EXPECT_FALSE(returned);
        }
    }
    writer.join();
    EXPECT_EQ(census.alive, 0);
}

/// Stress: a reader that uses what it gets while a writer replaces it. Under AddressSanitizer and
/// ThreadSanitizer a use after free or a race shows; everywhere, no engine may die on the reader's thread.
TEST(EngineHandover, NoEngineDiesWhileOrWhereItIsRead) {
    EngineCensus census;
    {
        EngineHandover handover(std::make_shared<ConstantEngine>(1.0f, census));
        std::atomic<bool> done{false};
        std::thread audio([&] {
            EngineCensus::forbiddenHere() = true;
            orvane::SampleBuffer block(2, 8);
            while (!done) {
                const EngineHandover::Reader reader(handover);
                reader.engine()->process(block, block);
                EXPECT_GE(block.channelPointers[0][7], 1.0f);
            }
        });
        for (int round = 0; round < 300; ++round)
            handover.exchange(std::make_shared<ConstantEngine>(static_cast<float>(round + 1), census));
        done = true;
        audio.join();
    }
    EXPECT_FALSE(census.diedWhereForbidden);
    EXPECT_EQ(census.alive, 0);
}

} // namespace
