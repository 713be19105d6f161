// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/DataFolder.h"

#include <filesystem>
#include <string>

namespace orvane::kestrum::render {

/// The files that a rendering is made of, in the state in which they are now: the input and the plug-in by place, size and
/// time of writing, the data by the folder that is really meant and by what its about.json says. The latter names no time,
/// so that machines which made the same data for themselves agree.
///
/// Two renderings of equal sources with equal options are equal.
/// @param bundle the folder of the plug-in.
/// @return JSON on one line. A file that is not there is null.
std::string sourcesText(const std::filesystem::path& input, const std::filesystem::path& bundle,
                        const std::filesystem::path& data = dataFolder);

} // namespace orvane::kestrum::render
