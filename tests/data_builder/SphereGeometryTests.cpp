// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/SphereGeometry.h"

#include "SyntheticHead.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numbers>
#include <numeric>
#include <utility>

using namespace orvane::kestrum::tools;

namespace {

constexpr double sphere = 4 * std::numbers::pi;

const std::vector<Direction> octahedron{{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}};

/// Analytic: six like cells share the sphere.
TEST(SolidAngles, OfAnOctahedronAreASixthOfTheSphereEach) {
    for (const double angle : solidAngles(octahedron))
        EXPECT_NEAR(angle, sphere / 6, 1e-9);
}

class SolidAnglesOfScatters : public ::testing::TestWithParam<std::vector<Direction>> {};

/// Property: cells tile the sphere, whatever the scatter.
TEST_P(SolidAnglesOfScatters, AddUpToTheWholeSphere) {
    const auto angles = solidAngles(GetParam());
    EXPECT_NEAR(std::accumulate(angles.begin(), angles.end(), 0.0), sphere, 1e-6);
    for (const double angle : angles)
        EXPECT_GT(angle, 0);
}
INSTANTIATE_TEST_SUITE_P(RegularAndIrregularGrids, SolidAnglesOfScatters,
                         ::testing::Values(test::rings(10, -40), test::rings(15, -90), test::spiral(500),
                                           test::scattered(300, 7)));

std::map<std::size_t, double> weightMap(const std::vector<Direction>& sites, const Direction& query) {
    std::map<std::size_t, double> result;
    for (const SiteWeight& weight : naturalWeights(sites, query))
        result[weight.site] += weight.value;
    return result;
}

/// Analytic: the middle of an octant has its three corners as neighbours, each as near as the others.
TEST(NaturalWeights, AreEqualBetweenEquallyNearSites) {
    const auto weights = weightMap(octahedron, normalised({1, 1, 1}));
    for (const std::size_t site : {0u, 2u, 4u})
        EXPECT_NEAR(weights.at(site), 1.0 / 3, 1e-9);
}

TEST(NaturalWeights, TakeOneSiteAloneWhereTheQueryHitsIt) {
    const auto sites = test::spiral(200);
    for (std::size_t site = 0; site < sites.size(); site += 17) {
        const auto weights = naturalWeights(sites, sites[site]);
        ASSERT_EQ(weights.size(), 1u);
        EXPECT_EQ(weights[0].site, site);
        EXPECT_EQ(weights[0].value, 1.0);
    }
}

/// Property: near a site the weights pass over to it without a jump.
TEST(NaturalWeights, PassOverSmoothlyToASiteThatTheQueryNears) {
    const auto sites = test::rings(10, -90);
    const auto weights = weightMap(sites, directionFrom(40.01, 20.01));
    double largest = 0;
    for (const auto& [site, value] : weights)
        largest = std::max(largest, value);
    EXPECT_GT(largest, 0.99); // a thousandth of the spacing away
}

/// Analytic: the four corners of one field of a regular grid lie on a circle; by symmetry each counts as its
/// mirror does.
TEST(NaturalWeights, OfAQueryInTheMiddleOfAFieldMirror) {
    const auto sites = test::rings(10, -90);
    const auto weights = weightMap(sites, directionFrom(45, 25));
    double sum = 0;
    for (const auto& [site, value] : weights) {
        const Direction mirror =
            directionFrom(90 - azimuthDegrees(sites[site]), elevationDegrees(sites[site]));
        for (const auto& [other, otherValue] : weights)
            if (angleBetween(sites[other], mirror) < 1e-6) {
                EXPECT_NEAR(value, otherValue, 1e-9);
            }
        sum += value;
    }
    EXPECT_NEAR(sum, 1, 1e-12);
}

/// Property: a smooth field is met between the sites. The weights are exact for linear fields on a plane; on
/// the sphere with sites some 8 degrees apart what is left of a coordinate is of the order of 1 - cos(4
/// degrees).
TEST(NaturalWeights, ReproduceCoordinatesOnIrregularGrids) {
    const auto sites = test::scattered(600, 3);
    for (const Direction& query : test::spiral(50)) {
        Direction mean{0, 0, 0};
        for (const SiteWeight& weight : naturalWeights(sites, query)) {
            mean.x += weight.value * sites[weight.site].x;
            mean.y += weight.value * sites[weight.site].y;
            mean.z += weight.value * sites[weight.site].z;
        }
        EXPECT_LT(angleBetween(normalised(mean), query) * 180 / std::numbers::pi, 2.0);
    }
}

TEST(CellNeighbours, OfAnOctahedronsCornerAreTheFourAround) {
    EXPECT_EQ(cellNeighbours(octahedron, 0), (std::vector<std::size_t>{2, 3, 4, 5}));
}

TEST(NearestSite, IsTheAngleToTheNextOne) {
    EXPECT_NEAR(nearestSiteDegrees(octahedron, normalised({1, 1, 0})), 45, 1e-9);
    EXPECT_NEAR(nearestSiteDegrees(octahedron, {0, 0, 1}), 0, 1e-9);
}

} // namespace
