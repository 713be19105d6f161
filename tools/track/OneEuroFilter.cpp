// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/OneEuroFilter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::track {

namespace {

constexpr double velocityCutoffHz = 5;
constexpr double shortestStep = 1e-3;    ///< Seconds; packets that come in one go are not infinitely fast.
constexpr double longestStep = 0.5;      ///< Seconds, after which the past says nothing any more.
constexpr double widestPrediction = 0.5; ///< Radians: no sensor's outlier throws the scene far about.
constexpr double degreesPerRadian = 180 / std::numbers::pi;

double lengthOf(const Turn& turn) { return std::sqrt(turn.x * turn.x + turn.y * turn.y + turn.z * turn.z); }

Turn scaled(const Turn& turn, double factor) { return {turn.x * factor, turn.y * factor, turn.z * factor}; }

/// The share of the way that a first-order low-pass goes in one step.
double share(double cutoffHz, double seconds) {
    const double steps = 2 * std::numbers::pi * cutoffHz * seconds;
    return steps / (steps + 1);
}

} // namespace

Rotation OneEuroFilter::step(const Rotation& measured, Instant now) {
    const double elapsed = running ? secondsOf(now - last) : longestStep + 1;
    last = now;
    if (elapsed > longestStep) {
        running = true;
        velocity = {};
        lastMeasured = calmed = measured;
        return measured;
    }
    const double seconds = std::max(elapsed, shortestStep);
    const Turn speed = scaled(turnOf(inverse(lastMeasured) * measured), 1 / seconds);
    const double part = share(velocityCutoffHz, seconds);
    velocity = {velocity.x + part * (speed.x - velocity.x), velocity.y + part * (speed.y - velocity.y),
                velocity.z + part * (speed.z - velocity.z)};
    lastMeasured = measured;
    const double cutoff =
        smoothing.restCutoffHz + smoothing.cutoffPerSpeed * lengthOf(velocity) * degreesPerRadian;
    calmed = smoothing.restCutoffHz > 0 ? between(calmed, measured, share(cutoff, seconds)) : measured;
    const Turn ahead = scaled(velocity, smoothing.predictSeconds);
    return calmed *
           rotationOf(scaled(ahead, std::min(1.0, widestPrediction / std::max(lengthOf(ahead), 1e-9))));
}

} // namespace orvane::kestrum::track
