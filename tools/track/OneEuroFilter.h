// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Clock.h"
#include "track/Rotation.h"

namespace orvane::kestrum::track {

/// How much a filter calms.
///
/// Units   hertz; hertz per degree a second; seconds.
struct Smoothing {
    double restCutoffHz = 3; ///< Of a head at rest; 0 switches smoothing off.
    double cutoffPerSpeed = 0.2;
    double predictSeconds = 0; ///< How far ahead the present movement is drawn out.
};

/// Calms a head at rest and lets a moving one through: a low-pass whose cutoff rises with the speed.
///
/// Source  G. Casiez, N. Roussel, D. Vogel, "1 Euro Filter", CHI 2012, here on the angle between rotations.
class OneEuroFilter {
public:
    explicit OneEuroFilter(const Smoothing& smoothing) : smoothing(smoothing) {}

    /// Takes a measured direction. The first one after reset(), or after half a second of silence, passes as it is. One
    /// that comes within a millisecond of the last takes its place, since packets that come in one go, or the single
    /// angles of one direction, are one movement and not infinitely fast ones.
    /// @return the calmed one, drawn out by the prediction.
    Rotation step(const Rotation& measured, Instant now);

    void reset() { present = before = {}; }

private:
    struct State {
        bool running = false;
        Instant time{};
        Rotation measured;
        Rotation calmed;
        Turn velocity; ///< About the head's own axes, radians a second.
    };

    State stepped(const State& from, const Rotation& measured, Instant now) const;

    Smoothing smoothing;
    State present;
    State before; ///< What the present one was stepped from.
};

} // namespace orvane::kestrum::track
