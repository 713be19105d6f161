// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace orvane {

/// A rotation of the scene, 16 floats row by row; element (r, c) at index 4 r + c.
///
/// A point is a row vector (x, y, z, 1) that multiplies the matrix from the left:
///
///     x' = m0 x + m4 y +  m8 z + m12
///     y' = m1 x + m5 y +  m9 z + m13
///     z' = m2 x + m6 y + m10 z + m14
///
/// Frame: +z is ahead, +y up, +x at azimuth +90 degrees (right). The identity means no rotation.
using HeadRotationMatrix = std::array<float, 16>;

inline constexpr HeadRotationMatrix identityRotation{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

} // namespace orvane
