// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "headlink/TrackStatus.h"

#include <filesystem>

namespace orvane::kestrum::track {

using headlink::readStatus;
using headlink::statusPath;
using headlink::TrackStatus;
using headlink::unixTime;

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
