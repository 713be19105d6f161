// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "room/IReflectionPresetFactory.h"
#include "room/ReflectionPreset.h"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace test {

/// Gives one preset for every room.
struct StandInRoom final : orvane::IReflectionPresetFactory {
    explicit StandInRoom(orvane::ReflectionPreset room) : preset(std::move(room)) {}
    orvane::ReflectionPreset create(std::int32_t /*roomId*/) const override { return preset; }

    orvane::ReflectionPreset preset;
};

/// A room of `count` like reflections from straight ahead, 100 samples late, for a test to change.
inline orvane::ReflectionPreset plainRoom(std::size_t count) {
    orvane::ReflectionPreset preset;
    preset.length = 4096;
    preset.count = count;
    preset.gain = 1;
    preset.azimuths.assign(count, 0);
    preset.elevations.assign(count, 0);
    preset.delays.assign(count, 100);
    preset.levels.assign(count, 0.1f);
    preset.filters.assign(count, 0);
    return preset;
}

} // namespace test
