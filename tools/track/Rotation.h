// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/HeadRotationMatrix.h"

#include <optional>

namespace orvane::kestrum::track {

/// Where a head looks, one turn after the other: first about the vertical, then up or down, then to a shoulder.
///
/// Units   degrees; positive to the right, upwards, and towards the right shoulder.
struct HeadAngles {
    double yaw = 0;
    double pitch = 0;
    double roll = 0;
};

/// A turn as its axis, as long as its angle.
///
/// Units   radians; the frame is Rotation's.
struct Turn {
    double x = 0;
    double y = 0;
    double z = 0;
};

/// How a head is turned against "straight ahead": a unit quaternion that takes the head's own axes to the room's.
///
/// Frame   right-handed: x ahead, y right, z down. A turn about z is yaw, about y pitch, about x roll, each with
///         the sign that HeadAngles has.
struct Rotation {
    double w = 1;
    double x = 0;
    double y = 0;
    double z = 0;
};

/// Any finite angles.
Rotation rotationOf(const HeadAngles& angles);
Rotation rotationOf(const Turn& turn);

/// Looking straight up or down, yaw and roll are one turn; all of it is then called yaw.
HeadAngles anglesOf(const Rotation& q);

/// The shorter way round.
Turn turnOf(const Rotation& q);

/// First `a`, then `b` about the axes that `a` has turned.
Rotation operator*(const Rotation& a, const Rotation& b);
Rotation inverse(const Rotation& q);

/// Of unit length. Empty when the numbers are no rotation: not finite, or next to nothing.
std::optional<Rotation> normalised(const Rotation& q);

/// The part `share` of the shorter way from one to the other; 0 gives `from`, 1 `to`.
Rotation between(const Rotation& from, const Rotation& to, double share);

/// @return degrees, 0 to 180.
double angleBetween(const Rotation& one, const Rotation& other);

/// The matrix of the link: a point of the room, seen from the head.
HeadRotationMatrix linkMatrix(const Rotation& rotation);

} // namespace orvane::kestrum::track
