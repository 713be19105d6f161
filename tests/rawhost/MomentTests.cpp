// SPDX-License-Identifier: GPL-3.0-or-later
// A host may take an instance away, release it or prepare it anew at any moment of a rebuild or a fade. Bounds are told in
// processor time of the whole process, so that a loaded machine changes nothing; a hang ends by the guard of its process.
#include "Arrangements.h"
#include "Census.h"
#include "Child.h"
#include "Play.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <ctime>
#include <functional>
#include <iostream>
#include <memory>
#include <random>
#include <thread>

#include <unistd.h>

namespace {

using namespace rawhost;
using ::testing::HasSubstr;

constexpr std::size_t width = 12;

double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// One instance that is disturbed again and again.
class Disturbed {
public:
    explicit Disturbed(const RawModule& module, std::function<void()> spoil)
        : module(module), spoil(std::move(spoil)) {
        make();
        // What one build costs: the dearest of some.
        for (const char* scene : {"Stadium", "Kitchen", "Mix Room"}) {
            plugin->choose("Scenes", scene);
            const double start = processorSeconds();
            prepareAgain();
            buildSeconds = std::max(buildSeconds, processorSeconds() - start);
        }
    }

    /// Asks for another engine, plays for a random while and does one of four things to the instance.
    void disturb() {
        plugin->choose("Scenes", std::array{"Stadium", "Kitchen", "Mix Room", "Car"}[random() % 4]);
        if (random() % 4 == 0)
            plugin->choose("Speaker Layouts", random() % 2 == 0 ? "7.1.4" : "5.1 ITU");
        const std::size_t blocks = random() % 300;
        const auto sound = play(*plugin, noise(width, blocks * static_cast<std::size_t>(block)), block);
        findings.expect(isFinite(sound), "no number comes out");
        (takeCensus().threads > threadsAtRest ? whileFading : beforeTheFade) += 1;
        const double start = processorSeconds();
        interrupt(random() % 4);
        if (spoil)
            spoil();
        const double spent = processorSeconds() - start;
        longest = std::max(longest, spent);
        // A rebuild under way, an engine of its own, and as much again for what measuring does not see alike.
        findings.expect(spent < 4 * buildSeconds + 0.1, "took " + std::to_string(spent) + " s, a build " +
                                                            std::to_string(buildSeconds) + " s");
        expectSound();
    }

    Findings findings;
    int whileFading = 0;
    int beforeTheFade = 0;
    double longest = 0;

private:
    void make() {
        plugin.reset();
        plugin = std::make_unique<RawPlugin>(module);
        plugin->arrange(lowBitArrangement(width).speakers, 0x3);
        plugin->choose("Speaker Layouts", "7.1.4");
        prepareAgain();
        threadsAtRest = takeCensus().threads;
    }

    void prepareAgain() { plugin->prepare(rate, block); }

    void interrupt(unsigned how) {
        if (how == 0) {
            make();
        } else if (how == 1) {
            plugin->activate(false);
            findings.expect(peakOf(play(*plugin, noise(width, 256), block)) == 0.0f,
                            "sound after the release");
            prepareAgain();
        } else {
            rate = how == 2 ? rate : (rate == 48000 ? 44100 : 48000);
            block = how == 2 ? block : (block == 64 ? 100 : 64);
            prepareAgain();
        }
    }

    void expectSound() {
        const auto sound = play(*plugin, noise(width, 4096), block);
        findings.expect(isFinite(sound) && peakOf(sound) > 0.0f, "silence, or no number");
    }

    const RawModule& module;
    std::function<void()> spoil;
    std::unique_ptr<RawPlugin> plugin;
    std::mt19937 random{7};
    std::size_t threadsAtRest = 0;
    double rate = 48000;
    int block = 64;
    double buildSeconds = 0;
};

std::string disturbances(int count, const std::function<void()>& spoil = {}) {
    const RawModule module(KESTRUM_BUNDLE);
    Disturbed instance(module, spoil);
    for (int turn = 0; turn < count && instance.findings.text().empty(); ++turn)
        instance.disturb();
    // Otherwise the moments were not those that are meant.
    instance.findings.expect(instance.whileFading > count / 20, "hardly a moment within a fade");
    instance.findings.expect(instance.beforeTheFade > count / 20, "hardly a moment before a fade");
    if (instance.findings.text().empty())
        std::cout << "figure: " << count << " moments, " << instance.whileFading
                  << " with a fade under way; the longest return took " << instance.longest * 1000
                  << " ms of processor time" << std::endl;
    return instance.findings.text();
}

TEST(Moments, AnInstanceIsTakenAwayReleasedOrPreparedAtAnyMomentOfARebuildOrFade) {
    EXPECT_EQ(inChild([] { return disturbances(roundsOf(150, 1000)); }), "");
}

/// Releasing while a block runs on another thread: the block ends, and silence follows.
TEST(Moments, AnInstanceIsReleasedWhileTheAudioThreadPlaysOn) {
    EXPECT_EQ(
        inChild([] {
            Findings findings;
            const RawModule module(KESTRUM_BUNDLE);
            const RawPlugin plugin(module);
            plugin.prepare(48000, 64);
            std::atomic<bool> finite{true};
            const int rounds = roundsOf(100, 1000);
            for (int turn = 0; turn < rounds; ++turn) {
                plugin.controller().setParamNormalized(plugin.parameterId("Scenes"), turn % 16 / 15.0);
                std::atomic<bool> running{true};
                std::atomic<int> played{0};
                std::thread audio([&] {
                    const Channels input = noise(2, 64);
                    for (; running; ++played)
                        finite = isFinite(play(plugin, input, 64)) && finite;
                });
                while (played < turn % 50 + 1)
                    std::this_thread::yield();
                plugin.activate(false);
                running = false;
                audio.join();
                findings.expect(peakOf(play(plugin, noise(2, 64), 64)) == 0.0f, "sound after the release");
                plugin.activate(true); // not while a block runs: the framework's own memory is made anew
            }
            findings.expect(finite, "no number comes out");
            return findings.text();
        }),
        "");
}

TEST(MomentChecks, SeeAReturnThatTakesTooLong) {
    const auto slow = [] {
        for (const double start = processorSeconds(); processorSeconds() - start < 2;) {
        }
    };
    EXPECT_THAT(inChild([&] { return disturbances(1, slow); }), HasSubstr("took 2."));
}

TEST(MomentChecks, SeeAReturnThatNeverComes) {
    const auto hang = [] {
        for (;;)
            pause();
    };
    EXPECT_THAT(inChild([&] { return disturbances(1, hang); }, std::chrono::seconds(5)), HasSubstr("hung"));
}

} // namespace
