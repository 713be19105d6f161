// SPDX-License-Identifier: GPL-3.0-or-later
// A host that loads and unloads the module again and again gets back whatever it gave: threads, descriptors, addresses.
// Expected symbols: the three entry points, none of a kind that keeps a module loaded.
#include "Census.h"
#include "Child.h"
#include "Play.h"
#include "host/Module.h"
#include "support/CommandOutput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <iostream>

namespace {

using namespace rawhost;
using ::testing::AllOf;
using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::Not;

const std::filesystem::path& binary() {
    static const auto path = orvane::kestrum::host::Module::binaryOf(KESTRUM_BUNDLE);
    return path;
}

std::string inQuotes(const std::filesystem::path& path) { return "'" + path.string() + "'"; }

/// Loads a module, uses it and unloads it. What is there after the first round may stay, what comes with each may not.
std::string loading(const std::filesystem::path& module, int rounds,
                    const std::function<void(const RawModule&, Findings&)>& use) {
    Findings findings;
    const std::size_t threads = takeCensus().threads;
    std::size_t descriptors = 0;
    for (int round = 0; round < rounds && findings.text().empty(); ++round) {
        {
            const RawModule loaded(module);
            findings.expect(isMapped(module), "not mapped while loaded");
            use(loaded, findings);
        }
        const Census now = censusOnceSettled(threads);
        if (round == 0)
            descriptors = now.descriptors;
        expectNoMore(findings, {threads, descriptors, 0}, now, SIZE_MAX / 2);
        findings.expect(!isMapped(module), "still mapped");
        if (!findings.text().empty())
            return "round " + std::to_string(round) + ": " + findings.text();
    }
    return {};
}

/// An effect that has played, was rebuilt and is taken away in the middle of it.
void playAndRebuild(const RawModule& module, Findings& findings) {
    const RawPlugin plugin(module);
    plugin.prepare(48000, 256);
    plugin.choose("Scenes", "Kitchen");
    const auto sound = play(plugin, noise(2, 20 * 256), 256);
    findings.expect(isFinite(sound) && peakOf(sound) > 0.01f, "silence, or no number");
    plugin.activate(false);
}

std::string dynamicSymbols(const std::filesystem::path& module) {
    return ::test::outputOf("nm -D --defined-only " + inQuotes(module));
}

TEST(Loading, LeavesNothingBehindRoundAfterRound) {
    const int rounds = roundsOf(40, 200);
    EXPECT_EQ(inChild([&] { return loading(binary(), rounds, playAndRebuild); }), "");
    std::cout << "figure: " << rounds
              << " loads and unloads, no thread or descriptor left, unmapped each time\n";
}

TEST(Loading, LeavesNothingBehindOfInstancesThatNeverPlayed) {
    EXPECT_EQ(inChild([] {
                  return loading(binary(), 10, [](const RawModule& module, Findings&) { RawPlugin{module}; });
              }),
              "");
}

TEST(Loading, LeavesNothingBehindOfAModuleThatWasOnlyAskedForItsFactory) {
    EXPECT_EQ(inChild([] { return loading(binary(), 10, [](const RawModule&, Findings&) {}); }), "");
}

TEST(Loading, OffersTheEntryPointsAndNoSymbolThatKeepsTheModuleLoaded) {
    EXPECT_THAT(::test::outputOf("nm -D --defined-only " + inQuotes(binary()) + " | cut -d' ' -f2- | sort"),
                "T GetPluginFactory\nT ModuleEntry\nT ModuleExit\n");
    EXPECT_THAT(::test::outputOf("readelf -d " + inQuotes(binary())),
                AllOf(HasSubstr("NEEDED"), Not(HasSubstr("NODELETE"))));
}

TEST(LoadingChecks, SeeAThreadThatStays) {
    // It may still be on its way into its endless wait: then its code is taken away under it.
    EXPECT_THAT(inChild([] { return loading(LEAVES_A_THREAD, 2, [](const RawModule&, Findings&) {}); }),
                AnyOf(HasSubstr("1 threads are left"), HasSubstr("ended by signal 11")));
}

TEST(LoadingChecks, SeeAModuleThatStays) {
    EXPECT_THAT(dynamicSymbols(CANNOT_BE_UNLOADED), HasSubstr(" u ")); // the compiler has made such a symbol
    EXPECT_THAT(inChild([] { return loading(CANNOT_BE_UNLOADED, 2, [](const RawModule&, Findings&) {}); }),
                HasSubstr("still mapped"));
}

TEST(LoadingChecks, SeeADescriptorThatStays) {
    EXPECT_THAT(inChild([] {
                    return loading(binary(), 3, [](const RawModule&, Findings&) {
                        [[maybe_unused]] auto* const stays = std::fopen("/dev/null", "r");
                    });
                }),
                HasSubstr("1 descriptors are left"));
}

} // namespace
