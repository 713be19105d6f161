// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/HeadTrack.h"
#include "track/NetworkInput.h"

#include <filesystem>
#include <optional>

namespace orvane::kestrum::track {

struct TrackOptions {
    NetworkOptions network;
    bool demo = false;
    std::optional<std::filesystem::path> replay;
    HeadTrackSettings head;
    bool gridCentre = true;
    bool takeOver = false; ///< Even from a tracker that is none of ours.
};

/// Drives the link until the user, a signal or the end of a recorded movement ends it; then the head has glided back
/// and the plug-ins have their dial again.
/// @throws TrackError when somebody else drives the link, or a port or file cannot be had.
void runTracker(const TrackOptions& options);

} // namespace orvane::kestrum::track
