// SPDX-License-Identifier: GPL-3.0-or-later
// Some minutes of the soak; build/bin/soak is the long one.
#include "Child.h"
#include "Soak.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <vector>

namespace {

using namespace rawhost;
using ::testing::HasSubstr;

TEST(Soaking, FindsNothing) {
    SoakPlan plan;
    plan.hours = roundsOf(3, 60) / 60.0;
    EXPECT_EQ(inChild(
                  [&] {
                      const SoakResult result = soak(plan);
                      std::cout << "figure: " << result.hours << " h of audio, " << result.soundingHours
                                << " h of them not silent, " << result.actions << " actions, 0 faults, heap "
                                << result.heapBytesPerHour << " bytes per hour" << std::endl;
                      return result.findings;
                  },
                  std::chrono::seconds(3000)),
              "");
}

std::string faulty(SoakPlan plan, double hours) {
    plan.hours = hours;
    return inChild([&] { return soak(plan).findings; });
}

std::string faulty(const std::function<void(int)>& fault, double hours) {
    SoakPlan plan;
    plan.fault = fault;
    return faulty(plan, hours);
}

void mute(Channels& sound) { sound = silence(sound.size(), sound[0].size()); }

TEST(SoakChecks, SeeADescriptorThatStays) {
    EXPECT_THAT(faulty([](int) { [[maybe_unused]] auto* const stays = std::fopen("/dev/null", "r"); }, 0.01),
                HasSubstr("1 descriptors are left"));
}

TEST(SoakChecks, SeeAHeapThatGrows) {
    static std::vector<std::vector<char>> leaked;
    EXPECT_THAT(faulty([](int) { leaked.emplace_back(100000); }, 0.05), HasSubstr("the heap grows by"));
}

TEST(SoakChecks, SeeInstancesThatAreMuted) {
    SoakPlan plan;
    plan.leastHoursForAShare = 0.01;
    plan.guestFault = mute;
    EXPECT_THAT(faulty(plan, 0.01), HasSubstr("only 0.000000 of "));
}

TEST(SoakChecks, SeeAFreshInstanceThatIsMuted) {
    SoakPlan plan;
    plan.freshFault = mute;
    EXPECT_THAT(faulty(plan, 0.01), HasSubstr("a fresh instance is silent"));
}

TEST(SoakChecks, SeeASampleThatIsNoNumber) {
    SoakPlan plan;
    plan.guestFault = [](Channels& sound) { sound[1].back() = NAN; };
    EXPECT_THAT(faulty(plan, 0.01), HasSubstr("no number comes out"));
}

TEST(SoakChecks, SeeACrashAsOne) {
    EXPECT_THAT(faulty([](int) { std::raise(SIGSEGV); }, 0.01), HasSubstr("ended by signal 11"));
}

} // namespace
