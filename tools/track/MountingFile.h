// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Rotation.h"

#include <filesystem>
#include <map>
#include <string>

namespace orvane::kestrum::track {

/// How the user's sensors sit, by Source::kind().
using Mountings = std::map<std::string, Rotation>;

/// Where they are kept: orvane-kestrum/sensors.json in the user's configuration folder ($XDG_CONFIG_HOME or ~/.config).
/// @throws TrackError when neither variable nor a home is set.
std::filesystem::path mountingFile();

/// None when there is no such file.
/// @throws TrackError when it is damaged or may not be read; it is left as it is.
Mountings readMountings(const std::filesystem::path& path);

/// Replaces the file as a whole, so that it is never half written.
/// @throws TrackError when it cannot be written; the one before stays.
void writeMountings(const std::filesystem::path& path, const Mountings& mountings);

} // namespace orvane::kestrum::track
