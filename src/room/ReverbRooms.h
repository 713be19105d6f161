// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orvane {

/// Where the late reverb of a room lies in the reverb file, and how loud it is played.
struct ReverbRoom {
    std::uint32_t entry;  ///< Of the file's table, counted from 1; 0 for a room without one.
    std::uint64_t frames; ///< At 48000 Hz.
    float gain;           ///< Linear.
};

/// Entries that the reverb file's table has; not all of them are used.
inline constexpr std::uint32_t reverbTableSize = 60;

/// @param roomId up to 47; every later one has no reverb: no entry, no frames, gain 0.
ReverbRoom reverbRoom(std::uint32_t roomId) noexcept;

/// Stereo frames of a room's response in the file of one rate, truncated in 32-bit float.
///
/// Units   fileRate in hertz.
std::uint64_t reverbFrames(std::uint32_t roomId, std::int32_t fileRate) noexcept;

} // namespace orvane
