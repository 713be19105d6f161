// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/zmtl/Sleep.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <thread>

namespace {

using namespace std::chrono_literals;
using Sleep = zmtl::internal::Sleep<std::condition_variable_any>;
using Clock = std::chrono::steady_clock;

/// Sleeps in long naps until it is told to stop, like a task that waits for the end of a fade.
class Sleeper {
public:
    explicit Sleeper(zmtl::ISleep& sleep) : sleep(&sleep), thread([this] { run(); }) {}

    /// Ends the nap. A wake that comes between the check and the nap is lost, so it is repeated.
    void stop() {
        running = false;
        while (!ended)
            sleep->wake();
        thread.join();
    }

private:
    void run() {
        while (running)
            sleep->sleepFor(10min);
        ended = true;
    }

    std::atomic<bool> running{true};
    std::atomic<bool> ended{false};
    zmtl::ISleep* sleep;
    std::thread thread; // last: everything else is there when it starts
};

// A nap of ten minutes that is not ended by wake() runs into the time limit of the test.
TEST(Sleep, IsEndedByAWake) {
    Sleep sleep;
    const auto start = Clock::now();
    Sleeper sleeper(sleep);
    sleeper.stop();
    EXPECT_LT(Clock::now() - start, 10min);
}

TEST(Sleep, IsEndedForEveryoneWhoSleepsOnIt) {
    Sleep sleep;
    const auto start = Clock::now();
    Sleeper first(sleep);
    Sleeper second(sleep);
    first.stop();
    second.stop();
    EXPECT_LT(Clock::now() - start, 10min);
}

// The wait may end early for no reason, so its length is measured over as many naps as it takes.
TEST(Sleep, EndsByItselfWhenTheTimeIsOver) {
    Sleep sleep;
    const auto start = Clock::now();
    int naps = 0;
    while (Clock::now() - start < 20ms) {
        sleep.sleepFor(20ms);
        ++naps;
    }
    EXPECT_GE(Clock::now() - start, 20ms);
    EXPECT_LT(naps, 1000) << "a nap returns at once instead of waiting";
}

TEST(Sleep, OfNoTimeAtAllReturns) {
    Sleep sleep;
    const auto start = Clock::now();
    sleep.sleepFor(0ms);
    EXPECT_LT(Clock::now() - start, 10min);
}

TEST(Sleep, WakingNobodyDoesNotShortenALaterSleep) {
    Sleep sleep;
    sleep.wake();
    const auto start = Clock::now();
    int naps = 0;
    for (; Clock::now() - start < 10ms; ++naps)
        sleep.sleepFor(10ms);
    EXPECT_LT(naps, 1000);
}

// Whoever shares the mutex would wait for ever for a sleeper that kept it.
TEST(Sleep, LeavesASharedMutexFreeWhileItWaits) {
    const auto mutex = std::make_shared<std::mutex>();
    Sleep sleep(mutex);
    Sleep other(mutex);
    const auto start = Clock::now();
    Sleeper sleeper(sleep);
    Sleeper neighbour(other);
    for (int turn = 0; turn < 100; ++turn)
        const std::lock_guard lock(*mutex);
    neighbour.stop();
    sleeper.stop();
    EXPECT_LT(Clock::now() - start, 10min);
}

} // namespace
