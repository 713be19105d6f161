// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace orvane::kestrum::headlink {

/// Who drives the link, as "kestrum track" tells other programs in its status file.
struct TrackStatus {
    int pid = 0;
    std::string source; ///< Who sends; empty before the first packet. Printable, whatever the file holds.
    double started = 0; ///< Unix time in seconds.
    std::optional<double> lastPacket; ///< Likewise.
    bool active = false;              ///< Whether the plug-ins follow at the moment.
    bool alive = false;               ///< Whether the process still runs. Not in the file: its lock tells.
};

/// orvane-kestrum/track.json in $XDG_RUNTIME_DIR; without that, in a folder of the user's among the temporary files.
std::filesystem::path statusPath();

/// Empty when there is no such file, when it is not the user's own, as anyone may put one among the temporary files, or
/// when it holds nothing to read. Takes nothing and changes nothing.
std::optional<TrackStatus> readStatus(const std::filesystem::path& path);

/// The present Unix time in seconds.
double unixTime();

} // namespace orvane::kestrum::headlink
