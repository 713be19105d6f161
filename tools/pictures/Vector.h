// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>

namespace orvane::kestrum::pictures {

/// A place in metres (x right, y up, z ahead), a direction, or linear light in red, green and blue.
struct Vector {
    float x = 0;
    float y = 0;
    float z = 0;
};

constexpr Vector operator+(const Vector& a, const Vector& b) noexcept {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
constexpr Vector operator-(const Vector& a, const Vector& b) noexcept {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
constexpr Vector operator*(const Vector& a, const Vector& b) noexcept {
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}
constexpr Vector operator*(const Vector& a, float factor) noexcept {
    return {a.x * factor, a.y * factor, a.z * factor};
}
constexpr float dot(const Vector& a, const Vector& b) noexcept { return a.x * b.x + a.y * b.y + a.z * b.z; }
constexpr Vector cross(const Vector& a, const Vector& b) noexcept {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline Vector unit(const Vector& a) noexcept { return a * (1.0f / std::sqrt(dot(a, a))); }

struct Ray {
    Vector origin;
    Vector direction; ///< Of length one.
};

} // namespace orvane::kestrum::pictures
