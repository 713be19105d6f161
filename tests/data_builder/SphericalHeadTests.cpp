// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/SphericalHead.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace orvane::kestrum::tools;

namespace {

constexpr double pi = std::numbers::pi;

/// Analytic limit for a slow wave: the sum of (2m + 1) / (m + 1) * rho^-m * P_m(cos incidence), with the
/// Legendre polynomials of the standard library. At 2 Hz the series differs from its limit by the square of k
/// a, some 1e-5.
TEST(SphereLevel, AtLowFrequencyMeetsTheStaticLimit) {
    for (const double distance : {0.25, 1.4})
        for (const double incidence : {0.0, pi / 3, pi / 2, pi}) {
            const double rho = distance / headRadiusMetres;
            double expected = 0;
            for (unsigned m = 0; m < 60; ++m)
                expected += (2.0 * m + 1) / (m + 1) * std::pow(rho, -static_cast<double>(m)) *
                            std::legendre(m, std::cos(incidence));
            EXPECT_NEAR(sphereLevel(2, incidence, distance), expected, 1e-3);
        }
}

/// Analytic: a hard sphere much larger than the wave doubles the pressure where the wave meets it head on;
/// the source is nearer to that spot than to the middle by the radius.
TEST(SphereLevel, AtHighFrequencyDoublesThePressureHeadOn) {
    EXPECT_NEAR(sphereLevel(18000, 0, 100), 2.0, 0.02);
    EXPECT_NEAR(sphereLevel(18000, 0, 1.4), 2.0 * 1.4 / (1.4 - headRadiusMetres), 0.03);
}

/// Known of diffraction: straight behind the sphere all ways round are equally long, so it is louder there
/// than beside it.
TEST(SphereLevel, HasItsBrightSpotBehind) {
    EXPECT_GT(sphereLevel(6000, pi, 1.4), sphereLevel(6000, 150 * pi / 180, 1.4));
    EXPECT_LT(sphereLevel(6000, pi, 1.4), 1.0);
}

TEST(SphericalHead, TablesTheLevelsOfTheSeries) {
    const SphericalHead head(1.4, 100, 50);
    const Direction source =
        directionFrom(50, 0); // 40 degrees from the right ear's axis, 140 from the left's
    EXPECT_NEAR(head.levels(source, rightEar)[20], sphereLevel(2000, 40 * pi / 180, 1.4), 1e-9);
    EXPECT_NEAR(head.levels(source, leftEar)[20], sphereLevel(2000, 140 * pi / 180, 1.4), 1e-9);
}

/// Analytic: the near ear is reached a radius early, the far ear after a quarter of the way round; from ahead
/// both at once.
TEST(SphericalHead, ArrivesEarlyAtTheNearEarAndRoundTheHeadAtTheFar) {
    const SphericalHead head(100, 1000, 2);
    const Direction right = directionFrom(90, 0);
    EXPECT_NEAR(head.arrivalSeconds(right, rightEar), -headRadiusMetres / speedOfSound, 1e-9);
    EXPECT_NEAR(head.arrivalSeconds(right, leftEar), headRadiusMetres * pi / 2 / speedOfSound, 1e-6);
    EXPECT_DOUBLE_EQ(head.arrivalSeconds({0, 0, 1}, leftEar), head.arrivalSeconds({0, 0, 1}, rightEar));
}

TEST(SphericalHead, TakesASetWithoutADistanceForAFarOne) {
    const SphericalHead head(0, 100, 3);
    EXPECT_NEAR(head.levels({0, 0, 1}, leftEar)[0], 1, 0.01);
}

} // namespace
