// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::tools {

/// Where a source stands, as a unit vector from the middle of the head.
///
/// Frame   as everywhere in the product: +x right (azimuth +90), +y up, +z ahead (azimuth 0).
struct Direction {
    double x = 0;
    double y = 0;
    double z = 1;
};

/// Units   degrees; azimuth positive to the right, elevation positive up.
Direction directionFrom(double azimuthDegrees, double elevationDegrees);

/// @return -180 (excluded) to +180; 0 at the poles.
double azimuthDegrees(const Direction& direction);

/// @return -90 to +90.
double elevationDegrees(const Direction& direction);

/// How far the source stands to the side: -90 at the left ear's axis, 0 in the median plane, +90 at the right
/// ear's.
double lateralDegrees(const Direction& direction);

double dot(const Direction& one, const Direction& other);
Direction cross(const Direction& one, const Direction& other);
Direction normalised(const Direction& direction);

/// Angle between two directions in radians, exact also where they nearly agree or oppose.
double angleBetween(const Direction& one, const Direction& other);

} // namespace orvane::kestrum::tools
