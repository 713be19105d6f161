// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rooms/RoomTargets.h"

#include <algorithm>
#include <array>

namespace orvane::kestrum::tools {

namespace {

// Scene, entry, volume (m3), T60 (s), C50 (dB), direct to the rest (dB), full density by (s). "Cinema" and "Home
// Theater" share an entry and differ by their decay rows. Control rooms may last longer in the bass.
constexpr std::array<RoomTarget, 14> targets{{
    {"Mix Room", 56, 90, 0.28, 20, 7, 0.025, 1.5},
    {"Mix Room Small", 43, 45, 0.22, 24, 9, 0.023, 1.5},
    {"Mix Room Large", 45, 180, 0.32, 14, 4, 0.029, 1.5},
    {"Live Venue", 49, 4500, 1.0, 1, -5, 0.065},
    {"Stadium", 34, 0, 2.2, 0, -5, 0.150},
    {"Acoustic Venue", 31, 4000, 1.35, 2, -1, 0.060},
    {"Club Large", 44, 2500, 1.1, 4, 0, 0.055},
    {"Club", 39, 900, 0.75, 8, 3, 0.042},
    {"Car", 20, 3, 0.08, 30, 3, 0.008},
    {"Van", 52, 8, 0.08, 30, 2, 0.010},
    {"Cinema", 19, 2500, 0.42, 9, 1, 0.045},
    {"Home Theater", 19, 60, 0.35, 12, 5, 0.045},
    {"Living Room", 23, 55, 0.45, 14, 7, 0.024},
    {"Kitchen", 28, 30, 0.45, 8, -3, 0.022},
}};

} // namespace

std::array<DecayShape, 3> RoomTarget::decayShapes() const {
    return {{{125, 1.2, bassMost}, {4000, 0.85, 0.95}, {8000, 0.7, 0.85}}};
}

std::span<const RoomTarget> roomTargets() { return targets; }

std::optional<RoomTarget> targetOf(std::string_view scene) {
    const auto* const found = std::ranges::find(targets, scene, &RoomTarget::scene);
    return found == targets.end() ? std::nullopt : std::optional<RoomTarget>(*found);
}

} // namespace orvane::kestrum::tools
