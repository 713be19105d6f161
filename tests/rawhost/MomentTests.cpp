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
#include <cmath>
#include <cstdint>
#include <ctime>
#include <functional>
#include <iostream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
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

enum class Return : std::uint8_t { deletion, release, preparation, preparationAtAnotherRate };
constexpr std::array<const char*, 4> returnNames{"deletion", "release", "preparation",
                                                 "preparation at another rate"};

/// Seconds of processor time, by Return.
using ReturnTimes = std::array<double, returnNames.size()>;

/// One instance that is disturbed again and again.
class Disturbed {
public:
    /// Runs within each measured call, with what that may take.
    using Spoil = std::function<void(Return call, double bound)>;

    explicit Disturbed(const RawModule& module, Spoil spoil) : module(module), spoil(std::move(spoil)) {
        measureBuilds();
    }

    /// What builds cost on the machine as it is now; what they have cost before stays when it was more.
    void measureBuilds() {
        make();
        for (const char* scene : {"Stadium", "Kitchen", "Mix Room"}) {
            plugin->choose("Scenes", scene);
            playThroughTheFade();
            buildSeconds = std::max(buildSeconds, spentIn([this] { prepareAgain(); }));
            takeOtherRate();
            otherRateSeconds = std::max(otherRateSeconds, spentIn([this] { prepareAgain(); }));
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
        interrupt(static_cast<Return>(random() % returnNames.size()));
        expectSound();
    }

    Findings findings;
    Findings late; ///< Returns beyond their bound.
    int lateCount = 0;
    int whileFading = 0;
    int beforeTheFade = 0;
    ReturnTimes longest{};
    double buildSeconds = 0;     ///< The dearest of some preparations alone.
    double otherRateSeconds = 0; ///< The same, when each has the responses of its rate to load.

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
    void takeOtherRate() {
        rate = rate == 48000 ? 44100 : 48000;
        block = block == 64 ? 100 : 64;
    }

    /// A task waits for the end of each fade: it comes and goes.
    void playThroughTheFade() const {
        for (const bool isThere : {true, false})
            for (int turn = 0; (takeCensus().threads > threadsAtRest) != isThere; ++turn) {
                constexpr int guard = 1000000;
                if (turn == guard)
                    throw std::runtime_error("no fade, or no end of it");
                play(*plugin, noise(width, static_cast<std::size_t>(block)), block);
            }
    }

    static double spentIn(const std::function<void()>& call) {
        const double start = processorSeconds();
        call();
        return processorSeconds() - start;
    }

    /// What a call may cost: a rebuild that is under way, and an engine of its own where it makes one.
    double bound(Return which) const {
        // On a machine with other work, the same instructions may take twice the time that they took when they were measured.
        constexpr double inflation = 2;
        constexpr double margin = 0.002; // the end of engines and threads, a poll of the rebuilding task
        const double own = which == Return::preparation                ? buildSeconds
                           : which == Return::preparationAtAnotherRate ? otherRateSeconds
                                                                       : 0;
        return inflation * (buildSeconds + own) + margin;
    }

    void measure(Return which, const std::function<void()>& call) {
        const double spent = spentIn([&] {
            call();
            if (spoil)
                spoil(which, bound(which));
        });
        const auto index = static_cast<std::size_t>(which);
        longest[index] = std::max(longest[index], spent);
        if (spent < bound(which))
            return;
        ++lateCount;
        late.expect(false, std::string("the ") + returnNames[index] + " took " + std::to_string(spent) +
                               " s, a build " + std::to_string(buildSeconds) + " s");
        findings.expect(spent < 3 * bound(which), late.text());
    }

    void interrupt(Return how) {
        switch (how) {
        case Return::deletion:
            measure(how, [this] { plugin.reset(); });
            make();
            break;
        case Return::release:
            measure(how, [this] { plugin->activate(false); });
            findings.expect(peakOf(play(*plugin, noise(width, 256), block)) == 0.0f,
                            "sound after the release");
            measure(Return::preparation, [this] { prepareAgain(); });
            break;
        case Return::preparationAtAnotherRate:
            takeOtherRate();
            [[fallthrough]];
        case Return::preparation:
            measure(how, [this] { prepareAgain(); });
        }
    }

    void expectSound() {
        const auto sound = play(*plugin, noise(width, 4096), block);
        findings.expect(isFinite(sound) && peakOf(sound) > 0.0f, "silence, or no number");
    }

    const RawModule& module;
    Spoil spoil;
    std::unique_ptr<RawPlugin> plugin;
    std::mt19937 random{7};
    std::size_t threadsAtRest = 0;
    double rate = 48000;
    int block = 64;
};

double inMilliseconds(double seconds) { return std::round(seconds * 1e4) / 10; }

std::string disturbances(int count, const Disturbed::Spoil& spoil = {}) {
    const RawModule module(KESTRUM_BUNDLE);
    Disturbed instance(module, spoil);
    for (int turn = 0; turn < count && instance.findings.text().empty(); ++turn) {
        constexpr int often = 50;
        if (turn % often == often - 1)
            instance.measureBuilds();
        instance.disturb();
    }
    // A machine under load may hold one up, say while it reads the responses anew, but no more than that.
    instance.findings.expect(instance.lateCount <= count / 100, instance.late.text());
    // Otherwise the moments were not those that are meant.
    instance.findings.expect(instance.whileFading > count / 20, "hardly a moment within a fade");
    instance.findings.expect(instance.beforeTheFade > count / 20, "hardly a moment before a fade");
    if (instance.findings.text().empty()) {
        std::cout << "figure: " << count << " moments, " << instance.whileFading << " with a fade under way, "
                  << instance.lateCount << " beyond their bound; the longest return in ms of processor time:";
        for (std::size_t which = 0; which < returnNames.size(); ++which)
            std::cout << " " << returnNames[which] << " " << inMilliseconds(instance.longest[which]) << ",";
        std::cout << " a build alone " << inMilliseconds(instance.buildSeconds) << ", at another rate "
                  << inMilliseconds(instance.otherRateSeconds) << std::endl;
    }
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
                float peak = 0;
                std::thread audio([&] {
                    const Channels input = noise(2, 64);
                    for (; running; ++played) {
                        const Channels sound = play(plugin, input, 64);
                        finite = isFinite(sound) && finite;
                        peak = std::max(peak, peakOf(sound));
                    }
                });
                while (played < turn % 50 + 1)
                    std::this_thread::yield();
                plugin.activate(false);
                running = false;
                audio.join();
                constexpr int fadeIn = 20; // blocks
                findings.expect(played < fadeIn || peak > 0.01f, "silence before the release");
                findings.expect(peakOf(play(plugin, noise(2, 64), 64)) == 0.0f, "sound after the release");
                plugin.activate(true); // not while a block runs: the framework's own memory is made anew
            }
            findings.expect(finite, "no number comes out");
            return findings.text();
        }),
        "");
}

TEST(MomentChecks, SeeAReturnThatTakesTooLong) {
    for (const Return slow :
         {Return::deletion, Return::release, Return::preparation, Return::preparationAtAnotherRate}) {
        const auto asMuchAgain = [slow](Return call, double bound) {
            for (const double start = processorSeconds();
                 call == slow && processorSeconds() - start < bound;) {
            }
        };
        EXPECT_THAT(inChild([&] { return disturbances(30, asMuchAgain); }),
                    HasSubstr(std::string("the ") + returnNames[static_cast<std::size_t>(slow)] + " took "));
    }
}

TEST(MomentChecks, SeeAReturnThatNeverComes) {
    const auto hang = [](Return, double) {
        for (;;)
            pause();
    };
    EXPECT_THAT(inChild([&] { return disturbances(1, hang); }, std::chrono::seconds(5)), HasSubstr("hung"));
}

} // namespace
