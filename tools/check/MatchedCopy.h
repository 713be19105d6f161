// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace orvane::kestrum::check {

/// Writes a copy of a stereo file, gained, as FLAC of 24 bits, and makes the windows of the same sound for the page.
/// @param gainDb brings every sample below full scale, as matchLoudness() sees to.
/// @return the windows in order.
/// @throws CheckError when the copy cannot be written; render::RenderError when the file cannot be read.
std::vector<std::string> writeMatchedCopy(const std::filesystem::path& rendered, double gainDb,
                                          const std::filesystem::path& copy);

} // namespace orvane::kestrum::check
