// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/Direction.h"

#include <cstddef>
#include <vector>

namespace orvane::kestrum::tools {

/// How much one site counts for a direction between sites.
struct SiteWeight {
    std::size_t site = 0;
    double value = 0;
};

/// Weights of the natural neighbours of `query`, adding up to 1: each neighbour counts by the length of the
/// border that the query's Voronoi cell would share with it over its distance. Works on any scatter of sites,
/// is the same whichever way sites on one circle are joined, mirrors where the sites mirror, and is exactly
/// one site where the query hits it.
///
/// Source  the non-Sibsonian (Laplace) weights of Belikov et al. 1997, taken on the sphere.
std::vector<SiteWeight> naturalWeights(const std::vector<Direction>& sites, const Direction& query);

/// The solid angle of each site's Voronoi cell, adding up to 4 pi on sites that surround the sphere. Sites on
/// one spot (closer than 1e-6) get the cell of the spot, each.
///
/// Units   steradians.
/// Source  half-planes in the plane tangent at the site; areas after Van Oosterom and Strackee 1983.
std::vector<double> solidAngles(const std::vector<Direction>& sites);

/// The sites whose Voronoi cells border on that of `site`, in ascending order.
std::vector<std::size_t> cellNeighbours(const std::vector<Direction>& sites, std::size_t site);

/// Angle from `query` to the nearest site, in degrees; 180 without sites.
double nearestSiteDegrees(const std::vector<Direction>& sites, const Direction& query);

} // namespace orvane::kestrum::tools
