// SPDX-License-Identifier: GPL-3.0-or-later
// Listeners that are called on one thread while they come and go on others. Sanitizers look on.
#include "ListenerAction.h"

#include "parameters/ParameterSet.h"
#include "parameters/zmtl/Parameter.h"

#include <gtest/gtest.h>

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <future>
#include <iostream>
#include <latch>
#include <memory>
#include <thread>
#include <vector>

namespace {

using test::Action;
using test::ActionList;
using test::ActionSet;
using test::notify;

/// Ends the program when `work` hangs, since a thread that waits for ever cannot be joined.
void finish(const std::function<void()>& work) {
    auto done = std::async(std::launch::async, work);
    if (done.wait_for(std::chrono::minutes(1)) != std::future_status::ready) {
        std::cerr << "two threads wait for each other" << std::endl;
        std::abort();
    }
    done.get();
}

/// Lets other threads run for a while: long enough that a removal which does not wait would have returned.
void dawdle() {
    for (int i = 0; i < 1000; ++i)
        std::this_thread::yield();
}

TEST(ListenersAndThreads, ARemovalFromOutsideWaitsForTheCallThatIsUnderWay) {
    std::latch entered(1);
    std::atomic<bool> left{false};
    Action slow;
    slow.run = [&] {
        entered.count_down();
        dawdle();
        left = true;
    };
    ActionSet set;
    set.add(&slow);
    std::thread other([&] { notify(set); });
    entered.wait();
    set.remove(&slow);
    EXPECT_TRUE(left);
    other.join();
}

TEST(ListenersAndThreads, ARemovalFromOutsideDoesNotWaitForTheCallOfAnotherListener) {
    finish([] {
        std::latch entered(1);
        std::latch mayLeave(1);
        Action actions[2];
        actions[0].run = [&] {
            entered.count_down();
            mayLeave.wait();
        };
        bool called = false;
        actions[1].run = [&] { called = true; };
        ActionSet set;
        for (auto& action : actions)
            set.add(&action);
        std::thread other([&] { notify(set); });
        entered.wait();
        set.remove(&actions[1]); // returns while the other thread stands in front of it
        mayLeave.count_down();
        other.join();
        EXPECT_FALSE(called);
    });
}

/// Each of two threads stands in a callback and takes out the listener that the other one stands in.
template <typename Actions>
void removeEachOther(Actions& first, Actions& second) {
    std::latch bothInside(2);
    Action actions[2];
    const auto act = [&](Actions& others, Action& other) {
        return [&] {
            bothInside.arrive_and_wait();
            others.remove(&other);
        };
    };
    actions[0].run = act(second, actions[1]);
    actions[1].run = act(first, actions[0]);
    first.add(&actions[0]);
    second.add(&actions[1]);
    std::thread other([&] { notify(second); });
    notify(first);
    other.join();
    first.remove(&actions[0]);
    second.remove(&actions[1]);
    for (auto& action : actions)
        action.run = [] { FAIL() << "removed"; };
    notify(first);
    notify(second);
}

TEST(ListenersAndThreads, TwoCallbacksMayTakeEachOthersListenersOut) {
    finish([] {
        ActionSet sets[2];
        removeEachOther(sets[0], sets[1]);
    });
    finish([] {
        ActionList lists[2];
        removeEachOther(lists[0], lists[1]);
    });
}

// The same in one set: the second thread walks past the listener that the first one stands in.
TEST(ListenersAndThreads, TwoCallbacksOfOneSetMayTakeEachOtherOut) {
    finish([] {
        std::latch bothInside(2);
        Action actions[2];
        ActionSet set;
        const auto self = std::this_thread::get_id();
        actions[0].run = [&] {
            if (std::this_thread::get_id() != self)
                return;
            bothInside.arrive_and_wait();
            set.remove(&actions[1]);
        };
        actions[1].run = [&] {
            bothInside.arrive_and_wait();
            set.remove(&actions[0]);
        };
        for (auto& action : actions)
            set.add(&action);
        std::thread other([&] { notify(set); });
        notify(set); // its second listener has been removed by the time it gets there
        other.join();
    });
}

TEST(ListenersAndThreads, AfterARemovalInsideACallbackNoCallBeginsOnAnyThread) {
    constexpr int otherCount = 3;
    Action actions[2];
    ActionSet set;
    std::latch othersNotify(otherCount);
    std::atomic<bool> removed{false};
    std::atomic<int> late{0};
    const auto self = std::this_thread::get_id();
    actions[0].run = [&] {
        if (std::this_thread::get_id() != self)
            return;
        set.remove(&actions[1]);
        removed = true;
    };
    actions[1].run = [&] {
        if (removed)
            ++late;
    };
    for (auto& action : actions)
        set.add(&action);
    std::vector<std::thread> others;
    others.reserve(otherCount);
    for (int i = 0; i < otherCount; ++i)
        others.emplace_back([&] {
            notify(set);
            othersNotify.count_down();
            for (int notification = 0; notification < 300; ++notification)
                notify(set);
        });
    othersNotify.wait();
    notify(set);
    for (auto& other : others)
        other.join();
    EXPECT_TRUE(removed);
    EXPECT_LE(late, otherCount)
        << "each may have begun one call before the removal and looked at the flag after it";
}

// What was taken out inside a callback may die after it has been taken out once more, outside.
TEST(ListenersAndThreads, ASecondRemovalFromOutsideWaitsForWhatTheFirstOneInsideDidNot) {
    std::latch entered(1);
    std::latch removedInside(1);
    std::atomic<bool> left{false};
    Action slow;
    slow.run = [&] {
        entered.count_down();
        removedInside.wait();
        dawdle();
        left = true;
    };
    ActionSet set;
    set.add(&slow);
    std::thread other([&] { notify(set); });
    entered.wait();
    {
        const zmtl::NotifyingThread insideSomeCallback;
        set.remove(&slow);
        EXPECT_FALSE(left);
    }
    removedInside.count_down();
    set.remove(&slow);
    EXPECT_TRUE(left);
    other.join();
}

#ifndef __SANITIZE_THREAD__ // which hands signals over at places of its own choice
/// Stops the thread that gets the signal, wherever it stands, until it is let go or another one seems to wait for it.
struct Stop {
    static inline std::atomic<bool> reached{false};
    static inline std::atomic<bool> over{false};

    static void stand(int /*signal*/) {
        reached = true;
        const auto latest = std::chrono::steady_clock::now() + std::chrono::milliseconds(1);
        while (!over && std::chrono::steady_clock::now() < latest) {
        }
    }
};

// Between taking an entry and calling its listener there are a few instructions, in which a thread is stopped now and then.
TEST(ListenersAndThreads, NoCallBeginsAfterARemovalWhereverANotificationWasStopped) {
    struct sigaction handler {};
    struct sigaction former {};
    handler.sa_handler = Stop::stand;
    ASSERT_EQ(sigaction(SIGUSR1, &handler, &former), 0);
    ActionSet set;
    std::atomic<bool> notifying{true};
    std::atomic<unsigned> notifications{0};
    std::thread other([&] {
        while (notifying) {
            notify(set);
            ++notifications;
        }
    });
    const auto waitForNotifications = [&](unsigned count) {
        for (const unsigned before = notifications; notifications - before < count;)
            std::this_thread::yield();
    };
    std::atomic<int> late{0};
    for (int moment = 0; moment < 500; ++moment) {
        std::atomic<bool> removed{false};
        Action action;
        action.run = [&] {
            if (removed)
                ++late;
        };
        set.add(&action);
        waitForNotifications(2);
        Stop::reached = false;
        Stop::over = false;
        pthread_kill(other.native_handle(), SIGUSR1);
        while (!Stop::reached)
            std::this_thread::yield();
        set.remove(&action);
        removed = true;
        Stop::over = true;
        waitForNotifications(2);
    }
    notifying = false;
    other.join();
    EXPECT_EQ(sigaction(SIGUSR1, &former, nullptr), 0);
    EXPECT_EQ(late, 0);
}
#endif

// Stress: more threads than have places notify; on three others listeners come, go and die.
template <typename Actions>
void comeAndGo() {
    Actions listeners;
    std::atomic<bool> changing{true};
    std::atomic<int> calls{0};
    std::vector<std::thread> notifiers;
    constexpr int notifierCount = zmtl::NotifyingThread::capacity + 8;
    notifiers.reserve(notifierCount);
    for (int i = 0; i < notifierCount; ++i)
        notifiers.emplace_back([&] {
            while (changing) {
                notify(listeners);
                std::this_thread::yield();
            }
        });
    std::vector<std::thread> changers;
    changers.reserve(3);
    for (int i = 0; i < 3; ++i)
        changers.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                const auto first = std::make_unique<Action>();
                const auto second = std::make_unique<Action>();
                for (auto* const action : {first.get(), second.get()}) {
                    action->run = [&calls] { ++calls; };
                    listeners.add(action);
                }
                listeners.remove(first.get());
                listeners.remove(second.get());
            }
        });
    for (auto& thread : changers)
        thread.join();
    changing = false;
    for (auto& thread : notifiers)
        thread.join();
    const int before = calls;
    notify(listeners);
    EXPECT_EQ(calls, before) << "all have gone";
}

TEST(ListenersAndThreads, ComeGoAndDieWhileMoreThreadsNotifyThanHavePlaces) {
    comeAndGo<ActionSet>();
    comeAndGo<ActionList>();
}

/// Changes something on one thread while listeners that die at once come and go on this one.
void comeAndGoWhile(const std::function<void(int round)>& change,
                    const std::function<void()>& comeAndGoOnce) {
    std::atomic<bool> changing{true};
    std::latch begun(1);
    std::thread host([&] {
        for (int round = 0; changing; ++round) {
            change(round);
            if (round == 1)
                begun.count_down();
        }
    });
    begun.wait();
    for (int round = 0; round < 500; ++round)
        comeAndGoOnce();
    changing = false;
    host.join();
}

TEST(ListenersAndThreads, OfARenderingValueComeAndGoWhileItIsSetElsewhere) {
    struct Reader final : zmtl::IParameter<float>::Listener {
        void parameterChanged(zmtl::IParameter<float>& parameter) override { seen = parameter.get(); }
        std::atomic<float> seen{0.0f};
    };
    zmtl::Parameter<float> parameter(0.0f);
    comeAndGoWhile([&](int round) { parameter.set(static_cast<float>(round % 2), true); },
                   [&] {
                       const auto reader = std::make_unique<Reader>();
                       parameter.addListener(reader.get());
                       parameter.addListener(reader.get());
                       parameter.removeListener(reader.get());
                   });
    Reader last;
    parameter.addListener(&last);
    parameter.set(7.0f, true);
    EXPECT_EQ(last.seen, 7.0f);
}

TEST(ListenersAndThreads, OfReloadsComeAndGoWhileAStructuralValueIsSetElsewhere) {
    struct Flag final : orvane::IReloadListener {
        void reloadRequested() override { up = true; }
        std::atomic<bool> up{false};
    };
    orvane::ParameterSet set;
    comeAndGoWhile([&](int round) { set.setReverbOn(round % 2 != 0, true); },
                   [&] {
                       const auto flag = std::make_unique<Flag>();
                       set.addReloadListener(flag.get());
                       set.removeReloadListener(flag.get());
                   });
    Flag last;
    set.addReloadListener(&last);
    set.notifyReloadListeners();
    EXPECT_TRUE(last.up);
}

// Stress: every callback changes the list that it is called from; what it takes out dies after all threads have ended.
TEST(ListenersAndThreads, ChangeTheirListFromInsideOnSeveralThreads) {
    ActionList list;
    std::vector<Action> actions(4);
    std::atomic<int> calls{0};
    for (std::size_t i = 0; i < actions.size(); ++i)
        actions[i].run = [&, next = &actions[(i + 1) % actions.size()]] {
            list.remove(next);
            if (++calls % 2 == 0)
                list.add(next);
        };
    std::vector<std::thread> threads;
    threads.reserve(3);
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 300; ++round) {
                list.add(&actions[static_cast<std::size_t>(round) % actions.size()]);
                for (auto& action : actions)
                    list.remove(&action);
                list.add(&actions[0]);
                notify(list);
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_GT(calls, 0);
}

} // namespace
