// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace orvane {

/// The early reflections of one room as they were designed for it.
///
/// Shape   the five vectors have `count` elements each. Slots 0 to 5 are the first-order reflections: ceiling,
///         floor, front, back, left and right wall; what follows arrives later.
/// Units   degrees (azimuth positive to the right); samples at 44100 Hz behind the direct sound; linear
///         levels; metres.
struct ReflectionPreset {
    std::uint64_t length = 0; ///< Nominal response length, samples at 44100 Hz.
    std::uint64_t count = 0;
    float gain = 0; ///< Linear, on all reflections of the room.
    std::vector<std::int16_t> azimuths;
    std::vector<std::int16_t> elevations;
    std::vector<std::int16_t> delays;
    std::vector<float> levels;
    std::vector<std::uint64_t> filters; ///< 0: the full-band low-pass of the renderer, 1: the half-band one.
    std::array<float, 6> roomSize{};    ///< For the record only: nothing computes with it.
};

} // namespace orvane
