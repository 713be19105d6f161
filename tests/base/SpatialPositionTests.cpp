// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SpatialPosition.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using orvane::HeadRotationMatrix;
using orvane::SpatialPosition;

/// A turn about the vertical axis that carries a source ahead to azimuth -degrees.
HeadRotationMatrix yaw(double degrees) {
    const double theta = degrees * std::numbers::pi / 180.0;
    HeadRotationMatrix matrix = orvane::identityRotation;
    matrix[0] = static_cast<float>(std::cos(theta));
    matrix[2] = static_cast<float>(std::sin(theta));
    matrix[8] = static_cast<float>(-std::sin(theta));
    matrix[10] = static_cast<float>(std::cos(theta));
    return matrix;
}

// Expected values: the frame itself (+x right, +y up, +z ahead).
TEST(SpatialPosition, PutsTheAxesWhereTheFrameSaysTheyAre) {
    const SpatialPosition ahead(0, 0, 2);
    EXPECT_FLOAT_EQ(ahead.z, 2);
    EXPECT_FLOAT_EQ(ahead.x, 0);
    const SpatialPosition right(0, 90, 2);
    EXPECT_FLOAT_EQ(right.x, 2);
    EXPECT_NEAR(right.z, 0, 1e-6); // cos of a float near pi/2
    const SpatialPosition above(90, 0, 2);
    EXPECT_FLOAT_EQ(above.y, 2);
}

TEST(SpatialPosition, TheIdentityLeavesEvenAnAzimuthBeyondTheNormalRangeAlone) {
    SpatialPosition position(10, 400, 1.5f);
    position.rotate(orvane::identityRotation);
    EXPECT_EQ(position.azimuth, 400.0f);
    EXPECT_EQ(position.elevation, 10.0f);
}

TEST(SpatialPosition, AnotherMatrixBringsTheAzimuthIntoItsNormalRange) {
    SpatialPosition position(0, 400, 1.5f);
    HeadRotationMatrix almostIdentity = orvane::identityRotation;
    almostIdentity[12] = 1e-7f;
    position.rotate(almostIdentity);
    EXPECT_NEAR(position.azimuth, 40.0f, 1e-3f);
}

TEST(SpatialPosition, WithZExactlyZeroTheSideDecidesTheAzimuth) {
    SpatialPosition right(0, 0, 1);
    right.x = 1;
    right.z = 0;
    HeadRotationMatrix notQuiteIdentity = orvane::identityRotation;
    notQuiteIdentity[15] = 2; // column 3 is never read, so only the shortcut is left out
    right.rotate(notQuiteIdentity);
    EXPECT_NEAR(right.azimuth, 90.0f, 1e-4f);

    SpatialPosition left(0, 0, 1);
    left.x = -1;
    left.z = 0;
    left.rotate(notQuiteIdentity);
    EXPECT_NEAR(left.azimuth, -90.0f, 1e-4f);
}

TEST(SpatialPosition, ASourceBehindStaysBehindInsideTheNormalRange) {
    SpatialPosition behind(0, 180, 1);
    HeadRotationMatrix notQuiteIdentity = orvane::identityRotation;
    notQuiteIdentity[15] = 2;
    behind.rotate(notQuiteIdentity);
    EXPECT_NEAR(std::abs(behind.azimuth), 180.0f,
                1e-3f); // float pi lies just beyond pi, so the sign may turn
    EXPECT_GT(behind.azimuth, -180.0f);
    EXPECT_LE(behind.azimuth, 180.0f);
}

class SpatialPositionYaw : public ::testing::TestWithParam<int> {};

// Analytic reference: a yaw by theta takes theta off every azimuth, modulo 360.
TEST_P(SpatialPositionYaw, TurnsASourceByTheAngleOfTheMatrix) {
    for (int source = -175; source <= 180; source += 5) {
        SpatialPosition position(20, static_cast<float>(source), 1.5f);
        position.rotate(yaw(GetParam()));
        const double difference =
            std::remainder(position.azimuth - static_cast<double>(source - GetParam()), 360.0);
        EXPECT_NEAR(difference, 0.0, 0.06)
            << source; // the branch for |z| < 0.001 snaps by up to 0.04 degrees
        EXPECT_NEAR(position.elevation, 20.0f, 0.05f); // the 0.001 in the elevation's formula
        EXPECT_NEAR(position.distance, 1.5f, 1e-5f);
        EXPECT_GT(position.azimuth, -180.0f);
        EXPECT_LE(position.azimuth, 180.0f);
    }
}
INSTANTIATE_TEST_SUITE_P(AroundTheCircle, SpatialPositionYaw,
                         ::testing::Values(-180, -91, -30, 1, 45, 90, 135, 179));

TEST(SpatialPosition, TheTranslationRowMovesThePoint) {
    SpatialPosition position(0, 0, 1);
    HeadRotationMatrix forward = orvane::identityRotation;
    forward[14] = 1;
    position.rotate(forward);
    EXPECT_FLOAT_EQ(position.distance, 2.0f);
    EXPECT_FLOAT_EQ(position.z, 2.0f);
}

} // namespace
