// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Dialects.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace orvane::kestrum::track {

inline constexpr std::uint16_t openTrackPort = 4242;

/// Reads what opentrack sends by its output "UDP over network", as do phone apps that speak to it.
///
/// Shape   six little-endian doubles: x, y, z, yaw, pitch, roll; nothing else.
/// Units   centimetres, which are not used; degrees: yaw to the right, pitch upwards, roll to the left.
/// Source  opentrack/opentrack, proto-udp; the signs as its output for SimConnect turns them.
/// @return empty for anything else.
std::optional<Rotation> readOpenTrack(std::span<const std::byte> packet, const Correction& correction);

} // namespace orvane::kestrum::track
