// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/Rotation.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::track {

namespace {

constexpr double radiansPerDegree = std::numbers::pi / 180;
constexpr double smallestNorm = 1e-3;    ///< Below, a sender has written zeros rather than a rotation.
constexpr double lockedSine = 0.9999995; ///< Of a pitch 0.06 degrees short of straight up.

/// An element of the matrix; the sum with 0 turns -0 into 0, so that "no rotation" is the identity byte for byte.
float element(double value) { return static_cast<float>(value) + 0.0f; }

Rotation unit(const Rotation& q) {
    const double norm = std::sqrt(q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z);
    return {q.w / norm, q.x / norm, q.y / norm, q.z / norm};
}

} // namespace

Rotation rotationOf(const HeadAngles& angles) {
    const double yaw = angles.yaw * radiansPerDegree / 2;
    const double pitch = angles.pitch * radiansPerDegree / 2;
    const double roll = angles.roll * radiansPerDegree / 2;
    return Rotation{std::cos(yaw), 0, 0, std::sin(yaw)} * Rotation{std::cos(pitch), 0, std::sin(pitch), 0} *
           Rotation{std::cos(roll), std::sin(roll), 0, 0};
}

Rotation rotationOf(const Turn& turn) {
    const double angle = std::sqrt(turn.x * turn.x + turn.y * turn.y + turn.z * turn.z);
    if (angle < 1e-12)
        return {};
    const double scale = std::sin(angle / 2) / angle;
    return {std::cos(angle / 2), turn.x * scale, turn.y * scale, turn.z * scale};
}

HeadAngles anglesOf(const Rotation& q) {
    const double sine = std::clamp(2 * (q.w * q.y - q.x * q.z), -1.0, 1.0);
    if (std::abs(sine) > lockedSine)
        return {
            std::remainder(-2 * std::copysign(1.0, sine) * std::atan2(q.x, q.w) / radiansPerDegree, 360.0),
            std::copysign(90.0, sine), 0};
    return {std::atan2(2 * (q.w * q.z + q.x * q.y), 1 - 2 * (q.y * q.y + q.z * q.z)) / radiansPerDegree,
            std::asin(sine) / radiansPerDegree,
            std::atan2(2 * (q.w * q.x + q.y * q.z), 1 - 2 * (q.x * q.x + q.y * q.y)) / radiansPerDegree};
}

Turn turnOf(const Rotation& q) {
    const double sign = q.w < 0 ? -1 : 1;
    const double sine = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z);
    if (sine < 1e-12)
        return {};
    const double scale = sign * 2 * std::atan2(sine, std::abs(q.w)) / sine;
    return {q.x * scale, q.y * scale, q.z * scale};
}

Rotation operator*(const Rotation& a, const Rotation& b) {
    return {a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z, a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
            a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x, a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w};
}

Rotation inverse(const Rotation& q) { return {q.w, -q.x, -q.y, -q.z}; }

std::optional<Rotation> normalised(const Rotation& q) {
    const double norm = std::sqrt(q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z);
    if (!std::isfinite(norm) || norm < smallestNorm)
        return std::nullopt;
    return unit(q);
}

Rotation between(const Rotation& from, const Rotation& to, double share) {
    const Turn turn = turnOf(inverse(from) * to);
    return unit(from * rotationOf(Turn{turn.x * share, turn.y * share, turn.z * share}));
}

double angleBetween(const Rotation& one, const Rotation& other) {
    const Turn turn = turnOf(inverse(one) * other);
    return std::sqrt(turn.x * turn.x + turn.y * turn.y + turn.z * turn.z) / radiansPerDegree;
}

HeadRotationMatrix linkMatrix(const Rotation& rotation) {
    const auto [w, x, y, z] = rotation;
    // The columns are the head's right, up and ahead, each in the room's coordinates (right, up, ahead).
    return {element(1 - 2 * (x * x + z * z)),
            element(-2 * (y * z - w * x)),
            element(2 * (x * y + w * z)),
            0,
            element(-2 * (y * z + w * x)),
            element(1 - 2 * (x * x + y * y)),
            element(-2 * (x * z - w * y)),
            0,
            element(2 * (x * y - w * z)),
            element(-2 * (x * z + w * y)),
            element(1 - 2 * (y * y + z * z)),
            0,
            0,
            0,
            0,
            1};
}

} // namespace orvane::kestrum::track
