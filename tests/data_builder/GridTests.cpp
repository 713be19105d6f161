// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/Grid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <numeric>

using namespace orvane::kestrum::tools;

namespace {

/// The order is written out by hand from the file format: south pole, group ahead, north pole, the other
/// groups.
TEST(GridOrder, BeginsWithTheSouthPoleThenTheGroupAheadThenTheNorthPole) {
    const auto places = gridPlaces();
    ASSERT_EQ(places.size(), 2522u);
    EXPECT_EQ(places[0].elevationDegrees, -90);
    EXPECT_EQ(places[1].azimuthDegrees, 0);
    EXPECT_EQ(places[1].elevationDegrees, -85);
    EXPECT_EQ(places[18].elevationDegrees, 0);
    EXPECT_EQ(places[35].elevationDegrees, 85);
    EXPECT_EQ(places[36].elevationDegrees, 90);
    EXPECT_EQ(places[37].azimuthDegrees, 5);
    EXPECT_EQ(places[37].elevationDegrees, -85);
    EXPECT_EQ(places[2521].azimuthDegrees, 355);
    EXPECT_EQ(places[2521].elevationDegrees, 85);
}

/// Property: looking a place up gives its own index.
TEST(GridOrder, IndexOfEveryPlaceIsWhereItStands) {
    const auto places = gridPlaces();
    for (std::size_t index = 0; index < places.size(); ++index)
        ASSERT_EQ(gridIndex(places[index].azimuthDegrees, places[index].elevationDegrees), index);
    EXPECT_EQ(gridIndex(-90, 0), gridIndex(270, 0));
    EXPECT_EQ(gridIndex(360, 20), gridIndex(0, 20));
    EXPECT_EQ(gridIndex(35, 90), 36u);
}

/// Analytic: the areas of the cells tile the sphere; a cell on the horizon is larger than one near the pole
/// by the cosine.
TEST(GridWeights, AddUpToTheSphereAndShrinkTowardsThePoles) {
    const auto weights = gridWeights();
    EXPECT_NEAR(std::accumulate(weights.begin(), weights.end(), 0.0), 1.0, 1e-12);
    EXPECT_NEAR(weights[gridIndex(0, 60)] / weights[gridIndex(0, 0)], 0.5, 1e-12);
    EXPECT_DOUBLE_EQ(weights[0], weights[36]);
}

/// Analytic: the frame is right, up, ahead.
TEST(Directions, CountAzimuthToTheRightAndElevationUp) {
    const Direction right = directionFrom(90, 0);
    EXPECT_NEAR(right.x, 1, 1e-15);
    EXPECT_NEAR(directionFrom(0, 90).y, 1, 1e-15);
    EXPECT_NEAR(directionFrom(0, 0).z, 1, 1e-15);
    EXPECT_NEAR(azimuthDegrees(directionFrom(-135, 20)), -135, 1e-12);
    EXPECT_NEAR(elevationDegrees(directionFrom(-135, 20)), 20, 1e-12);
    EXPECT_NEAR(azimuthDegrees(directionFrom(-180, 0)), 180, 1e-12);
    EXPECT_EQ(azimuthDegrees(directionFrom(77, 90)), 0);
    EXPECT_NEAR(lateralDegrees(directionFrom(150, 0)), 30, 1e-12);
}

} // namespace
