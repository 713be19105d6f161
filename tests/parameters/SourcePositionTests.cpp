// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/SourcePosition.h"

#include "parameters/ParameterSet.h"
#include "parameters/core/ParameterSet.h"
#include "parameters/core/SpeakerParameterSetView.h"
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using orvane::HeadRotationMatrix;
using orvane::ParameterSet;
using orvane::sourcePosition;
using orvane::SpatialPosition;
using orvane::warpAzimuth;
namespace core = orvane::kestrum::core;

TEST(WarpedAzimuth, IsUntouchedByExponentsNearOne) {
    for (const float exponent : {0.99f, 0.995f, 1.0f, 1.01f})
        for (const float azimuth : {-179.5f, -89.9f, -30.0f, 0.0f, 0.1f, 45.0f, 90.0f, 180.0f})
            EXPECT_EQ(warpAzimuth(azimuth, exponent), azimuth);
    EXPECT_NE(warpAzimuth(45.0f, std::nextafter(0.99f, 0.0f)), 45.0f);
    EXPECT_NE(warpAzimuth(45.0f, std::nextafter(1.01f, 2.0f)), 45.0f);
}

TEST(WarpedAzimuth, KeepsAheadTheSidesAndTheRearHalf) {
    for (const float exponent : {0.2f, 0.5f, 1.5f, 3.0f})
        for (const float azimuth : {0.0f, 90.0f, -90.0f, 90.5f, -135.0f, 180.0f})
            EXPECT_EQ(warpAzimuth(azimuth, exponent), azimuth);
}

// Slow reference: a^x * 90^(1 - x) in double precision.
TEST(WarpedAzimuth, BendsTheFrontalHalf) {
    for (const float exponent : {0.25f, 0.5f, 0.98f, 1.02f, 1.5f, 2.0f, 4.0f}) {
        for (float azimuth = 0.5f; azimuth < 90.0f; azimuth += 3.0f) {
            const double x = static_cast<double>(exponent);
            const double expected = std::pow(static_cast<double>(azimuth), x) * std::pow(90.0, 1.0 - x);
            // two powers, a product and a quotient in floats
            EXPECT_NEAR(warpAzimuth(azimuth, exponent) / expected, 1.0, 1e-6) << azimuth << " ^ " << exponent;
        }
    }
    EXPECT_FLOAT_EQ(warpAzimuth(30.0f, 2.0f), 10.0f);
    EXPECT_FLOAT_EQ(warpAzimuth(-30.0f, 2.0f), -10.0f);
}

// Property: left and right are bent alike, to the last bit.
TEST(WarpedAzimuth, IsMirrorSymmetric) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> azimuths(0.0f, 180.0f);
    std::uniform_real_distribution<float> exponents(0.1f, 4.0f);
    for (int round = 0; round < 1000; ++round) {
        const float azimuth = azimuths(random);
        const float exponent = exponents(random);
        EXPECT_EQ(warpAzimuth(-azimuth, exponent), -warpAzimuth(azimuth, exponent));
    }
}

TEST(SourcePosition, IsTheViewsOwnWhenNothingBendsOrTurnsIt) {
    ParameterSet set;
    set.setAzimuth(-110.0f, false);
    set.setElevation(30.0f, false);
    set.setDistance(1.5f, false);
    const SpatialPosition position = sourcePosition(set);
    EXPECT_EQ(position.azimuth, -110.0f);
    EXPECT_EQ(position.elevation, 30.0f);
    EXPECT_EQ(position.distance, 1.5f);
    EXPECT_EQ(position.x, SpatialPosition(30.0f, -110.0f, 1.5f).x);
}

TEST(SourcePosition, ScalesTheDistanceAndTakesNothingBelowTenCentimetres) {
    ParameterSet set;
    set.setDistance(2.0f, false);
    set.setDistanceScale(3.0f, false);
    EXPECT_EQ(sourcePosition(set).distance, 6.0f);
    for (const float distance : {0.0f, 0.02f, -5.0f}) {
        set.setDistance(distance, false);
        EXPECT_EQ(sourcePosition(set).distance, 0.1f);
    }
    EXPECT_FLOAT_EQ(sourcePosition(set).z, 0.1f);
}

TEST(SourcePosition, IsBentBeforeItIsTurned) {
    /// A set whose head looks 90 degrees to the left of the scene.
    struct Turned final : core::ParameterSet {
        Turned() : core::ParameterSet(std::make_unique<orvane::ParameterSet>()) {}
        HeadRotationMatrix getHeadRotation() const noexcept override {
            return {0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1}; // x' = z, z' = -x
        }
    } set;
    set.setAzimuth(30.0f, false);
    set.setAzimuthExponent(2.0f, false);
    set.setDistance(2.0f, false);
    const SpatialPosition position = sourcePosition(set);
    EXPECT_NEAR(position.azimuth, 100.0f, 1e-4); // 30 bent to 10, then turned by 90
    EXPECT_NEAR(position.distance, 2.0f, 1e-6);

    // A loudspeaker's view turns with the set that it stands in.
    const core::SpeakerParameterSetView view(SpatialPosition(0.0f, 0.0f, 1.5f), &set);
    EXPECT_NEAR(sourcePosition(view).azimuth, 90.0f, 1e-4);
}

TEST(SourcePosition, IsFoundWithoutAllocationOrLock) {
    ParameterSet set;
    set.setAzimuth(45.0f, false);
    set.setAzimuthExponent(1.5f, false);
    const test::RealtimeScope scope;
    const SpatialPosition position = sourcePosition(set);
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
    EXPECT_LT(position.azimuth, 45.0f);
}

} // namespace
