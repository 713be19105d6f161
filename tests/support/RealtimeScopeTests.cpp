// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <thread>
#include <vector>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

using test::RealtimeScope;

/// A guard that cannot trip proves nothing: every kind of forbidden call has to be seen.
class RealtimeScopeSees : public ::testing::Test {
protected:
    /// 0 where the sanitizer owns the hooks.
    static std::uint64_t whereCounted(std::uint64_t expected) {
        return RealtimeScope::countingWorks ? expected : 0;
    }
};

TEST_F(RealtimeScopeSees, NothingInPureArithmetic) {
    const RealtimeScope scope;
    volatile float value = 1.0f;
    value = value * 2.0f;
    EXPECT_EQ(scope.violations().total(), 0u);
}

TEST_F(RealtimeScopeSees, AVectorThatGrowsAndDies) {
    const RealtimeScope scope;
    { const std::vector<float> grown(100, 1.0f); }
    const auto seen = scope.violations();
    EXPECT_EQ(seen.allocations, whereCounted(1));
    EXPECT_EQ(seen.frees, whereCounted(1));
}

TEST_F(RealtimeScopeSees, AlignedMemory) {
    const RealtimeScope scope;
    void* volatile block =
        std::aligned_alloc(64, 1024); // volatile: a pair that is not used may be optimised away
    const auto seen = scope.violations();
    std::free(block);
    EXPECT_EQ(seen.allocations, whereCounted(1));
}

TEST_F(RealtimeScopeSees, AMutexEvenWhenItIsFree) {
    std::mutex mutex;
    const RealtimeScope scope;
    { const std::lock_guard lock(mutex); }
    EXPECT_EQ(scope.violations().locks, whereCounted(1));
}

TEST_F(RealtimeScopeSees, ATriedMutex) {
    std::mutex mutex;
    const RealtimeScope scope;
    if (mutex.try_lock())
        mutex.unlock();
    EXPECT_EQ(scope.violations().locks, whereCounted(1));
}

TEST_F(RealtimeScopeSees, AReaderLock) {
    std::shared_mutex mutex;
    const RealtimeScope scope;
    { const std::shared_lock lock(mutex); }
    EXPECT_EQ(scope.violations().locks, whereCounted(1));
}

TEST_F(RealtimeScopeSees, ASleep) {
    const RealtimeScope scope;
    std::this_thread::sleep_for(std::chrono::microseconds(1));
    EXPECT_GE(scope.violations().waits, whereCounted(1));
}

TEST_F(RealtimeScopeSees, AWaitWithATimeLimit) {
    std::mutex mutex;
    std::condition_variable condition;
    std::unique_lock lock(mutex);
    const RealtimeScope scope;
    condition.wait_for(lock, std::chrono::microseconds(1));
    EXPECT_GE(scope.violations().waits, whereCounted(1));
}

TEST_F(RealtimeScopeSees, AYield) {
    const RealtimeScope scope;
    std::this_thread::yield();
    EXPECT_EQ(scope.violations().waits, whereCounted(1));
}

TEST_F(RealtimeScopeSees, TheAtomicSharedPointerLoadOfTheStandardLibrary) {
    // The reason why engines are not handed to the audio thread this way.
    std::shared_ptr<int> pointer = std::make_shared<int>(1);
    const RealtimeScope scope;
    const std::shared_ptr<int> copy = std::atomic_load(&pointer);
    EXPECT_EQ(scope.violations().locks, whereCounted(1));
}

TEST_F(RealtimeScopeSees, AnExceptionThatIsCaughtAgain) {
    const RealtimeScope scope;
    try {
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(scope.violations().throws, whereCounted(1));
}

TEST_F(RealtimeScopeSees, ASystemCallWhichIsMadeAllTheSame) {
    if (!RealtimeScope::seesSystemCalls())
        GTEST_SKIP() << "this kernel does not tell a thread of its system calls";
    test::RealtimeViolations seen;
    pid_t answer = 0;
    {
        const RealtimeScope scope;
        answer = static_cast<pid_t>(syscall(SYS_getpid));
        seen = scope.violations();
    }
    EXPECT_EQ(seen.systemCalls, 1u);
    EXPECT_EQ(answer, getpid());
}

TEST_F(RealtimeScopeSees, SystemCallsOfOneScopeOnly) {
    if (!RealtimeScope::seesSystemCalls())
        GTEST_SKIP() << "this kernel does not tell a thread of its system calls";
    for (const bool calling : {true, false, true, true, false}) {
        const RealtimeScope scope;
        if (calling)
            syscall(SYS_getppid);
        EXPECT_EQ(scope.violations().systemCalls, calling ? 1u : 0u);
    }
}

TEST_F(RealtimeScopeSees, OnlyItsOwnThread) {
    std::uint64_t seen = 1;
    std::thread watcher([&] {
        const RealtimeScope scope;
        std::atomic<bool> done{false};
        seen = scope.violations().total();
        done = true;
    });
    for (int round = 0; round < 1000; ++round)
        std::free(std::malloc(16));
    watcher.join();
    EXPECT_EQ(seen, 0u);
}

} // namespace
