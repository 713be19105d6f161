// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/OneEuroFilter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::track {

namespace {

constexpr double velocityCutoffHz = 5;
constexpr double shortestStep = 1e-3;    ///< Seconds; what comes sooner is of one go.
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
    const bool oneGo = present.running && secondsOf(now - present.time) < shortestStep;
    const Instant time = oneGo ? present.time : now; // so that no step is short, however fast they come
    if (!oneGo)
        before = present;
    present = stepped(before, measured, time);
    const Turn ahead = scaled(present.velocity, smoothing.predictSeconds);
    return present.calmed *
           rotationOf(scaled(ahead, std::min(1.0, widestPrediction / std::max(lengthOf(ahead), 1e-9))));
}

OneEuroFilter::State OneEuroFilter::stepped(const State& from, const Rotation& measured, Instant now) const {
    const double seconds = secondsOf(now - from.time);
    if (!from.running || seconds > longestStep)
        return {.running = true, .time = now, .measured = measured, .calmed = measured, .velocity = {}};
    const Turn speed = scaled(turnOf(inverse(from.measured) * measured), 1 / seconds);
    const double part = share(velocityCutoffHz, seconds);
    const Turn velocity{from.velocity.x + part * (speed.x - from.velocity.x),
                        from.velocity.y + part * (speed.y - from.velocity.y),
                        from.velocity.z + part * (speed.z - from.velocity.z)};
    const double cutoff =
        smoothing.restCutoffHz + smoothing.cutoffPerSpeed * lengthOf(velocity) * degreesPerRadian;
    return {.running = true,
            .time = now,
            .measured = measured,
            .calmed = smoothing.restCutoffHz > 0 ? between(from.calmed, measured, share(cutoff, seconds))
                                                 : measured,
            .velocity = velocity};
}

} // namespace orvane::kestrum::track
