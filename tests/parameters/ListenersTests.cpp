// SPDX-License-Identifier: GPL-3.0-or-later
// Listeners on one thread. Expected calls: those of an ordered set and of a linked list that are walked while they change.
#include "ListenerAction.h"

#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using test::Action;
using test::ActionList;
using test::ActionSet;
using test::notify;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(ListenerSet, CallsEachOnceInTheOrderOfTheirAddresses) {
    std::vector<int> log;
    Action actions[3];
    for (int i = 0; i < 3; ++i)
        actions[i].run = [&log, i] { log.push_back(i); };
    ActionSet set;
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

TEST(ListenerList, CallsInTheOrderOfRegistrationAsOftenAsRegistered) {
    std::vector<int> log;
    Action actions[3];
    for (int i = 0; i < 3; ++i)
        actions[i].run = [&log, i] { log.push_back(i); };
    ActionList list;
    for (const int i : {2, 0, 1, 0})
        list.add(&actions[i]);
    notify(list);
    EXPECT_THAT(log, ElementsAre(2, 0, 1, 0));
    list.remove(&actions[0]);
    list.add(&actions[0]);
    log.clear();
    notify(list);
    EXPECT_THAT(log, ElementsAre(2, 1, 0));
}

template <typename Actions>
class AnyListeners : public ::testing::Test {
protected:
    std::vector<int> log;
    Action actions[3];
    Actions listeners;
};

using Kinds = ::testing::Types<ActionSet, ActionList>;
class KindNames {
public:
    template <typename Kind>
    static std::string GetName(int /*index*/) {
        return std::is_same_v<Kind, ActionSet> ? "Set" : "List";
    }
};
TYPED_TEST_SUITE(AnyListeners, Kinds, KindNames);

TYPED_TEST(AnyListeners, ThatAreNoneAreNotifiedAndRemovedWithoutAWord) {
    notify(this->listeners);
    this->listeners.remove(&this->actions[0]);
    this->actions[0].run = [this] { this->log.push_back(0); };
    this->listeners.add(&this->actions[0]);
    this->listeners.remove(&this->actions[0]);
    notify(this->listeners);
    EXPECT_THAT(this->log, IsEmpty());
}

// A host that closes the editor from inside a notification must not find the listeners of the editor called again.
TYPED_TEST(AnyListeners, MayRemoveThemselvesAndOthersWhileTheyAreCalled) {
    Action& first = this->actions[0];
    Action& second = this->actions[1];
    Action& third = this->actions[2];
    for (auto& action : this->actions)
        this->listeners.add(&action);
    first.run = [&] {
        this->log.push_back(0);
        this->listeners.remove(&first);
        this->listeners.remove(&second);
    };
    second.run = [this] { this->log.push_back(1); };
    third.run = [this] { this->log.push_back(2); };
    notify(this->listeners);
    EXPECT_THAT(this->log, ElementsAre(0, 2));
    this->log.clear();
    notify(this->listeners);
    EXPECT_THAT(this->log, ElementsAre(2));
}

TYPED_TEST(AnyListeners, MayAddOthersAndNotifyAgainWhileTheyAreCalled) {
    Action& first = this->actions[0];
    Action& second = this->actions[1];
    this->listeners.add(&first);
    int depth = 0;
    first.run = [&] {
        this->log.push_back(0);
        if (depth == 0)
            this->listeners.add(&second);
        if (++depth < 3)
            notify(this->listeners);
    };
    second.run = [this] { this->log.push_back(1); };
    notify(this->listeners);
    EXPECT_THAT(this->log, ElementsAre(0, 0, 0, 1, 1, 1));
}

TYPED_TEST(AnyListeners, ThatThrowLeaveEverythingUsable) {
    auto& thrower = this->actions[0];
    thrower.run = [] { throw std::runtime_error("refused"); };
    this->listeners.add(&thrower);
    EXPECT_THROW(notify(this->listeners), std::runtime_error);
    EXPECT_FALSE(zmtl::NotifyingThread::isCurrent());
    this->listeners.remove(&thrower);
    EXPECT_NO_THROW(notify(this->listeners));
}

// The notifying thread is one that has never notified before: whatever a first time costs is seen here.
TYPED_TEST(AnyListeners, AreNotifiedWithoutAllocationLockOrWaitOnANewThreadToo) {
    int calls = 0;
    this->actions[0].run = [&] { ++calls; };
    this->listeners.add(&this->actions[0]);
    test::RealtimeViolations seen;
    std::thread([&] {
        const test::RealtimeScope scope;
        notify(this->listeners);
        seen = scope.violations();
    }).join();
    EXPECT_EQ(seen, test::RealtimeViolations{});
    EXPECT_EQ(calls, 1);
}

// What cannot be freed inside a callback is freed by the next change outside: as many frees as allocations.
TYPED_TEST(AnyListeners, ThatComeAndGoInsideACallbackLeaveNoMemoryBehind) {
    Action& first = this->actions[0];
    Action& guest = this->actions[1];
    Action& last = this->actions[2];
    this->listeners.add(&first);
    first.run = [&] {
        for (int round = 0; round < 100; ++round) {
            this->listeners.add(&guest);
            this->listeners.remove(&guest);
        }
    };
    this->listeners.add(&last); // so that the second round below begins with what the first one ended with
    this->listeners.remove(&last);
    const test::RealtimeScope scope;
    notify(this->listeners);
    const auto inside = scope.violations();
    this->listeners.add(&last);
    this->listeners.remove(&last);
    const auto outside = scope.violations();
    if (test::RealtimeScope::countingWorks) {
        EXPECT_GT(inside.allocations, inside.frees + 100)
            << "nothing was held back, so this test shows nothing";
    }
    EXPECT_LE(outside.allocations, outside.frees + 1)
        << "the list of retired snapshots itself may have grown";
}

TEST(NotifyingThread, IsOneFromTheFirstMarkToTheLast) {
    EXPECT_FALSE(zmtl::NotifyingThread::isCurrent());
    {
        const zmtl::NotifyingThread outer;
        { const zmtl::NotifyingThread inner; }
        EXPECT_TRUE(zmtl::NotifyingThread::isCurrent());
        std::thread([] {
            EXPECT_FALSE(zmtl::NotifyingThread::isCurrent()) << "somebody else's mark";
        }).join();
    }
    EXPECT_FALSE(zmtl::NotifyingThread::isCurrent());
}

} // namespace
