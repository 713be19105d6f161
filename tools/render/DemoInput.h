// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/Recording.h"

#include <filesystem>

namespace orvane::kestrum::render {

/// Writes a "5.1 ITU" file in which each channel speaks its own name, one after another: left, right, centre,
/// low frequencies (the recordings' noise), left surround, right surround (the rear voices).
/// @throws RenderError when a recording is missing, is not mono, or has another rate than the first.
void writeDemoInput(const std::filesystem::path& path,
                    const std::filesystem::path& recordings = spokenNamesFolder);

} // namespace orvane::kestrum::render
