// SPDX-License-Identifier: GPL-3.0-or-later
// Time is told, never read.
#include "track/OneEuroFilter.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>

namespace {

using namespace orvane::kestrum::track;
using std::chrono::microseconds;
using std::chrono::milliseconds;

const Instant start = Instant(std::chrono::hours(1));

Rotation yaw(double degrees) { return rotationOf(HeadAngles{degrees, 0, 0}); }

// The one-euro filter at rest is a first-order low-pass: after one step of T its share is 2 pi f T / (2 pi f T + 1).
TEST(Smoothing, GoesTheLowPassesShareOfASmallStep) {
    OneEuroFilter filter({.restCutoffHz = 2, .cutoffPerSpeed = 0, .predictSeconds = 0});
    filter.step(yaw(0), start);
    const double part = 2 * 3.14159265358979 * 2 * 0.01 / (2 * 3.14159265358979 * 2 * 0.01 + 1);
    EXPECT_NEAR(anglesOf(filter.step(yaw(1), start + milliseconds(10))).yaw, part, 1e-6);
}

TEST(Smoothing, CalmsAHeadAtRestAndHardlyDelaysAMovingOne) {
    OneEuroFilter filter({});
    double widest = 0;
    for (int step = 0; step < 200; ++step) { // a degree of jitter to either side
        const double out =
            anglesOf(filter.step(yaw(step % 2 == 0 ? 1 : -1), start + milliseconds(10 * step))).yaw;
        if (step > 100)
            widest = std::max(widest, std::abs(out));
    }
    EXPECT_LT(widest, 0.75);
    filter.reset();
    double out = 0;
    for (int step = 0; step < 50; ++step) // 200 degrees a second
        out = anglesOf(filter.step(yaw(2.0 * step), start + milliseconds(10 * step))).yaw;
    EXPECT_GT(out, 98 - 2); // less than 10 ms late
}

TEST(Smoothing, DrawsASteadyMovementOutByItsHorizon) {
    OneEuroFilter filter({.restCutoffHz = 0, .cutoffPerSpeed = 0, .predictSeconds = 0.05});
    double out = 0;
    for (int step = 0; step < 100; ++step)
        out = anglesOf(filter.step(yaw(1.0 * step), start + milliseconds(10 * step))).yaw;
    EXPECT_NEAR(out, 99 + 5, 0.01); // 100 degrees a second for 50 ms
}

TEST(Smoothing, NeverThrowsTheSceneFarAboutForOneOutlier) {
    OneEuroFilter filter({.restCutoffHz = 0, .cutoffPerSpeed = 0, .predictSeconds = 0.2});
    filter.step(yaw(0), start);
    const Rotation out = filter.step(yaw(90), start + milliseconds(1));
    EXPECT_LT(angleBetween(out, yaw(90)), 30);
}

TEST(Smoothing, StartsAnewAfterALongSilence) {
    OneEuroFilter filter({});
    filter.step(yaw(0), start);
    EXPECT_NEAR(anglesOf(filter.step(yaw(80), start + std::chrono::seconds(2))).yaw, 80, 1e-6);
}

// Ten packets that waited together are heard at one moment; the movement is no faster for that.
TEST(Smoothing, TakesPacketsThatComeInOneGoForOneStep) {
    OneEuroFilter filter({.restCutoffHz = 0, .cutoffPerSpeed = 0, .predictSeconds = 0.05});
    double out = 0;
    for (int go = 0; go < 40; ++go)
        for (int packet = 0; packet < 10; ++packet) // 100 degrees a second, told every 100 ms
            out = anglesOf(filter.step(yaw(std::remainder(10.0 * go + packet + 1, 360)),
                                       start + milliseconds(100 * go) + microseconds(20 * packet)))
                      .yaw;
    EXPECT_NEAR(out, std::remainder(400 + 5, 360), 0.1);
}

// Yaw and pitch as messages of their own, one right after the other: both are calmed and drawn out alike.
TEST(Smoothing, DrawsSingleAnglesOutAsOneMovement) {
    OneEuroFilter filter({.restCutoffHz = 0, .cutoffPerSpeed = 0, .predictSeconds = 0.05});
    HeadAngles head;
    Rotation out;
    for (int step = 1; step <= 40; ++step) {
        const Instant now = start + milliseconds(10 * step);
        head.yaw = 1.0 * step;
        filter.step(rotationOf(head), now);
        head.pitch = 0.0;
        out = filter.step(rotationOf(head), now + microseconds(100));
    }
    EXPECT_NEAR(anglesOf(out).yaw, 40 + 5, 0.01);
}

// A flood is one step in each millisecond: the past is forgotten as fast as ever.
TEST(Smoothing, OfAFloodFollowsAsWithoutIt) {
    OneEuroFilter flooded({.restCutoffHz = 3, .cutoffPerSpeed = 0, .predictSeconds = 0});
    OneEuroFilter plain({.restCutoffHz = 3, .cutoffPerSpeed = 0, .predictSeconds = 0});
    double out = 0, expected = 0;
    flooded.step(yaw(0), start - milliseconds(1));
    plain.step(yaw(0), start);
    for (int packet = 1; packet <= 10000; ++packet)
        out = anglesOf(flooded.step(yaw(10), start + microseconds(10 * packet))).yaw;
    for (int packet = 1; packet <= 100; ++packet)
        expected = anglesOf(plain.step(yaw(10), start + milliseconds(packet))).yaw;
    EXPECT_NEAR(out, expected, 0.1);
}

} // namespace
