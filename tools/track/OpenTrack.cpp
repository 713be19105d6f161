// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/OpenTrack.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstring>

namespace orvane::kestrum::track {

static_assert(std::endian::native == std::endian::little);

std::optional<Rotation> readOpenTrack(std::span<const std::byte> packet, const Correction& correction) {
    std::array<double, 6> pose{};
    if (packet.size() != sizeof(pose))
        return std::nullopt;
    std::memcpy(pose.data(), packet.data(), sizeof(pose));
    const auto [x, y, z, yaw, pitch, roll] = pose;
    if (!std::isfinite(yaw) || !std::isfinite(pitch) || !std::isfinite(roll))
        return std::nullopt;
    return corrected({std::remainder(yaw, 360.0), std::remainder(pitch, 360.0), std::remainder(-roll, 360.0)},
                     correction);
}

} // namespace orvane::kestrum::track
