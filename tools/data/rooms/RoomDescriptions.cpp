// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rooms/RoomDescriptions.h"

#include "room/ReverbRooms.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

namespace orvane::kestrum::tools {

namespace {

/// The far stand, the near stand's roof behind the listener, the two curves, and the far stand once more.
constexpr std::array<LateSlap, 5> stadiumSlaps{{
    {0.235, 12, 4, 9},
    {0.345, -160, 8, 8},
    {0.470, -70, 5, 7},
    {0.560, 75, 5, 7},
    {0.790, -10, 3, 6},
}};

// clang-format off
/// room, name, m3, onset and mixing in ms, early level in dB, T60 from 125 Hz to 8 kHz, dB per octave, boom, slaps
constexpr std::array<RoomDescription, 46> descriptions{{
    {2, "medium hall", 2500, 14, 50, 0, {1.43, 1.23, 1.1, 1.1, 1.07, 0.99, 0.858}, -0.3},
    {3, "theatre", 3000, 14, 52, 0, {1.37, 1.18, 1.05, 1.05, 1.02, 0.945, 0.819}, -0.5},
    {4, "concert hall, small", 3500, 15, 55, 0, {1.95, 1.68, 1.5, 1.5, 1.46, 1.35, 1.17}, -0.3},
    {5, "lecture hall", 700, 9, 37, 0, {1.17, 1.01, 0.9, 0.9, 0.873, 0.81, 0.702}, -0.2},
    {6, "gallery", 2000, 12, 47, 0, {2.2, 1.94, 1.8, 1.8, 1.76, 1.69, 1.49}, 0},
    {7, "cathedral nave", 30000, 30, 120, 0, {3.58, 3.14, 2.8, 2.8, 2.69, 2.44, 2.04}, -1.0},
    {8, "church", 6000, 18, 66, 0, {3.12, 2.69, 2.4, 2.4, 2.33, 2.16, 1.87}, -0.6},
    {9, "recital hall", 2200, 12.5, 48, 0, {1.82, 1.57, 1.4, 1.4, 1.36, 1.26, 1.09}, -0.3},
    {10, "rehearsal room", 400, 8, 33, -3, {1.23, 1.06, 0.95, 0.95, 0.921, 0.855, 0.741}, 0},
    {11, "sitting room", 75, 5, 26, -6, {0.65, 0.56, 0.5, 0.5, 0.485, 0.45, 0.39}, -0.2},
    {12, "bedroom", 45, 4, 25, -6, {0.39, 0.336, 0.3, 0.3, 0.291, 0.27, 0.234}, -0.5},
    {13, "Kitchen", 30, 3, 22, -6, {0.61, 0.505, 0.45, 0.45, 0.441, 0.418, 0.369}, 1},
    {14, "studio floor", 420, 7.5, 32, -3, {0.585, 0.504, 0.45, 0.45, 0.436, 0.405, 0.351}, -0.2},
    {15, "Mix Room", 90, 5, 25, -14, {0.378, 0.322, 0.28, 0.28, 0.272, 0.252, 0.218}, -0.3},
    {16, "live studio floor", 480, 8, 33, -3, {0.728, 0.627, 0.56, 0.56, 0.543, 0.504, 0.437}, 0},
    {17, "dry chamber", 60, 4.5, 25, -6, {0.432, 0.368, 0.32, 0.32, 0.31, 0.288, 0.25}, -0.5},
    {18, "wooden studio", 200, 6, 29, -3, {0.634, 0.546, 0.52, 0.52, 0.504, 0.478, 0.416}, 0},
    {19, "Living Room", 55, 4.5, 24, -8, {0.585, 0.504, 0.45, 0.45, 0.436, 0.405, 0.351}, -0.2},
    {20, "scoring booth", 250, 6.5, 30, -3, {0.845, 0.728, 0.65, 0.65, 0.63, 0.585, 0.507}, 0},
    {21, "corridor", 300, 7, 31, -3, {0.878, 0.778, 0.72, 0.72, 0.706, 0.677, 0.598}, 0.3},
    {22, "office", 40, 4, 24, -6, {0.494, 0.426, 0.38, 0.38, 0.369, 0.342, 0.296}, 0},
    {23, "tiled room", 70, 4.5, 26, -6, {0.61, 0.54, 0.5, 0.5, 0.49, 0.47, 0.415}, 0.6},
    {24, "Car", 3, 0.8, 8, -10, {0.121, 0.095, 0.08, 0.08, 0.0776, 0.072, 0.0624}, -1, 12},
    {25, "Van", 8, 1.2, 10, -12, {0.113, 0.0945, 0.08, 0.08, 0.0776, 0.072, 0.0624}, -0.5, 11},
    {26, "vocal booth", 35, 3, 23, -6, {0.23, 0.196, 0.17, 0.17, 0.165, 0.153, 0.133}, -0.5},
    {27, "Cinema and Home Theater", 2500, 8, 45, 0, {0.627, 0.524, 0.448, 0.448, 0.43, 0.395, 0.345}, -0.5},
    {28, "basilica", 12000, 22, 85, 0, {3.84, 3.36, 3, 3, 2.88, 2.61, 2.19}, -0.8},
    {29, "courtyard", 5000, 16, 62, 0, {0.975, 0.84, 0.75, 0.75, 0.728, 0.675, 0.585}, 0},
    {30, "alley", 600, 9, 35, 0, {0.39, 0.346, 0.32, 0.32, 0.314, 0.301, 0.266}, 0.3},
    {31, "stone cellar", 220, 6.2, 29, -3, {1.16, 1.03, 0.95, 0.95, 0.931, 0.893, 0.788}, 0},
    {32, "Live Venue", 4500, 17, 65, 1, {1.3, 1.12, 1, 1, 0.97, 0.9, 0.78}, -0.4},
    {33, "Stadium", 100000, 12, 150, 6, {2.82, 2.46, 2.2, 2.2, 2.11, 1.91, 1.61}, -0.8, 0, stadiumSlaps},
    {34, "panelled room", 160, 5.8, 28, -3, {0.756, 0.651, 0.62, 0.62, 0.601, 0.57, 0.496}, 0},
    {35, "damped room", 110, 5.4, 26, -3, {0.54, 0.46, 0.4, 0.4, 0.388, 0.36, 0.312}, -0.3},
    {36, "Mix Room Small", 45, 4, 23, -10, {0.297, 0.253, 0.22, 0.22, 0.213, 0.198, 0.172}, -0.3},
    {37, "control room, live", 130, 5.6, 27, -3, {0.594, 0.506, 0.44, 0.44, 0.427, 0.396, 0.343}, 0},
    {38, "opera house", 11000, 21, 83, 0, {2.08, 1.79, 1.6, 1.6, 1.55, 1.44, 1.25}, -0.4},
    {39, "chamber hall", 3200, 14.5, 54, 0, {2.21, 1.9, 1.7, 1.7, 1.65, 1.53, 1.33}, -0.2},
    {40, "Club Large", 2500, 14, 55, 1, {1.43, 1.32, 1.1, 1.1, 1.07, 0.99, 0.847}, -0.4},
    {41, "Club", 900, 7, 42, 1, {0.975, 0.84, 0.75, 0.75, 0.728, 0.675, 0.585}, -0.4},
    {42, "plate-like chamber", 330, 7.2, 31, -3, {1.4, 1.24, 1.15, 1.15, 1.13, 1.08, 0.954}, 0.5},
    {43, "bright chamber", 270, 6.7, 30, -3, {1.16, 1.03, 0.95, 0.95, 0.931, 0.893, 0.788}, 0.5},
    {44, "Mix Room Large", 180, 6, 29, -7, {0.432, 0.368, 0.32, 0.32, 0.31, 0.288, 0.25}, -0.3},
    {45, "Acoustic Venue", 4000, 16, 60, 0, {1.76, 1.51, 1.35, 1.35, 1.31, 1.22, 1.05}, -0.4},
    {46, "ballroom", 4600, 16.5, 61, 0, {2.27, 1.96, 1.75, 1.75, 1.7, 1.57, 1.36}, -0.2},
    {47, "hangar", 14000, 23.5, 91, 0, {2.34, 2.02, 1.8, 1.8, 1.75, 1.62, 1.4}, -0.5},
}};
// clang-format on

} // namespace

std::span<const RoomDescription> roomDescriptions() { return descriptions; }

const RoomDescription& roomDescription(int room) {
    const auto found = std::ranges::find(descriptions, room, &RoomDescription::room);
    if (found == descriptions.end())
        throw std::out_of_range("no reverb for room " + std::to_string(room));
    return *found;
}

std::size_t entryOf(const RoomDescription& room) {
    return reverbRoom(static_cast<std::uint32_t>(room.room)).entry;
}

std::size_t frameCountAt(const RoomDescription& room, int sampleRate) {
    return reverbFrames(static_cast<std::uint32_t>(room.room), sampleRate);
}

double t60At(const RoomDescription& room, double frequencyHz) {
    const double octave = std::log2(std::max(frequencyHz, roomOctavesHz.front()) / roomOctavesHz.front());
    const auto band = std::min(static_cast<std::size_t>(octave), roomOctavesHz.size() - 2);
    const double way = octave - static_cast<double>(band);
    constexpr double shortest = 0.7; // of the highest band's decay, far above it
    return std::max(std::lerp(room.t60[band], room.t60[band + 1], way), shortest * room.t60.back());
}

} // namespace orvane::kestrum::tools
