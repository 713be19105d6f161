// SPDX-License-Identifier: GPL-3.0-or-later
// Expected values: the frame in words (right is right), elementary rotations, and the matrix of the user's own dial.
#include "track/Rotation.h"

#include "base/SpatialPosition.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <random>

namespace {

using namespace orvane::kestrum::track;
using orvane::SpatialPosition;

/// Where a source stands for a head.
SpatialPosition seen(SpatialPosition source, const HeadAngles& head) {
    source.rotate(linkMatrix(rotationOf(head)));
    return source;
}

TEST(LinkMatrices, OfAHeadThatLooksAheadAreTheIdentityByteForByte) {
    for (const HeadAngles& angles : {HeadAngles{0, 0, 0}, HeadAngles{-0.0, -0.0, -0.0}}) {
        const auto matrix = linkMatrix(rotationOf(angles));
        EXPECT_EQ(std::memcmp(matrix.data(), orvane::identityRotation.data(), sizeof(matrix)), 0);
    }
}

TEST(LinkMatrices, OfAHeadThatTurnsRightAreThoseOfTheDial) {
    for (const double degrees : {-170.0, -90.0, -31.0, 5.0, 90.0, 180.0}) {
        const auto c = static_cast<float>(std::cos(degrees * std::numbers::pi / 180));
        const auto s = static_cast<float>(std::sin(degrees * std::numbers::pi / 180));
        const auto matrix = linkMatrix(rotationOf(HeadAngles{degrees, 0, 0}));
        const orvane::HeadRotationMatrix dial{c, 0, s, 0, 0, 1, 0, 0, -s, 0, c, 0, 0, 0, 0, 1};
        for (std::size_t index = 0; index < 16; ++index)
            EXPECT_NEAR(matrix[index], dial[index], 1e-6) << degrees << " at " << index;
    }
}

TEST(LinkMatrices, MoveASourceTheOtherWay) {
    EXPECT_NEAR(seen({0, 0, 1}, {30, 0, 0}).azimuth, -30, 1e-3);    // ahead goes left
    EXPECT_NEAR(seen({0, 0, 1}, {0, 20, 0}).elevation, -20, 0.1);   // ahead goes down
    EXPECT_NEAR(seen({0, 90, 1}, {0, 0, 10}).elevation, 10, 0.1);   // the right one goes up
    EXPECT_NEAR(seen({0, 0, 1}, {90, 0, 40}).azimuth, -90, 0.1);    // not moved by the tilt
    EXPECT_NEAR(seen({0, 0, 1}, {90, 0, 40}).elevation, -40, 0.1);  // but down at the left ear
    EXPECT_NEAR(seen({0, 90, 1}, {90, 25, 0}).elevation, -25, 0.1); // nodding after turning
}

TEST(Rotations, GiveTheirAnglesBack) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> turn(-179, 179), nod(-89, 89);
    for (int round = 0; round < 1000; ++round) {
        const HeadAngles angles{turn(random), nod(random), turn(random)};
        const HeadAngles found = anglesOf(rotationOf(angles));
        EXPECT_NEAR(found.yaw, angles.yaw, 1e-6);
        EXPECT_NEAR(found.pitch, angles.pitch, 1e-6);
        EXPECT_NEAR(found.roll, angles.roll, 1e-6);
    }
}

// Straight up and down, only the sum or the difference of yaw and roll means anything.
TEST(Rotations, LookingStraightUpOrDownKeepTheirMatrixThroughTheirAngles) {
    for (const double pitch : {90.0, -90.0, 89.99, -89.99})
        for (const double yaw : {-140.0, -10.0, 0.0, 75.0})
            for (const double roll : {-60.0, 0.0, 120.0}) {
                const Rotation locked = rotationOf(HeadAngles{yaw, pitch, roll});
                const HeadAngles angles = anglesOf(locked);
                EXPECT_TRUE(std::isfinite(angles.yaw) && std::isfinite(angles.roll));
                EXPECT_NEAR(angles.pitch, pitch, 0.02);
                EXPECT_LT(angleBetween(locked, rotationOf(angles)), 0.1);
            }
}

TEST(Rotations, AreTakenApartIntoTheShorterTurn) {
    const Rotation right = rotationOf(HeadAngles{50, 0, 0});
    for (const Rotation& same : {right, Rotation{-right.w, -right.x, -right.y, -right.z}}) {
        const Turn turn = turnOf(same);
        EXPECT_NEAR(turn.z * 180 / std::numbers::pi, 50, 1e-9);
        EXPECT_NEAR(turn.x, 0, 1e-12);
        EXPECT_NEAR(angleBetween({}, same), 50, 1e-9);
    }
    EXPECT_NEAR(angleBetween(rotationOf(HeadAngles{170, 0, 0}), rotationOf(HeadAngles{-170, 0, 0})), 20,
                1e-9);
}

TEST(Rotations, BetweenTwoGoTheShorterWayEvenly) {
    const Rotation from = rotationOf(HeadAngles{170, 0, 0}), to = rotationOf(HeadAngles{-170, 0, 0});
    EXPECT_NEAR(angleBetween(from, between(from, to, 0.25)), 5, 1e-9);
    EXPECT_NEAR(anglesOf(between(from, to, 0.75)).yaw, -175, 1e-9);
    EXPECT_NEAR(angleBetween(to, between(from, to, 1)), 0, 1e-6);
}

TEST(Rotations, OfNoLengthOrOfNoNumbersAreNone) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(normalised({0, 0, 0, 0}));
    EXPECT_FALSE(normalised({nan, 0, 0, 1}));
    EXPECT_FALSE(normalised({1, infinity, 0, 0}));
    EXPECT_FALSE(normalised({1e300, 1e300, 0, 0})); // its length overflows
    ASSERT_TRUE(normalised({2, 0, 0, 0}));
    EXPECT_EQ(normalised({2, 0, 0, 0})->w, 1);
}

} // namespace
