// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace orvane::kestrum::render {

/// Where the plug-in looks for its data. The place is fixed.
inline constexpr const char* dataFolder = "/opt/Tenmarsh/OrvaneVSTPlugin/data";

/// A plug-in that lacks its data or gets a rate that it does not know stays silent and cannot tell its host;
/// so both are looked at before.
/// @throws RenderError when the rate is none of the plug-in's, or `folder` lacks what this rate needs.
void requireRateAndData(double sampleRate, const std::filesystem::path& folder = dataFolder);

} // namespace orvane::kestrum::render
