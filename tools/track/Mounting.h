// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Rotation.h"
#include "track/Sample.h"

#include <string>
#include <string_view>
#include <vector>

namespace orvane::kestrum::track {

/// How a sensor sits on the head, and what it says when the head looks straight ahead.
struct Mounting {
    Rotation sensorToHead;
    Rotation reference;
};

/// Finds out how a sensor sits askew, from three poses of the head: straight ahead, turned to the right, looking down.
///
/// The turn from the first pose to each of the others has an axis that the sensor sees in its own coordinates; on the
/// head these axes are the vertical one and the one through the ears. Two directions seen in two frames give the
/// rotation between the frames; the turn to the right is trusted more, since people turn farther than they nod.
/// Source  H. D. Black, "A passive system for determining the attitude of a satellite", AIAA Journal 2, 1964 (TRIAD).
class PoseCalibration {
public:
    /// What the user has to do next.
    std::string_view prompt() const;

    /// Takes what the sensor says in the present pose.
    /// @return whether all three are there.
    /// @throws TrackError when it is another sensor than in the pose before.
    bool add(const Source& sensor, const Rotation& raw);

    /// @throws TrackError when the poses are too close to each other or not about two axes.
    Mounting result() const;

private:
    std::string sensorName; ///< By Source::whose().
    std::vector<Rotation> poses;
};

} // namespace orvane::kestrum::track
