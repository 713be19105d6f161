// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/Scene.h"

#include "parameters/core/SelectorId.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

namespace orvane::kestrum::core {

namespace {

using Room = VirtualAcoustics::Type;

// One row per Scene: name, room; reflections: on, gain, low-pass, high-pass; reverb: the same four; custom
// room and its walls: ceiling, front, back, right, left, floor; reverb decay, source distance, master gain.
// A row that is broken over lines can no longer be read down the columns.
// clang-format off
constexpr std::array<Scene::Preset, Scene::count> table{{
    {"Mix Room",          Room{15},  true,     3, 14000, 1140,  true,  -12, 12948,  130, false, 1.8f,     8,   11, 10.5f,  5.5f,  1.6f,  90,  3.5f,  4.5f},
    {"Mix Room Small",    Room{36},  true,     2, 13390, 1140,  true,  -16, 12400,  120, false, 1.8f,     3,    4,     2,     2,  1.3f,  58,     5,  6.5f},
    {"Mix Room Large",    Room{44},  true,     4, 11925,   95,  true,   -5, 10000,   95, false, 1.8f,     8,   11, 10.5f,  5.5f,  1.6f,  52,     3,  3.2f},
    {"Analytic Dry",      Room{36}, false, -7.8f,  2125, 1200, false,   -5, 16081, 1200, false, 1.8f,     8,   11, 10.5f,  5.5f,  1.6f,  50,     2,  2.5f},
    {"Analytic Position", Room{36},  true,     7,  3398,  550, false,   -5, 16081, 1200, false, 1.8f,     8,   11, 10.5f,  5.5f,  1.6f,  50,     2,  2.3f},
    {"Live Venue",        Room{32},  true,    -4,  6430,  203,  true,   -9,  7500,   65, false, 1.8f,     8,   11, 10.5f,  5.5f, 18.9f,  80, 18.9f, 17.4f},
    {"Stadium",           Room{33},  true,    -1,  5167,  310,  true,  -10,  9000,   45,  true, 8.5f, 10.8f,   30, 21.4f, 25.7f,  1.8f,  95,    15, 14.8f},
    {"Acoustic Venue",    Room{45},  true,  2.4f,  5282,  524,  true,   -3,  7250,  120, false, 1.8f,     8,   11, 10.5f,  5.5f,  1.8f,  75,     3,  3.8f},
    {"Club Large",        Room{40},  true,    -4, 12109,   80,  true,    3,  5750,   20, false, 1.8f,     8,   11, 10.5f,  5.5f,  9.2f,  85,  6.5f,  5.8f},
    {"Club",              Room{41},  true,  3.5f, 13772,  120,  true,   -6,  4500,   80, false, 1.8f,     8,   11, 10.5f,  5.5f,  9.2f,  52,     4,  5.2f},
    {"Car",               Room{24},  true,     4,  8733,  180,  true, 2.5f,  6903,   80, false, 1.8f,     8,   11, 10.5f,  5.5f,     1, 100,     2,  0.1f},
    {"Van",               Room{25},  true,     3,  9709,  180,  true,    5,  8271,   71, false, 1.8f,     8,   11, 10.5f,  5.5f,  1.8f, 100,     2, -1.2f},
    {"Cinema",            Room{27},  true,    -2,  4655,   65,  true,   -3,  6267,  140, false, 1.8f,     8, 5.4f, 10.5f,  5.5f,  5.4f,  65,     8,  8.3f},
    {"Home Theater",      Room{27},  true,     3,  4655,  400,  true,   -1,  6267,  120, false, 1.8f,     8, 5.4f, 10.5f,  5.5f,  5.4f,  52,  3.5f,  4.3f},
    {"Living Room",       Room{19},  true,     1,  9000,  320,  true,   -3, 11000,   60, false, 1.8f,  6.7f,   11, 10.5f,  5.5f,  3.5f, 100,     5,  5.6f},
    {"Kitchen",           Room{13},  true,     5, 14000,   80,  true,    3, 16000,  111, false, 5.5f,  8.5f,    8,    11, 10.5f,  1.8f, 100,     7,  3.6f},
}};
// clang-format on

constexpr bool isARoom(const Scene::Preset& preset) {
    return preset.roomType >= Room{1} && preset.roomType <= Room{47};
}

constexpr bool hasWalls(const Scene::Preset& preset) {
    return std::min({preset.ceilingDistance, preset.frontDistance, preset.backDistance, preset.rightDistance,
                     preset.leftDistance, preset.floorDistance}) > 0;
}

static_assert(std::ranges::all_of(table, isARoom));
static_assert(std::ranges::all_of(table, hasWalls));
static_assert(std::ranges::count(table, Scene::defaultName, &Scene::Preset::name) == 1);

std::array<std::uint32_t, Scene::count> hashNames() noexcept {
    std::array<std::uint32_t, Scene::count> ids{};
    std::ranges::transform(table, ids.begin(), selectorId, &Scene::Preset::name);
    return ids;
}

} // namespace

std::span<const Scene::Preset, Scene::count> Scene::presets() noexcept { return table; }

std::span<const std::uint32_t, Scene::count> Scene::identifiers() noexcept {
    static const std::array<std::uint32_t, count> ids = hashNames();
    return ids;
}

const Scene::Preset& Scene::get(std::uint32_t id) {
    const auto ids = identifiers();
    for (std::size_t i = 0; i < count; ++i)
        if (ids[i] == id)
            return table[i];
    throw std::out_of_range("no such id: " + std::to_string(id));
}

} // namespace orvane::kestrum::core
