// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace orvane::kestrum::track {

/// Who drives the link, as other programs may know it.
struct TrackStatus {
    int pid = 0;
    std::string source;               ///< Who sends; empty before the first packet.
    double started = 0;               ///< Unix time in seconds.
    std::optional<double> lastPacket; ///< Likewise.
    bool active = false;              ///< Whether the plug-ins follow at the moment.
    bool alive = false;               ///< Whether the process still runs. Not in the file: its lock tells.
};

/// orvane-kestrum/track.json in $XDG_RUNTIME_DIR; without that, in a folder of the user's among the temporary files.
std::filesystem::path statusPath();

/// Empty when there is no such file or it holds nothing to read. Takes nothing and changes nothing.
std::optional<TrackStatus> readStatus(const std::filesystem::path& path);

/// The present Unix time in seconds.
double unixTime();

/// The status of this process, locked as long as the object lives; gone afterwards. Before the first write, the file
/// still says who left it.
class StatusFile {
public:
    /// @throws TrackError with who it is, when another process holds it, and when it cannot be made.
    explicit StatusFile(const std::filesystem::path& path);
    ~StatusFile();
    StatusFile(const StatusFile&) = delete;
    StatusFile& operator=(const StatusFile&) = delete;

    /// Replaces the content in one write of fixed length, so that no reader meets half of it. A full disk is no reason
    /// to end: the old content stays.
    void write(const TrackStatus& status);

private:
    std::filesystem::path path;
    int descriptor = -1;
    bool written = false;
};

} // namespace orvane::kestrum::track
