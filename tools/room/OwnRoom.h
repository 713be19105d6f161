// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/rooms/DiffuseHead.h"
#include "data/rooms/ReverbFile.h"
#include "data/rooms/RoomTargets.h"
#include "room/MeasuredRoom.h"
#include "room/RoomRequest.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::kestrum::tools {

/// A Scene as far as its reverb is concerned.
struct ReverbScene {
    std::string_view name;
    int room = 0;
    std::size_t entry = 0;                    ///< Of the files' tables.
    float decayPercent = 0;                   ///< How the Scene shortens the response.
    double lengthSeconds = 0;                 ///< Of the response.
    std::vector<std::string_view> sharedWith; ///< Other Scenes that play the same response.
};

/// @throws DataError with all choices for a name that is no Scene's, or one of a Scene without reverb.
ReverbScene reverbScene(const std::string& name);

/// The longest T60 that a Scene's place in the files holds: it has fallen by 40 dB where the last tenth fades out, and the Scene's
/// own curve over the response does not fall faster.
double longestDecay(const ReverbScene& scene);

/// A user's room, made for a Scene.
struct OwnRoom {
    ReverbScene scene;
    std::optional<MeasuredRoom> measured; ///< None for a room from parameters.
    std::optional<RoomBox> box;           ///< None for a response without a size.
    double distance = 0;                  ///< To the loudspeakers; 0 without a size.
    double criticalDistance = 0;
    OctaveTimes wanted{}; ///< T60 as the user's room has it.
    OctaveTimes asked{};  ///< The same as far as the Scene's place holds it.
    RoomDescription description;
    RoomTarget target;        ///< Level to be brought near: clarity, direct sound over all the rest.
    bool clarityAsked = true; ///< Else the clarity is that of an even decay at the level that was asked for.
    std::vector<CoherenceBand> coherence; ///< Wanted between the ears.
    ReverbEntry entry;                    ///< At masterSampleRate, its peak 1 until the level is set.
    std::vector<std::string> notes;       ///< What the user ought to know, a sentence each.
};

/// Makes the room for a head, from parameters or from a response.
/// @param head without headphones.
/// @throws DataError with the remedy for what no room can be made of.
OwnRoom makeOwnRoom(const RoomRequest& request, const DiffuseHead& head);

} // namespace orvane::kestrum::tools
