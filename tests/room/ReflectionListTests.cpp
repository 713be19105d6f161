// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ReflectionList.h"
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>

namespace {

using orvane::Reflection;
using orvane::ReflectionList;

Reflection withDelay(std::int32_t delay) {
    Reflection reflection;
    reflection.delay = delay;
    return reflection;
}

TEST(ReflectionList, StartsEmptyWhateverItsCapacity) {
    const ReflectionList list(10);
    EXPECT_EQ(list.size(), 0u);
    EXPECT_EQ(list.begin(), list.end());
}

TEST(ReflectionList, KeepsWhatIsPushedInOrder) {
    ReflectionList list(3);
    for (const std::int32_t delay : {7, 8, 9})
        list.push(withDelay(delay));
    ASSERT_EQ(list.size(), 3u);
    std::int32_t expected = 7;
    for (const Reflection& reflection : list)
        EXPECT_EQ(reflection.delay, expected++);
    EXPECT_EQ(list[1].delay, 8);
}

TEST(ReflectionList, RefusesOneMoreThanItsCapacityAndStaysAsItWas) {
    ReflectionList list(1);
    list.push(withDelay(5));
    try {
        list.push(withDelay(6));
        FAIL() << "expected an exception";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "capacity overflow");
    }
    EXPECT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].delay, 5);
    EXPECT_THROW(ReflectionList(0).push(withDelay(1)), std::out_of_range);
}

TEST(ReflectionList, ACopyIsItsOwn) {
    ReflectionList list(2);
    list.push(withDelay(5));
    ReflectionList copy = list;
    copy[0].delay = 6;
    copy.push(withDelay(7));
    EXPECT_EQ(list[0].delay, 5);
    EXPECT_EQ(list.size(), 1u);
}

TEST(ReflectionList, PushingWithinTheCapacityDoesNotAllocate) {
    ReflectionList list(10);
    const test::RealtimeScope scope;
    for (int i = 0; i < 10; ++i)
        list.push(withDelay(i));
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
}

} // namespace
