// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace orvane::kestrum::doctor {

/// What "kestrum track" tells about itself in its status file.
struct TrackerStatus {
    bool alive = false; ///< It holds the file's lock, which ends with its process.
    long pid = 0;
    std::string source;               ///< Empty before the first packet.
    std::optional<double> lastPacket; ///< Seconds since 1970.
};

/// @return nothing when there is no such file, or none that can be read.
std::optional<TrackerStatus> readTrackerStatus(const std::filesystem::path& runtimeFolder);

} // namespace orvane::kestrum::doctor
