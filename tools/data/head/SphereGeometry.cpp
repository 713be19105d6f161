// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/SphereGeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>

namespace orvane::kestrum::tools {

namespace {

constexpr std::size_t noSite = std::numeric_limits<std::size_t>::max();
constexpr double sameSpotRadians = 1e-6;

/// A corner of a cell in the tangent plane, and the site behind the border that starts there.
struct Corner {
    double u = 0;
    double v = 0;
    std::size_t border = noSite;
};

/// The Voronoi cell of a point among sites, seen in the plane that touches the sphere there. A great circle
/// is a straight line in that plane, so the cell is what half-planes leave of it.
class Cell {
public:
    explicit Cell(const Direction& middle)
        : middle(middle),
          first(
              normalised(cross(std::abs(middle.y) < 0.9 ? Direction{0, 1, 0} : Direction{1, 0, 0}, middle))),
          second(cross(middle, first)) {
        constexpr double edge = 60; // the tangent of 89 degrees: next to the whole half sphere
        corners = {{-edge, -edge}, {edge, -edge}, {edge, edge}, {-edge, edge}};
    }

    /// Takes away what lies nearer to the site than to the middle.
    void cut(const Direction& site, std::size_t index) {
        const double u = dot(site, first);
        const double v = dot(site, second);
        // Points m + u a + v b with equal products to m and site: u s_a + v s_b = 1 - m s.
        const double limit = 1 - dot(middle, site);
        const auto excess = [&](const Corner& corner) { return corner.u * u + corner.v * v - limit; };
        std::vector<Corner> kept;
        kept.reserve(corners.size() + 2);
        for (std::size_t index1 = 0; index1 < corners.size(); ++index1) {
            const Corner& from = corners[index1];
            const Corner& to = corners[(index1 + 1) % corners.size()];
            const double before = excess(from);
            const double after = excess(to);
            if (before <= 0)
                kept.push_back(from);
            if ((before <= 0) == (after <= 0))
                continue;
            const double part = before / (before - after);
            // Leaving the half-plane starts the new border; coming back goes on along the old one.
            kept.push_back({from.u + part * (to.u - from.u), from.v + part * (to.v - from.v),
                            before <= 0 ? index : from.border});
        }
        corners = std::move(kept);
    }

    double reach() const {
        double farthest = 0;
        for (const Corner& corner : corners)
            farthest = std::max(farthest, std::hypot(corner.u, corner.v));
        return farthest;
    }

    Direction onSphere(const Corner& corner) const {
        return normalised({middle.x + corner.u * first.x + corner.v * second.x,
                           middle.y + corner.u * first.y + corner.v * second.y,
                           middle.z + corner.u * first.z + corner.v * second.z});
    }

    double solidAngle() const {
        double sum = 0;
        for (std::size_t index = 0; index < corners.size(); ++index) {
            const Direction from = onSphere(corners[index]);
            const Direction to = onSphere(corners[(index + 1) % corners.size()]);
            sum += 2 * std::atan2(dot(middle, cross(from, to)),
                                  1 + dot(middle, from) + dot(from, to) + dot(to, middle));
        }
        return sum;
    }

    Direction middle;
    Direction first;
    Direction second;
    std::vector<Corner> corners;
};

std::vector<std::size_t> byDistance(const std::vector<Direction>& sites, const Direction& from,
                                    std::vector<double>& products) {
    products.resize(sites.size());
    std::ranges::transform(sites, products.begin(), [&](const Direction& site) { return dot(site, from); });
    std::vector<std::size_t> order(sites.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, [&](std::size_t one, std::size_t other) {
        return products[one] != products[other] ? products[one] > products[other] : one < other;
    });
    return order;
}

/// The cell of `middle`, cut by the sites from near to far until the rest is too far to matter.
Cell cellOf(const std::vector<Direction>& sites, const Direction& middle,
            const std::vector<std::size_t>& order) {
    Cell cell(middle);
    for (const std::size_t site : order) {
        const double distance = angleBetween(sites[site], middle);
        if (distance < sameSpotRadians)
            continue;
        if (std::tan(std::min(distance / 2, 1.57)) > cell.reach())
            break;
        cell.cut(sites[site], site);
    }
    return cell;
}

} // namespace

std::vector<SiteWeight> naturalWeights(const std::vector<Direction>& sites, const Direction& query) {
    std::vector<double> products;
    const std::vector<std::size_t> order = byDistance(sites, query, products);
    if (order.empty())
        return {};
    if (angleBetween(sites[order.front()], query) < sameSpotRadians)
        return {{order.front(), 1.0}};
    const Cell cell = cellOf(sites, query, order);
    std::vector<SiteWeight> weights;
    double sum = 0;
    for (std::size_t index = 0; index < cell.corners.size(); ++index) {
        const Corner& from = cell.corners[index];
        if (from.border == noSite)
            continue;
        const Corner& to = cell.corners[(index + 1) % cell.corners.size()];
        const double length = angleBetween(cell.onSphere(from), cell.onSphere(to));
        const double value = length / angleBetween(sites[from.border], query);
        constexpr double negligible = 1e-12; // borders of no length between sites on one circle
        if (value < negligible)
            continue;
        weights.push_back({from.border, value});
        sum += value;
    }
    if (weights.empty())
        return {{order.front(), 1.0}};
    for (SiteWeight& weight : weights)
        weight.value /= sum;
    return weights;
}

std::vector<double> solidAngles(const std::vector<Direction>& sites) {
    std::vector<double> areas(sites.size());
    std::vector<double> products;
    for (std::size_t site = 0; site < sites.size(); ++site)
        areas[site] = cellOf(sites, sites[site], byDistance(sites, sites[site], products)).solidAngle();
    return areas;
}

std::vector<std::size_t> cellNeighbours(const std::vector<Direction>& sites, std::size_t site) {
    std::vector<double> products;
    const Cell cell = cellOf(sites, sites[site], byDistance(sites, sites[site], products));
    std::vector<std::size_t> neighbours;
    for (const Corner& corner : cell.corners)
        if (corner.border != noSite)
            neighbours.push_back(corner.border);
    std::ranges::sort(neighbours);
    neighbours.erase(std::unique(neighbours.begin(), neighbours.end()), neighbours.end());
    return neighbours;
}

double nearestSiteDegrees(const std::vector<Direction>& sites, const Direction& query) {
    double nearest = std::numbers::pi;
    for (const Direction& site : sites)
        nearest = std::min(nearest, angleBetween(site, query));
    return nearest * 180.0 / std::numbers::pi;
}

} // namespace orvane::kestrum::tools
