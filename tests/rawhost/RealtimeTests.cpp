// SPDX-License-Identifier: GPL-3.0-or-later
// What the shipped module does on a host's audio thread besides arithmetic. The framework's wrapper allocates, frees and
// locks a little in every block of its own, with or without an engine behind it: a block of an instance that is not active
// runs the wrapper and nothing else but a clearing of the buffer, so what a block of a playing instance does more is ours.
#include "Arrangements.h"
#include "Census.h"
#include "Child.h"
#include "Play.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <mutex>
#include <random>
#include <sstream>

#include <unistd.h>

namespace {

using namespace rawhost;
using ::test::RealtimeScope;
using ::test::RealtimeViolations;
using ::testing::HasSubstr;

struct Session {
    std::size_t width;
    const char* layout;
    double rate;
    int block;
};
constexpr std::array<Session, 8> sessions{{{2, "2.0 +/-30°", 48000, 64},
                                           {6, "5.1 ITU", 48000, 32},
                                           {8, "7.1", 44100, 64},
                                           {12, "7.1.4", 96000, 64},
                                           {16, "9.1.6", 48000, 128},
                                           {1, "1.0", 24000, 2},
                                           {14, "13.1", 192000, 256},
                                           {5, "5.0 Film", 88200, 63}}};

/// One block's memory, and what the plug-in does in it.
class WatchedBlocks {
public:
    WatchedBlocks(const RawPlugin& plugin, const Session& session)
        : plugin(plugin),
          frames(session.block),
          from(noise(session.width, static_cast<std::size_t>(session.block))),
          to(silence(2, static_cast<std::size_t>(session.block))) {
        std::ranges::transform(from, std::back_inserter(inputs),
                               [](auto& channel) { return channel.data(); });
    }

    /// @param spoil runs inside the watch: a fault that has to be seen.
    RealtimeViolations next(const std::function<void()>& spoil = {}, BlockEdits* edits = nullptr) {
        std::array<float*, 2> outputs{to[0].data(), to[1].data()};
        const RealtimeScope scope;
        plugin.process(inputs.data(), inputs.size(), outputs.data(), 2, frames, edits);
        if (spoil)
            spoil();
        return scope.violations();
    }

    bool sounds() const { return isFinite(to) && peakOf(to) > 0.01f; }

private:
    const RawPlugin& plugin;
    int frames;
    Channels from;
    Channels to;
    std::vector<float*> inputs;
};

/// What the wrapper alone does in a block. The first ones may fill the allocator's caches.
RealtimeViolations wrapperAlone(WatchedBlocks& blocks) {
    for (int turn = 0; turn < 100; ++turn)
        blocks.next();
    return blocks.next();
}

std::string told(const RealtimeViolations& seen) {
    std::ostringstream text;
    text << seen;
    return text.str();
}

/// Plays blocks while parameters move, engines are rebuilt and fade.
class WatchedSession {
public:
    /// @param spoil runs in each block's watch.
    WatchedSession(const RawModule& module, const Session& session, std::function<void(int)> spoil)
        : session(session),
          plugin(prepared(module, session)),
          blocks(*plugin, session),
          wrapper(wrapperAlone(blocks)),
          spoil(std::move(spoil)) {
        plugin->activate(true);
        threadsAtRest = takeCensus().threads;
    }

    /// @return what was found wrong, or nothing.
    std::string play(int blockCount) {
        // Otherwise the module does not use the functions that are counted.
        if (wrapper.allocations != 1 || wrapper.locks != 1)
            return "the wrapper alone: " + told(wrapper);
        while (finding.empty() && played < blockCount) {
            move(played);
            next();
            if (played >= nextChange) {
                changeTheStructure();
                playUntilTheFadeBegins();
                nextChange = played + 500;
            }
        }
        return finding.empty() && !sounded ? "silence, or no number" : finding;
    }
    int fadeCount() const { return fades; }

private:
    static std::unique_ptr<RawPlugin> prepared(const RawModule& module, const Session& session) {
        auto plugin = std::make_unique<RawPlugin>(module);
        plugin->arrange(lowBitArrangement(session.width).speakers, 0x3);
        plugin->choose("Speaker Layouts", session.layout);
        plugin->setUp(session.rate, session.block);
        return plugin;
    }

    /// What happens between two blocks: a turn of the head now and then, other values, another Scene or layout.
    void move(int turn) {
        const auto number = [&] { return static_cast<double>(random()) / std::mt19937::max(); };
        if (turn % 7 == 0)
            plugin->flush({{plugin->parameterId("Head Rotation"), number()}});
        if (turn % 61 == 0)
            plugin->flush({{plugin->parameterId("Ambience"), number()},
                           {plugin->parameterId("Focus"), number()},
                           {plugin->parameterId("Master Gain"), number()}});
    }

    /// Another Scene every time, another layout every fourth: each a new engine.
    void changeTheStructure() {
        const bool even = changes % 2 == 0;
        if (changes % 4 == 3)
            plugin->choose("Speaker Layouts", changes % 8 == 3 ? "1.0" : session.layout);
        plugin->choose("Scenes", even ? "Kitchen" : "Stadium");
        ++changes;
    }

    void next() {
        const int turn = played++;
        const RealtimeViolations seen = blocks.next([&] {
            if (spoil)
                spoil(turn);
        });
        if (!(seen == wrapper))
            finding =
                "block " + std::to_string(turn) + ": " + told(seen) + ", the wrapper alone: " + told(wrapper);
        sounded = sounded || blocks.sounds();
    }

    /// A task waits for the end of each fade, and shows that one is there.
    void playUntilTheFadeBegins() {
        constexpr int guard = 100000;
        for (int turn = 0; turn < guard && finding.empty(); ++turn) {
            if (takeCensus().threads > threadsAtRest) {
                ++fades;
                return;
            }
            next();
        }
        if (finding.empty())
            finding = "no fade after block " + std::to_string(played);
    }

    Session session;
    std::unique_ptr<RawPlugin> plugin;
    WatchedBlocks blocks;
    RealtimeViolations wrapper;
    std::function<void(int)> spoil;
    std::mt19937 random{1};
    std::size_t threadsAtRest = 0;
    int played = 0;
    int fades = 0;
    int changes = 0;
    int nextChange = 0;
    bool sounded = false;
    std::string finding;
};

/// @return the first block in which more happened than in one of the wrapper's own.
std::string watched(const Session& session, int blockCount, const std::function<void(int)>& spoil = {}) {
    const RawModule module(KESTRUM_BUNDLE);
    WatchedSession playing(module, session, spoil);
    std::string finding = playing.play(blockCount);
    if (finding.empty())
        std::cout << "figure: " << blockCount << " blocks with " << playing.fadeCount()
                  << " fades, 0 allocations, frees, locks, waits, throws"
                  << (RealtimeScope::seesSystemCalls() ? ", system calls" : "") << " beyond the wrapper's"
                  << std::endl;
    return finding;
}

TEST(RealtimeModule, IsWatchedForSystemCallsInTheReleaseTier) {
    if (!RealtimeScope::countingWorks)
        GTEST_SKIP() << "a sanitizer owns the allocator";
    if (roundsOf(0, 1) == 1) {
        EXPECT_TRUE(RealtimeScope::seesSystemCalls()) << "this kernel does not show system calls";
    }
}

class RealtimeSessions : public ::testing::TestWithParam<Session> {};

TEST_P(RealtimeSessions, DoNothingInABlockThatTheWrapperAloneDoesNotDo) {
    if (!RealtimeScope::countingWorks)
        GTEST_SKIP() << "a sanitizer owns the allocator";
    const int blockCount = roundsOf(5000, 130000);
    EXPECT_EQ(inChild([&] { return watched(GetParam(), blockCount); }), "");
}
INSTANTIATE_TEST_SUITE_P(AtWidthsRatesAndBlocks, RealtimeSessions, ::testing::ValuesIn(sessions),
                         [](const auto& session) {
                             return "Channels" + std::to_string(session.param.width) + "Block" +
                                    std::to_string(session.param.block);
                         });

/// Writes a parameter in every block, as a host's automation does on its audio thread. The framework locks its list of
/// listeners for it; what the listeners do is ours.
///
/// @param spoil runs in each block's watch.
std::string written(const std::string& parameter, int blockCount,
                    const std::function<void(int)>& spoil = {}) {
    const RawModule module(KESTRUM_BUNDLE);
    const RawPlugin plugin(module);
    plugin.setUp(sessions[0].rate, sessions[0].block);
    WatchedBlocks blocks(plugin, sessions[0]);
    RealtimeViolations allowed = wrapperAlone(blocks);
    plugin.activate(true);
    const auto edits = orvane::kestrum::host::makeHostObject<BlockEdits>();
    const Vst::ParamID id = plugin.parameterId(parameter);
    const std::uint64_t ofTheList = allowed.locks + 1;
    bool sounded = false;
    for (int turn = 0; turn < blockCount; ++turn) {
        edits->set({{id, turn * 7 % 101 / 101.0}});
        const RealtimeViolations seen = blocks.next(
            [&] {
                if (spoil)
                    spoil(turn);
            },
            edits.get());
        allowed.locks = std::min(seen.locks, ofTheList);
        if (!(seen == allowed))
            return parameter + ", block " + std::to_string(turn) + ": " + told(seen);
        sounded = sounded || blocks.sounds();
    }
    return sounded ? "" : parameter + ": silence, or no number";
}

TEST(RealtimeModule, DoesNothingMoreWhenParametersAreWrittenInItsBlocks) {
    if (!RealtimeScope::countingWorks)
        GTEST_SKIP() << "a sanitizer owns the allocator";
    for (const char* parameter :
         {"Speaker Layouts", "Scenes", "Ambience", "Focus", "Head Rotation", "Master Gain"})
        EXPECT_EQ(inChild([&] { return written(parameter, roundsOf(1000, 20000)); }), "");
}

void allocate() {
    void* volatile memory = std::malloc(16); // volatile: a pair that is not used may be optimised away
    std::free(memory);
}

TEST(RealtimeModuleChecks, SeeAnAllocationInABlockInWhichAParameterIsWritten) {
    if (!RealtimeScope::countingWorks)
        GTEST_SKIP() << "a sanitizer owns the allocator";
    EXPECT_THAT(
        inChild([] { return written("Focus", 400, [](int turn) { turn == 333 ? allocate() : void(); }); }),
        HasSubstr("Focus, block 333: 2 allocations, 2 frees"));
}

TEST(RealtimeModuleChecks, SeeAnInstanceThatIsSilentWhileAParameterIsWritten) {
    if (!RealtimeScope::countingWorks)
        GTEST_SKIP() << "a sanitizer owns the allocator";
    EXPECT_THAT(inChild([] { return written("Focus", 1); }), "Focus: silence, or no number"); // not yet begun
}

TEST(RealtimeModuleChecks, SeeASingleBlockThatDoesMore) {
    if (!RealtimeScope::countingWorks)
        GTEST_SKIP() << "a sanitizer owns the allocator";
    const auto spoiledBy = [](const std::function<void()>& fault) {
        return inChild(
            [&] { return watched(sessions[0], 400, [&](int turn) { turn == 333 ? fault() : void(); }); });
    };
    EXPECT_THAT(spoiledBy(allocate), HasSubstr("block 333: 2 allocations, 2 frees"));
    EXPECT_THAT(spoiledBy([] {
                    std::mutex mutex;
                    const std::lock_guard lock(mutex);
                }),
                HasSubstr("block 333: 1 allocations, 1 frees, 2 locks"));
    EXPECT_THAT(spoiledBy([] {
                    try {
                        throw 1;
                    } catch (int) {
                    }
                }),
                HasSubstr("1 throws"));
    if (RealtimeScope::seesSystemCalls()) {
        EXPECT_THAT(spoiledBy([] { usleep(1); }), HasSubstr("1 system calls"));
    }
}

} // namespace
