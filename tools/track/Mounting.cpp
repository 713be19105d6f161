// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/Mounting.h"

#include "track/TrackError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::track {

namespace {

constexpr double degreesPerRadian = 180 / std::numbers::pi;
constexpr double smallestTurnDegrees = 20;
constexpr double smallestNodDegrees = 10;
constexpr double largestCosine = 0.5; ///< Axes less than 60 degrees apart are hardly two.

double dot(const Turn& a, const Turn& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

Turn cross(const Turn& a, const Turn& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Turn scaled(const Turn& a, double factor) { return {a.x * factor, a.y * factor, a.z * factor}; }

Turn unit(const Turn& a) { return scaled(a, 1 / std::sqrt(dot(a, a))); }

/// The rotation whose matrix has these columns. Shepperd's choice of the largest divisor, here by trying all.
Rotation fromColumns(const Turn& x, const Turn& y, const Turn& z) {
    const std::array<Rotation, 4> candidates{Rotation{1 + x.x + y.y + z.z, y.z - z.y, z.x - x.z, x.y - y.x},
                                             Rotation{y.z - z.y, 1 + x.x - y.y - z.z, y.x + x.y, z.x + x.z},
                                             Rotation{z.x - x.z, y.x + x.y, 1 - x.x + y.y - z.z, z.y + y.z},
                                             Rotation{x.y - y.x, z.x + x.z, z.y + y.z, 1 - x.x - y.y + z.z}};
    const auto squareOf = [](const Rotation& q) { return q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z; };
    return *normalised(*std::ranges::max_element(candidates, {}, squareOf));
}

} // namespace

std::string_view PoseCalibration::prompt() const {
    switch (poses.size()) {
    case 0:
        return "Look straight ahead, then press space.";
    case 1:
        return "Turn your head to the right by about 60 degrees, then press space.";
    default:
        return "Look straight ahead again, then down by about 40 degrees, then press space.";
    }
}

bool PoseCalibration::add(const Source& sensor, const Rotation& raw) {
    if (!poses.empty() && sensor.whose() != sensorName)
        throw TrackError(
            "Another sender drives now than in the pose before: let one send only, and press c to "
            "begin again.");
    sensorName = sensor.whose();
    poses.push_back(raw);
    return poses.size() == 3;
}

Mounting PoseCalibration::result() const {
    const Rotation back = inverse(poses.at(0));
    const Turn right = turnOf(back * poses.at(1));
    const Turn down = turnOf(back * poses.at(2));
    if (std::sqrt(dot(right, right)) * degreesPerRadian < smallestTurnDegrees ||
        std::sqrt(dot(down, down)) * degreesPerRadian < smallestNodDegrees)
        throw TrackError("The poses are too close to each other: turn farther, and press c to begin again.");
    const Turn vertical = unit(right);
    const Turn throughEars = unit(scaled(down, -1)); // looking down is a negative turn about it
    if (std::abs(dot(vertical, throughEars)) > largestCosine)
        throw TrackError(
            "The second and the third pose turn about nearly the same axis: turn to the right only, "
            "then look down only, and press c to begin again.");
    const Turn ears = unit(cross(cross(vertical, throughEars), vertical));
    return {inverse(fromColumns(cross(ears, vertical), ears, vertical)), poses[0]};
}

} // namespace orvane::kestrum::track
