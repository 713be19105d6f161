// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/rooms/DiffuseHead.h"
#include "data/rooms/LateReverb.h"
#include "data/rooms/ReverbFile.h"

#include <functional>
#include <span>
#include <vector>

namespace orvane::kestrum::tools {

/// Called when a room is done, by one thread at a time.
using RoomDone = std::function<void(const RoomDescription& room)>;

/// The gains that a Scene lays over the response of its room, by the decay that it asks for; none for rooms that no Scene
/// uses and for Scenes that leave the response as it is. Where two Scenes share a room, the first one's.
std::span<const float> heardThrough(const RoomDescription& room);

/// The gains of a Scene by the decay that it asks for.
std::span<const float> heardThroughDecay(float reverbDecayPercent);

/// Every room at masterSampleRate, each with a peak of 1, in the order of roomDescriptions(). Rooms are shared out
/// over the machine's cores; which core makes a room does not matter to the result.
/// @param head at masterSampleRate.
std::vector<ReverbEntry> synthesiseRooms(const DiffuseHead& head, const RoomDone& done);

/// The same rooms for one of the files: resampled with their levels kept, so that a response filters a signal of the
/// file's rate as the master does one of its own.
ReverbSet reverbSetFor(const ReverbFile& file, const std::vector<ReverbEntry>& master);

} // namespace orvane::kestrum::tools
