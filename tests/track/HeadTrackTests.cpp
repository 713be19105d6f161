// SPDX-License-Identifier: GPL-3.0-or-later
// Time is told, never read: every expected value follows from the settings.
#include "track/HeadTrack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace orvane::kestrum::track;
using std::chrono::milliseconds;

const Instant start = Instant(std::chrono::hours(1));
constexpr Source phone{.input = Input::osc, .family = "/ypr", .address = 1, .port = 1};
constexpr Source camera{.input = Input::openTrack, .family = "", .address = 1, .port = 2};

HeadTrackSettings unsmoothed() {
    HeadTrackSettings settings;
    settings.smoothing.restCutoffHz = 0;
    return settings;
}

Rotation yaw(double degrees) { return rotationOf(HeadAngles{degrees, 0, 0}); }

/// The yaw of the present direction; 999 when nobody drives.
double yawOf(HeadTrack& head, Instant now) {
    const auto direction = head.direction(now);
    return direction ? anglesOf(*direction).yaw : 999;
}

TEST(Heads, ThatNobodyDrivesHaveNoDirection) {
    HeadTrack head(unsmoothed());
    EXPECT_FALSE(head.direction(start));
    EXPECT_FALSE(head.nextChange(start));
    head.recentre(start);
    EXPECT_FALSE(head.direction(start));
}

TEST(Heads, FollowTheFirstSampleAtOnce) {
    HeadTrack head(unsmoothed());
    EXPECT_TRUE(head.take({phone, yaw(30)}, start));
    EXPECT_NEAR(yawOf(head, start), 30, 1e-6);
    head.take({phone, yaw(-50)}, start + milliseconds(10));
    EXPECT_NEAR(yawOf(head, start + milliseconds(10)), -50, 1e-6);
}

TEST(Heads, GlideBackAfterTheSetSilenceAndAreThenNobodys) {
    HeadTrack head(unsmoothed());
    head.take({phone, yaw(40)}, start);
    EXPECT_NEAR(yawOf(head, start + milliseconds(1000)), 40, 1e-6); // the silence that is allowed
    const Instant change = *head.nextChange(start);
    EXPECT_LE(change, start + milliseconds(1010));
    double last = yawOf(head, change);
    EXPECT_NEAR(last, 40, 0.1);
    for (int step = 1; step < 100; ++step) {
        const double now = yawOf(head, change + milliseconds(10 * step));
        EXPECT_LE(now, last + 1e-9);
        EXPECT_GT(now, last - 1); // the steepest is 1.5 times 40 degrees a second
        last = now;
    }
    EXPECT_NEAR(last, 0, 0.1);
    EXPECT_FALSE(head.direction(change + milliseconds(1001)));
    EXPECT_FALSE(head.nextChange(change + milliseconds(1001)));
}

TEST(Heads, ThatAreHeardAgainInTheGlideGoOnFromWhereTheyAre) {
    HeadTrack head(unsmoothed());
    head.take({phone, yaw(40)}, start);
    const Instant half = start + milliseconds(1600);
    head.direction(start + milliseconds(1100));
    const double inGlide = yawOf(head, half);
    ASSERT_LT(inGlide, 30);
    head.take({phone, yaw(40)}, half);
    EXPECT_NEAR(yawOf(head, half), inGlide, 0.5);
    head.take({phone, yaw(40)}, half + milliseconds(300));
    EXPECT_NEAR(yawOf(head, half + milliseconds(300)), 40, 1e-6);
}

TEST(Heads, ThatAreEndedGlideAndTakeNothingMore) {
    HeadTrack head(unsmoothed());
    head.take({phone, yaw(40)}, start);
    head.end(start + milliseconds(10));
    EXPECT_NEAR(yawOf(head, start + milliseconds(10)), 40, 1e-6);
    EXPECT_FALSE(head.take({phone, yaw(-40)}, start + milliseconds(20)));
    EXPECT_NEAR(yawOf(head, start + milliseconds(510)), 20, 0.1); // half way at half time
    EXPECT_FALSE(head.direction(start + milliseconds(1011)));
}

TEST(Heads, LookAheadFromTheirNewCentreOn) {
    HeadTrack head(unsmoothed());
    head.take({phone, rotationOf(HeadAngles{100, 20, 5})}, start);
    head.recentre(start + milliseconds(1));
    EXPECT_NEAR(yawOf(head, start + milliseconds(1)), 100, 0.5); // no jump
    const Instant later = start + milliseconds(300);
    head.take({phone, rotationOf(HeadAngles{100, 20, 5})}, later);
    EXPECT_NEAR(angleBetween(*head.direction(later), {}), 0, 1e-5);
}

TEST(Heads, KeepTheCentreOfASenderThatIsStartedAgain) {
    HeadTrack head(unsmoothed());
    head.take({phone, yaw(100)}, start);
    head.recentre(start);
    Instant now = start + milliseconds(600); // the phone is silent for too long
    head.take({camera, yaw(7)}, now);
    now += milliseconds(300);
    head.take({camera, yaw(7)}, now);
    EXPECT_NEAR(yawOf(head, now), 7, 1e-6);
    now += milliseconds(300);
    Source samePhone = phone;
    samePhone.port = 999; // started again
    head.take({samePhone, yaw(110)}, now);
    now += milliseconds(300);
    head.take({samePhone, yaw(110)}, now);
    EXPECT_NEAR(yawOf(head, now), 10, 1e-6);
}

TEST(Heads, DoNotTakeTheCentreOfASenderForThatOfAnotherMachines) {
    HeadTrack head(unsmoothed());
    head.take({phone, yaw(100)}, start);
    head.recentre(start);
    Source other = phone;
    other.address = 2;
    Instant now = start + milliseconds(600);
    head.take({other, yaw(30)}, now);
    now += milliseconds(300);
    head.take({other, yaw(30)}, now);
    EXPECT_NEAR(yawOf(head, now), 30, 1e-6);
}

TEST(Heads, BlendFromOneSourceToTheNext) {
    HeadTrack head(unsmoothed());
    head.take({camera, yaw(-30)}, start);
    head.take({phone, yaw(30)}, start + milliseconds(5));
    double last = yawOf(head, start + milliseconds(5));
    EXPECT_NEAR(last, -30, 0.5);
    for (int step = 6; step < 300; ++step) {
        const double now = yawOf(head, start + milliseconds(step));
        EXPECT_LT(std::abs(now - last), 0.5);
        last = now;
    }
    EXPECT_NEAR(last, 30, 1e-6);
}

TEST(Heads, OfASensorThatSitsAskewAreSetRightByItsMounting) {
    const Rotation mounting = rotationOf(HeadAngles{20, -15, 40});
    const Rotation room = rotationOf(HeadAngles{-70, 3, 2}); // where the sensor thinks that "ahead" is
    HeadTrack head(unsmoothed());
    head.setMounting("osc /ypr", mounting);
    const auto sensorSays = [&](const HeadAngles& angles) { return room * rotationOf(angles) * mounting; };
    head.take({phone, sensorSays({0, 0, 0})}, start);
    head.recentre(start);
    for (const HeadAngles& angles : {HeadAngles{30, 0, 0}, HeadAngles{0, 20, 0}, HeadAngles{-50, 10, 5}}) {
        head.take({phone, sensorSays(angles)}, start + milliseconds(400));
        EXPECT_NEAR(angleBetween(*head.direction(start + milliseconds(400)), rotationOf(angles)), 0, 1e-5);
    }
}

TEST(Heads, AreTurnedByTheBiasWhereverTheyLook) {
    HeadTrackSettings settings = unsmoothed();
    settings.biasDegrees = 2;
    HeadTrack head(settings);
    head.take({phone, yaw(30)}, start);
    EXPECT_NEAR(yawOf(head, start), 32, 1e-6);
    head.end(start);
    EXPECT_NEAR(yawOf(head, start + milliseconds(999)), 2, 0.01);
}

} // namespace
