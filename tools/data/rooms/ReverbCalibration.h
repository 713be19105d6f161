// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/rooms/ReverbFile.h"
#include "data/rooms/RoomTargets.h"

#include <filesystem>
#include <string_view>
#include <vector>

namespace orvane::kestrum::tools {

/// How a Scene with a reverb measures, beside what it is to.
struct SceneFigures {
    std::string_view scene;
    int room = 0;
    double levelDb = 0;      ///< Of the room's response over a peak of 1.
    double decaySeconds = 0; ///< Of the reverb alone.
    double decayTarget = 0;
    double clarity50Db = 0;
    double clarity50Target = 0;
    double directToRestDb = 0;
    double directToRestTarget = 0;
};

/// The levels that a room's response may be given, in decibels over a peak of 1.
struct LevelRange {
    double from = 0;
    double to = 0;
};
LevelRange levelRange(int room);

/// The same for a room that a user has made: it may be drier or louder than the Scene that it is put into.
LevelRange ownRoomLevelRange(int room);

/// Finds the level of every room that a Scene uses, in a closed loop: the Scenes are rendered through the plug-in's own
/// engine with the responses as they are, once each, and since the level of the reverb only scales its share, the level
/// is sought on what was rendered. Clarity (C50) is brought near its target first, then the direct sound over all the
/// rest as near to its own as that allows. Where the decay does not let any level of the range bring the clarity, only
/// the direct sound counts. Two Scenes that share a room are weighed alike.
///
/// @param master every room at 48000 Hz with a peak of 1; scaled in place.
/// @param folder holds the head's file of 48000 Hz. It is only read: the loop runs in a temporary folder of its own.
/// @return the figures of each Scene at the level found.
/// @throws DataError when the temporary folder cannot be made or filled.
std::vector<SceneFigures> calibrateLevels(std::vector<ReverbEntry>& master,
                                          const std::filesystem::path& folder);

/// The same for one Scene with another target, as calibrateLevels() finds its level.
/// @param entry         the response of the Scene's room at 48000 Hz with a peak of 1; scaled in place.
/// @param clarityCounts whether clarity is asked at all, or the direct sound alone.
SceneFigures calibrateLevel(ReverbEntry& entry, const RoomTarget& target, const LevelRange& range,
                            bool clarityCounts, const std::filesystem::path& folder);

} // namespace orvane::kestrum::tools
