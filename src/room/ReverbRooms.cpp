// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ReverbRooms.h"

#include <iterator>

namespace orvane {

namespace {

constexpr std::uint32_t firstRoomWithReverb = 2; // the two before share a placeholder of one frame

// By room.
// clang-format off
constexpr ReverbRoom rooms[]{
    {11, 1, 0.0135f},
    {11, 1, 0.0135f},
    {30, 81533, 0.0336f},
    {16, 74340, 0.011076f},
    {59, 106317, 0.00767f},
    {60, 64691, 0.015f},
    {54, 128903, 0.0228f},
    {25, 200302, 0.01381f},
    {26, 174114, 0.036f},
    {47, 100320, 0.00931f},
    {24, 68147, 0.0093f},
    {17, 36750, 0.011f},
    {53, 21590, 0.0425f},
    {28, 22020, 0.02583f},
    {57, 32358, 0.0287f},
    {56, 27201, 0.02867f},
    {55, 40378, 0.0237f},
    {15, 23147, 0.05306f},
    {21, 37572, 0.00675f},
    {23, 22268, 0.01073f},
    {58, 47364, 0.1227f},
    {27, 51637, 0.0424f},
    {18, 27312, 0.07f},
    {51, 36790, 0.0572f},
    {20, 4096, 0.037648f},
    {52, 4096, 0.21612f},
    {41, 12784, 0.036908f},
    {19, 30587, 0.02736f},
    {22, 220245, 0.041885f},
    {29, 55656, 0.070597f},
    {33, 23535, 0.051693f},
    {42, 70341, 0.00977f},
    {49, 104480, 0.034f},
    {34, 118587, 0.036f},
    {40, 45106, 0.0283f},
    {32, 29832, 0.01185f},
    {43, 37391, 0.028318f},
    {48, 32018, 0.02524f},
    {38, 119211, 0.00971f},
    {35, 120179, 0.007296f},
    {44, 128975, 0.0182f},
    {39, 90418, 0.05f},
    {36, 86655, 0.0233f},
    {46, 71044, 0.008208f},
    {45, 30312, 0.03248f},
    {31, 80037, 0.042f},
    {37, 126121, 0.0177f},
    {50, 127377, 0.0121f},
};
// clang-format on

} // namespace

ReverbRoom reverbRoom(std::uint32_t roomId) noexcept {
    return roomId < std::size(rooms) ? rooms[roomId] : ReverbRoom{0, 0, 0.0f};
}

std::uint64_t reverbFrames(std::uint32_t roomId, std::int32_t fileRate) noexcept {
    const std::uint64_t frames = reverbRoom(roomId).frames;
    if (roomId < firstRoomWithReverb)
        return frames;
    return static_cast<std::uint64_t>(static_cast<float>(fileRate) / 48000.0f * static_cast<float>(frames));
}

} // namespace orvane
