// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rooms/ReverbBuilder.h"

#include "data/OnAllCores.h"
#include "data/measures/Rendering.h"
#include "parameters/core/Scene.h"
#include "room/DecayTable.h"

#include <algorithm>
#include <mutex>
#include <optional>

namespace orvane::kestrum::tools {

namespace {

/// A response with room for what rings before its start and behind its end.
Samples padded(const Samples& response, std::size_t room) {
    Samples result(response.size() + 2 * room);
    std::ranges::copy(response, result.begin() + static_cast<std::ptrdiff_t>(room));
    return result;
}

} // namespace

std::span<const float> heardThrough(const RoomDescription& room) {
    const auto presets = core::Scene::presets();
    const auto scene = std::ranges::find_if(presets, [&room](const core::Scene::Preset& preset) {
        return static_cast<int>(preset.roomType) == room.room && preset.reverbOn;
    });
    return scene == presets.end() ? std::span<const float>() : heardThroughDecay(scene->reverbDecayPercent);
}

std::span<const float> heardThroughDecay(float reverbDecayPercent) {
    const std::optional<std::uint32_t> row = decayRow(reverbDecayPercent);
    if (!row)
        return {};
    return decayTable().subspan(std::size_t{*row} * decayTableColumns, decayTableColumns);
}

std::vector<ReverbEntry> synthesiseRooms(const DiffuseHead& head, const RoomDone& done) {
    const auto rooms = roomDescriptions();
    std::vector<ReverbEntry> entries(rooms.size());
    std::mutex telling;
    onAllCores(rooms.size(), [&](std::size_t index) {
        entries[index] = {rooms[index].room, lateReverb(rooms[index], head, heardThrough(rooms[index]))};
        const std::lock_guard lock(telling);
        done(rooms[index]);
    });
    return entries;
}

ReverbSet reverbSetFor(const ReverbFile& file, const std::vector<ReverbEntry>& master) {
    const ResponseResampler resampler(masterSampleRate, file.sampleRate);
    ReverbSet set{file, std::vector<ReverbEntry>(master.size())};
    onAllCores(master.size(), [&](std::size_t index) {
        const RoomDescription& room = roomDescription(master[index].room);
        set.entries[index].room = room.room;
        for (std::size_t ear = 0; ear < 2; ++ear)
            set.entries[index].ears[ear] = resampler.resample(
                padded(master[index].ears[ear], resampler.leadIn()), frameCountAt(room, file.sampleRate));
    });
    return set;
}

} // namespace orvane::kestrum::tools
