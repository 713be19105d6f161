// SPDX-License-Identifier: GPL-3.0-or-later
// A machine with nothing to spare: every core has more to do than it can while a Scene is changed. The audio thread is
// never made to wait by us (a voluntary switch would show it), and a rebuild is done within what it costs.
#include "Arrangements.h"
#include "Census.h"
#include "Child.h"
#include "Play.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <ctime>
#include <fstream>
#include <functional>
#include <iostream>
#include <thread>

#include <pthread.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace rawhost;
using ::test::RealtimeScope;
using ::testing::HasSubstr;
using Clock = std::chrono::steady_clock;

constexpr std::size_t width = 16;
constexpr int block = 256;

bool isInstalled() { return std::system("command -v stress-ng > /dev/null") == 0; }

/// How many threads of the machine want a core, as the kernel tells.
unsigned runnableThreads() {
    std::ifstream file("/proc/loadavg");
    std::string average;
    unsigned wanting = 0;
    file >> average >> average >> average >> wanting;
    return wanting;
}

unsigned coreCount() { return std::max(1u, std::thread::hardware_concurrency()); }

/// stress-ng with all its workers, until its end.
class StressProcess {
public:
    StressProcess() {
        const std::string workers = std::to_string(4 * coreCount());
        std::array<std::string, 8> words{"stress-ng", "--quiet", "--cpu",      workers,
                                         "--vm",      "1",       "--vm-bytes", "64M"};
        std::array<char*, 9> arguments{};
        std::ranges::transform(words, arguments.begin(), [](std::string& word) { return word.data(); });
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP); // so that its workers end with it
        if (posix_spawnp(&process, "stress-ng", nullptr, &attributes, arguments.data(), environ) != 0)
            throw std::runtime_error("stress-ng cannot be started");
        posix_spawnattr_destroy(&attributes);
    }
    ~StressProcess() {
        stop();
        waitpid(process, nullptr, 0);
    }
    StressProcess(const StressProcess&) = delete;
    StressProcess& operator=(const StressProcess&) = delete;

    bool runs() const { return !hasEnded(WNOHANG); }
    /// Returns when it has ended.
    void stop() const {
        kill(-process, SIGKILL);
        hasEnded(0);
    }

private:
    /// Leaves it to be waited for, so that its number stays its own.
    bool hasEnded(int how) const {
        siginfo_t end{};
        return waitid(P_PID, static_cast<id_t>(process), &end, WEXITED | WNOWAIT | how) == 0 &&
               end.si_pid != 0;
    }

    pid_t process = 0;
};

/// Everything that the machine's cores can do, and more, until its end.
///
/// Errors  std::runtime_error from the constructor when the cores do not become busy.
class FullLoad {
public:
    explicit FullLoad(unsigned busy = 2 * coreCount(),
                      std::chrono::seconds patience = std::chrono::seconds(30)) {
        const auto end = Clock::now() + patience;
        while (runnableThreads() <= busy) {
            if (Clock::now() >= end || !stress.runs())
                throw std::runtime_error("the cores did not become busy");
            std::this_thread::yield();
        }
    }

    /// Whether the load is there still, and more threads want a core than there are.
    bool isOn() const { return stress.runs() && runnableThreads() > coreCount(); }
    void stop() const { stress.stop(); }

private:
    StressProcess stress;
};

double secondsOf(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// How often the calling thread has given its core away by itself.
long voluntarySwitches() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nvcsw;
}

/// Plays on a thread of its own, block upon block, and counts what made it wait.
class AudioThread {
public:
    AudioThread(const RawPlugin& plugin, std::function<void()> spoil)
        : plugin(plugin), spoil(std::move(spoil)), thread([this] { run(); }) {
        pthread_getcpuclockid(thread.native_handle(), &clock);
    }
    ~AudioThread() {
        running = false;
        thread.join();
    }
    AudioThread(const AudioThread&) = delete;
    AudioThread& operator=(const AudioThread&) = delete;

    double processorSeconds() const { return secondsOf(clock); }

    std::atomic<long> blocks{0};
    std::atomic<long> switches{0};
    std::atomic<long> calls{0};
    std::atomic<bool> finite{true};

private:
    void run() {
        Channels from = noise(width, block);
        Channels to = silence(2, block);
        std::array<float*, width> inputs{};
        std::ranges::transform(from, inputs.begin(), [](auto& channel) { return channel.data(); });
        std::array<float*, 2> outputs{to[0].data(), to[1].data()};
        for (; running; ++blocks) {
            const long before = voluntarySwitches();
            {
                const RealtimeScope scope;
                plugin.process(inputs.data(), width, outputs.data(), 2, block);
                if (spoil)
                    spoil();
                const auto seen = scope.violations();
                calls += static_cast<long>(seen.waits + seen.throws + seen.systemCalls);
            }
            switches += voluntarySwitches() - before;
            finite = isFinite(to) && finite;
        }
    }

    const RawPlugin& plugin;
    std::function<void()> spoil;
    std::atomic<bool> running{true};
    clockid_t clock{};
    std::thread thread; ///< Last: it uses all the others.
};

/// @param limit of processor time for a rebuild, in seconds.
/// @param ease  runs before each rebuild.
std::string rebuilding(int rounds, double limit, const std::function<void()>& spoil = {},
                       const std::function<void(const FullLoad&)>& ease = {}) {
    Findings findings;
    const RawModule module(KESTRUM_BUNDLE);
    const RawPlugin plugin(module);
    plugin.arrange(lowBitArrangement(width).speakers, 0x3);
    plugin.choose("Speaker Layouts", "9.1.6");
    plugin.prepare(192000, block);
    const std::size_t threadsAtRest = takeCensus().threads + 1; // the audio thread
    const FullLoad load;
    AudioThread audio(plugin, spoil);
    double longest = 0;
    double dearest = 0;
    for (int round = 0; round < rounds; ++round) {
        if (ease)
            ease(load);
        const auto start = Clock::now();
        const double spent = secondsOf(CLOCK_PROCESS_CPUTIME_ID) - audio.processorSeconds();
        plugin.controller().setParamNormalized(plugin.parameterId("Scenes"), round % 2 == 0 ? 1.0 : 0.0);
        while (takeCensus().threads <= threadsAtRest) // a task waits for the end of each fade
            std::this_thread::sleep_for(std::chrono::milliseconds(1)); // leaves the cores to the others
        longest = std::max(longest, std::chrono::duration<double>(Clock::now() - start).count());
        dearest = std::max(dearest, secondsOf(CLOCK_PROCESS_CPUTIME_ID) - audio.processorSeconds() - spent);
        findings.expect(load.isOn(), "the machine was not loaded during a rebuild");
        while (takeCensus().threads > threadsAtRest)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    findings.expect(dearest < limit, "a rebuild took " + std::to_string(dearest) + " s of processor time");
    findings.expect(audio.switches == 0, std::to_string(audio.switches) + " times the audio thread waited");
    findings.expect(audio.calls == 0, std::to_string(audio.calls) + " waits, throws or system calls");
    findings.expect(audio.finite, "no number comes out");
    if (findings.text().empty())
        std::cout << "figure: " << rounds << " rebuilds, the longest done after " << longest << " s ("
                  << dearest << " s of processor time), the audio thread waited in 0 of " << audio.blocks
                  << " blocks" << std::endl;
    return findings.text();
}

constexpr double limitSeconds = 5;

TEST(FullLoads, LetARebuildBeDoneAndTheAudioThreadNeverWait) {
    if (!isInstalled())
        GTEST_SKIP() << "stress-ng is not installed";
    EXPECT_EQ(inChild([] { return rebuilding(roundsOf(5, 50), limitSeconds); }), "");
}

TEST(FullLoadChecks, SeeAWaitOfTheAudioThread) {
    if (!isInstalled())
        GTEST_SKIP() << "stress-ng is not installed";
    EXPECT_THAT(inChild([] { return rebuilding(1, limitSeconds, [] { usleep(100); }); }),
                HasSubstr("times the audio thread waited"));
}

TEST(FullLoadChecks, SeeALoadThatHasEnded) {
    if (!isInstalled())
        GTEST_SKIP() << "stress-ng is not installed";
    const FullLoad load;
    EXPECT_TRUE(load.isOn());
    load.stop();
    EXPECT_FALSE(load.isOn());
    EXPECT_THAT(inChild([] {
                    return rebuilding(1, limitSeconds, {}, [](const FullLoad& ending) { ending.stop(); });
                }),
                HasSubstr("the machine was not loaded during a rebuild"));
}

TEST(FullLoadChecks, SeeCoresThatDoNotBecomeBusy) {
    if (!isInstalled())
        GTEST_SKIP() << "stress-ng is not installed";
    EXPECT_THAT(inChild([] {
                    const FullLoad load(100000, std::chrono::seconds(1));
                    return std::string();
                }),
                "the cores did not become busy");
}

TEST(FullLoadChecks, SeeARebuildThatTakesTooLong) {
    if (!isInstalled())
        GTEST_SKIP() << "stress-ng is not installed";
    EXPECT_THAT(inChild([] { return rebuilding(1, 0.0); }), HasSubstr("a rebuild took"));
}

} // namespace
