// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/Direction.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::tools {

namespace {

constexpr double radiansPerDegree = std::numbers::pi / 180.0;

} // namespace

Direction directionFrom(double azimuthDegrees, double elevationDegrees) {
    const double azimuth = azimuthDegrees * radiansPerDegree;
    const double elevation = elevationDegrees * radiansPerDegree;
    const double level = std::cos(elevation);
    return {level * std::sin(azimuth), std::sin(elevation), level * std::cos(azimuth)};
}

double azimuthDegrees(const Direction& direction) {
    constexpr double poleRadius = 1e-9;
    if (std::hypot(direction.x, direction.z) < poleRadius)
        return 0;
    const double azimuth = std::atan2(direction.x, direction.z) / radiansPerDegree;
    return azimuth <= -180.0 ? 180.0 : azimuth;
}

double elevationDegrees(const Direction& direction) {
    return std::atan2(direction.y, std::hypot(direction.x, direction.z)) / radiansPerDegree;
}

double lateralDegrees(const Direction& direction) {
    return std::asin(std::clamp(direction.x, -1.0, 1.0)) / radiansPerDegree;
}

double dot(const Direction& one, const Direction& other) {
    return one.x * other.x + one.y * other.y + one.z * other.z;
}

Direction cross(const Direction& one, const Direction& other) {
    return {one.y * other.z - one.z * other.y, one.z * other.x - one.x * other.z,
            one.x * other.y - one.y * other.x};
}

Direction normalised(const Direction& direction) {
    const double length = std::sqrt(dot(direction, direction));
    return {direction.x / length, direction.y / length, direction.z / length};
}

double angleBetween(const Direction& one, const Direction& other) {
    const Direction across = cross(one, other);
    return std::atan2(std::sqrt(dot(across, across)), dot(one, other));
}

} // namespace orvane::kestrum::tools
