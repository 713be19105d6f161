// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/SourceChoice.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace orvane::kestrum::track;
using std::chrono::milliseconds;

const Instant start = Instant(std::chrono::hours(1));
constexpr milliseconds hold{500};
constexpr Source phone{.input = Input::osc, .family = "/ypr", .address = 1, .port = 1};
constexpr Source camera{.input = Input::openTrack, .family = "", .address = 1, .port = 2};

TEST(SeveralSources, AreRankedByTheOrderOfTheInputs) {
    SourceChoice choice({Input::openTrack, Input::osc}, hold);
    EXPECT_TRUE(choice.admits(phone, start));
    EXPECT_TRUE(choice.admits(camera, start + milliseconds(1))); // the better one takes over at once
    EXPECT_FALSE(choice.admits(phone, start + milliseconds(2)));
    EXPECT_EQ(choice.current(), camera);
}

TEST(SeveralSources, TakeThePlaceOfABetterOneThatIsSilent) {
    SourceChoice choice({Input::openTrack, Input::osc}, hold);
    EXPECT_TRUE(choice.admits(camera, start));
    EXPECT_FALSE(choice.admits(phone, start + hold));
    EXPECT_TRUE(choice.admits(phone, start + hold + milliseconds(1)));
    EXPECT_TRUE(choice.admits(camera, start + hold + milliseconds(2))); // and give it back
}

// Some senders put one direction into three dialects at once, and not all of them mean the same.
TEST(SeveralSources, OfOneSenderAreRankedByTheTableOfDialects) {
    SourceChoice choice({Input::osc}, hold);
    Source quaternion = phone;
    quaternion.family = "/quaternion";
    EXPECT_TRUE(choice.admits(quaternion, start));
    EXPECT_TRUE(choice.admits(phone, start));
    for (int round = 1; round < 100; ++round) {
        EXPECT_FALSE(choice.admits(quaternion, start + milliseconds(round)));
        EXPECT_TRUE(choice.admits(phone, start + milliseconds(round)));
    }
}

TEST(SeveralSources, OfEqualRankLeaveItToWhoeverCameFirst) {
    SourceChoice choice({Input::osc}, hold);
    Source second = phone;
    second.address = 2;
    EXPECT_TRUE(choice.admits(phone, start));
    EXPECT_FALSE(choice.admits(second, start + milliseconds(1)));
    EXPECT_TRUE(choice.admits(second, start + hold + milliseconds(1)));
    EXPECT_FALSE(choice.admits(phone, start + hold + milliseconds(2)));
}

TEST(SeveralSources, ThatAreLeftOutNeverDrive) {
    SourceChoice choice({Input::osc}, hold);
    EXPECT_FALSE(choice.admits(camera, start));
    EXPECT_FALSE(choice.current());
}

TEST(Sources, SayWhoTheyAre) {
    EXPECT_EQ(
        (Source{.input = Input::osc, .family = "/ypr", .address = 0xc0a80102, .port = 50123}.describe()),
        "osc /ypr from 192.168.1.2:50123");
    EXPECT_EQ((Source{.input = Input::demo}.describe()), "demo");
    EXPECT_EQ(phone.kind(), "osc /ypr");
}

} // namespace
