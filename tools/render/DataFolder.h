// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <vector>

namespace orvane::kestrum::render {

/// Where the plug-in looks for its data. The place is fixed.
inline constexpr const char* dataFolder = "/opt/Tenmarsh/OrvaneVSTPlugin/data";

/// The sample rates that the plug-in serves, in hertz, rising.
std::vector<unsigned> servedRates();

/// A plug-in that lacks its data or gets a rate that it does not know stays silent and cannot tell its host;
/// so both are looked at before.
/// @throws RenderError when the rate is none of the plug-in's, or `folder` lacks what this rate needs.
void requireRateAndData(double sampleRate, const std::filesystem::path& folder = dataFolder);

} // namespace orvane::kestrum::render
