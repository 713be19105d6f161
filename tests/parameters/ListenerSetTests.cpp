// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/ListenerSet.h"

#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using orvane::kestrum::core::ListenerSet;
using ::testing::ElementsAre;

struct Action {
    std::function<void()> run;
};

using Set = ListenerSet<Action>;

void notify(Set& set) {
    set.notify([](Action& action) { action.run(); });
}

TEST(ListenerSet, CallsEachOnceInTheOrderOfTheirAddresses) {
    std::vector<int> log;
    Action actions[3];
    for (int i = 0; i < 3; ++i)
        actions[i].run = [&log, i] { log.push_back(i); };
    Set set;
    for (const int i : {2, 0, 1, 0})
        set.add(&actions[i]);
    notify(set);
    EXPECT_THAT(log, ElementsAre(0, 1, 2));
    set.remove(&actions[1]);
    set.remove(&actions[1]);
    log.clear();
    notify(set);
    EXPECT_THAT(log, ElementsAre(0, 2));
}

// A host that closes the editor from inside a notification must not find the listeners of the editor called again.
TEST(ListenerSet, AListenerMayRemoveItselfAndOthersWhileItIsCalled) {
    std::vector<int> log;
    Action actions[3];
    Set set;
    for (auto& action : actions)
        set.add(&action);
    actions[0].run = [&] {
        log.push_back(0);
        set.remove(&actions[0]);
        set.remove(&actions[1]);
    };
    actions[1].run = [&] { log.push_back(1); };
    actions[2].run = [&] { log.push_back(2); };
    notify(set);
    EXPECT_THAT(log, ElementsAre(0, 2));
    log.clear();
    notify(set);
    EXPECT_THAT(log, ElementsAre(2));
}

TEST(ListenerSet, AListenerMayAddOthersAndNotifyAgainWhileItIsCalled) {
    std::vector<int> log;
    Action actions[2];
    Set set;
    set.add(&actions[0]);
    int depth = 0;
    actions[0].run = [&] {
        log.push_back(0);
        set.add(&actions[1]);
        if (++depth < 3)
            notify(set);
    };
    actions[1].run = [&] { log.push_back(1); };
    notify(set);
    EXPECT_THAT(log, ElementsAre(0, 0, 0, 1, 1, 1));
}

TEST(ListenerSet, AnExceptionOfAListenerLeavesTheSetUsable) {
    Action thrower;
    thrower.run = [] { throw std::runtime_error("refused"); };
    Set set;
    set.add(&thrower);
    EXPECT_THROW(notify(set), std::runtime_error);
    set.remove(&thrower);
    EXPECT_NO_THROW(notify(set));
}

TEST(ListenerSet, NotifiesWithoutAllocationOrLock) {
    Action action;
    std::atomic<int> calls{0};
    action.run = [&] { ++calls; };
    Set set;
    set.add(&action);
    const test::RealtimeScope scope;
    notify(set);
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
    EXPECT_EQ(calls, 1);
}

// Removal waits for the call that is under way on another thread.
TEST(ListenerSet, ARemovedListenerIsNotBeingCalledByAnyThread) {
    std::atomic<bool> entered{false};
    std::atomic<bool> left{false};
    Action slow;
    slow.run = [&] {
        entered = true;
        for (int i = 0; i < 1000; ++i)
            std::this_thread::yield();
        left = true;
    };
    Set set;
    set.add(&slow);
    std::thread other([&] { notify(set); });
    while (!entered)
        std::this_thread::yield();
    set.remove(&slow);
    EXPECT_TRUE(left);
    other.join();
}

// Stress: more threads than places, listeners that die as soon as they are removed.
TEST(ListenerSet, SurvivesManyThreadsWhileListenersComeAndGo) {
    Set set;
    std::atomic<int> calls{0};
    std::vector<std::thread> threads;
    threads.reserve(20);
    for (int i = 0; i < 20; ++i)
        threads.emplace_back([&] {
            for (int notification = 0; notification < 100; ++notification) {
                notify(set);
                std::this_thread::yield();
            }
        });
    for (int round = 0; round < 50; ++round) {
        const auto first = std::make_unique<Action>();
        const auto second = std::make_unique<Action>();
        first->run = [&] { calls.fetch_add(1); };
        second->run = [&] { calls.fetch_add(1); };
        set.add(first.get());
        set.add(second.get());
        set.remove(first.get());
        set.remove(second.get());
    }
    for (auto& thread : threads)
        thread.join();
}

} // namespace
