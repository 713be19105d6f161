// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/SourcePosition.h"

#include <algorithm>
#include <cmath>

namespace orvane {

float warpAzimuth(float azimuthDegrees, float exponent) noexcept {
    if (exponent >= 0.99f && exponent <= 1.01f)
        return azimuthDegrees;
    if (azimuthDegrees > 0.0f && azimuthDegrees < 90.0f)
        return std::pow(azimuthDegrees, exponent) * 90.0f / std::pow(90.0f, exponent);
    if (azimuthDegrees < 0.0f && azimuthDegrees > -90.0f)
        return std::pow(std::abs(azimuthDegrees), exponent) * -90.0f / std::pow(90.0f, exponent);
    return azimuthDegrees;
}

SpatialPosition sourcePosition(const ISpatialParameterSetView& view) noexcept {
    const float elevation = view.getElevation();
    const float azimuth = warpAzimuth(view.getAzimuth(), view.getAzimuthExponent());
    const float distance = std::max(view.getDistance() * view.getDistanceScale(), 0.1f);
    SpatialPosition position(elevation, azimuth, distance);
    position.rotate(view.getHeadRotation());
    return position;
}

} // namespace orvane
