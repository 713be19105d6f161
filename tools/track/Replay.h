// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Rotation.h"

#include <filesystem>
#include <vector>

namespace orvane::kestrum::track {

/// One line of a recorded movement.
struct ReplayLine {
    double seconds = 0;
    HeadAngles angles;
};

/// Reads a CSV file with the lines seconds,yaw,pitch,roll. Empty lines, lines that begin with # and a heading are
/// skipped.
/// @throws TrackError when it cannot be read, when a line is not four numbers, when time runs backwards, or when there
///         is no line.
std::vector<ReplayLine> readReplay(const std::filesystem::path& path);

} // namespace orvane::kestrum::track
