// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

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

/// Whether the scene can be turned by a matrix that comes from outside: everything of it that is read, columns 0 to 2, is a
/// number, and none so large that a point of the scene would leave what distances and delays are computed in. A turn has
/// elements up to 1; the bound leaves room for any scale and translation that might be meant.
inline bool canTurnTheScene(const HeadRotationMatrix& matrix) noexcept {
    constexpr float largest = 1000.0f;
    bool can = true;
    for (std::size_t index = 0; index < matrix.size(); ++index)
        can = can && (index % 4 == 3 || std::abs(matrix[index]) <= largest); // false for what is no number
    return can;
}

} // namespace orvane
