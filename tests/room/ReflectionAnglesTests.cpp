// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ReflectionAngles.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using orvane::clampElevation;
using orvane::foldDelay;
using orvane::wrapAzimuth;

TEST(WrapAzimuth, KeepsPlus180AndTurnsMinus180IntoIt) {
    EXPECT_EQ(wrapAzimuth(180), 180);
    EXPECT_EQ(wrapAzimuth(-180), 180);
    EXPECT_EQ(wrapAzimuth(540), 180);
    EXPECT_EQ(wrapAzimuth(-540), 180);
    EXPECT_EQ(wrapAzimuth(181), -179);
    EXPECT_EQ(wrapAzimuth(-181), 179);
    EXPECT_EQ(wrapAzimuth(0), 0);
    EXPECT_EQ(wrapAzimuth(360), 0);
    EXPECT_EQ(wrapAzimuth(-360), 0);
}

/// Property: a whole number of turns away, and never outside the half-open circle.
TEST(WrapAzimuth, AddsWholeTurnsOnlyAndStaysWithinTheCircle) {
    for (std::int32_t degrees = -2000; degrees <= 2000; ++degrees) {
        const std::int32_t wrapped = wrapAzimuth(degrees);
        ASSERT_GT(wrapped, -180) << degrees;
        ASSERT_LE(wrapped, 180) << degrees;
        ASSERT_EQ((wrapped - degrees) % 360, 0) << degrees;
    }
}

TEST(ClampElevation, StopsAt75OnBothSides) {
    EXPECT_EQ(clampElevation(80 + 60), 75);
    EXPECT_EQ(clampElevation(75), 75);
    EXPECT_EQ(clampElevation(-75), -75);
    EXPECT_EQ(clampElevation(-76), -75);
    EXPECT_EQ(clampElevation(12), 12);
}

TEST(FoldDelay, BringsALateDelayBackByItsLastTwoDigits) {
    EXPECT_EQ(foldDelay(5123, 4000), 3977);
    EXPECT_EQ(foldDelay(4000, 4000), 4000);
    EXPECT_EQ(foldDelay(4001, 4000), 3999);
    EXPECT_EQ(foldDelay(4100, 4000), 4000);
    EXPECT_EQ(foldDelay(0, 4000), 0);
}

} // namespace
