// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/rooms/DiffuseHead.h"
#include "data/rooms/LateReverb.h"
#include "data/rooms/ReverbFile.h"

#include "SyntheticHead.h"

#include <cmath>
#include <utility>

namespace test {

/// A head that can be computed by hand, on the grid of the files, at the rate of the synthesis. A source at the side is by
/// `sideGainDb` louder at the near ear than one in front, and as much softer at the far ear.
inline orvane::kestrum::tools::ResponseSet syntheticResponses(double sideGainDb = 3) {
    namespace tools = orvane::kestrum::tools;
    const SyntheticHead head{tools::masterSampleRate, 139, 30, 13, sideGainDb};
    tools::ResponseSet set{tools::responseFiles[1], {}};
    for (const tools::GridPlace& place : tools::gridPlaces())
        set.responses.push_back({head.response(-1, place.direction()), head.response(1, place.direction())});
    return set;
}

/// A short tone in every room, each of a level of its own, as if made for a file.
inline orvane::kestrum::tools::ReverbSet toneRooms(const orvane::kestrum::tools::ReverbFile& file) {
    namespace tools = orvane::kestrum::tools;
    tools::ReverbSet set{file, {}};
    for (const tools::RoomDescription& room : tools::roomDescriptions()) {
        const std::size_t length = tools::frameCountAt(room, file.sampleRate);
        tools::ReverbEntry entry{room.room, {Samples(length), Samples(length)}};
        const double level = (room.room == 25 ? 0.1 : 1.0) - 0.001 * room.room;
        for (std::size_t frame = 0; frame < length; ++frame) {
            entry.ears[0][frame] = level * std::cos(0.1 * static_cast<double>(frame));
            entry.ears[1][frame] = -level * std::cos(0.2 * static_cast<double>(frame));
        }
        set.entries.push_back(std::move(entry));
    }
    return set;
}

} // namespace test
