// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SpatialPosition.h"

#include "base/Angles.h"

#include <cmath>
#include <cstring>

namespace orvane {

namespace {

constexpr float halfPi = 1.5707964f;
constexpr float twoPi = 6.2831855f;
constexpr float degreesPerRadian = 57.295776f;

} // namespace

SpatialPosition::SpatialPosition(float elevationDegrees, float azimuthDegrees, float distanceMetres) noexcept
    : elevation(elevationDegrees), azimuth(azimuthDegrees), distance(distanceMetres) {
    updateCartesian();
}

void SpatialPosition::updateCartesian() noexcept {
    const float a = radiansOf(azimuth);
    const float e = radiansOf(elevation);
    x = std::sin(a) * std::cos(e) * distance;
    y = std::sin(e) * distance;
    z = std::cos(a) * std::cos(e) * distance;
}

void SpatialPosition::rotate(const HeadRotationMatrix& m) noexcept {
    if (std::memcmp(m.data(), identityRotation.data(), sizeof(HeadRotationMatrix)) == 0)
        return;
    const float newX = m[0] * x + m[4] * y + m[8] * z + m[12];
    const float newY = m[1] * x + m[5] * y + m[9] * z + m[13];
    const float newZ = m[2] * x + m[6] * y + m[10] * z + m[14];

    float radiansRight = 0;
    if (std::abs(newZ) < 0.001f)
        radiansRight = newX < 0 ? -halfPi : halfPi;
    else
        radiansRight = std::atan2(newX, newZ);
    if (radiansRight < 0)
        radiansRight += twoPi;
    const float a = radiansRight * degreesPerRadian;
    azimuth = (std::abs(a) - std::abs(a - 360.0f) + 360.0f) * 0.5f; // clamps to 0 .. 360
    if (azimuth > 180.0f)
        azimuth -= 360.0f;
    elevation = std::atan2(newY, std::sqrt(newZ * newZ + newX * newX) + 0.001f) * degreesPerRadian;
    distance = std::sqrt(newY * newY + newZ * newZ + newX * newX);
    updateCartesian();
}

} // namespace orvane
