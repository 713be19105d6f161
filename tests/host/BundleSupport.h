// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/PluginInstance.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

namespace orvane::kestrum::host::test {

using Channels = std::vector<std::vector<float>>; ///< [channel][frame]

/// Where the build has put the bundle.
std::filesystem::path bundlePath();
std::shared_ptr<Module> loadBundle();

/// Sets a parameter as a person writes it: "Speaker Layouts" to "5.1 ITU".
void set(PluginInstance& plugin, std::string_view parameter, std::string_view value);

/// An instance with so many input channels, two outputs, a layout and a Scene; not prepared.
std::unique_ptr<PluginInstance> makeInstance(unsigned inputs, std::string_view layout,
                                             std::string_view scene = "Analytic Dry");

/// Feeds all frames in blocks of `block`, the last one shorter when need be.
/// @return [outputChannelCount()][frames].
Channels play(PluginInstance& plugin, const Channels& input, std::uint32_t block);

/// [channelCount][length] of seeded noise within +/-0.25.
Channels noise(std::size_t channelCount, std::size_t length, std::uint32_t seed = 1);
Channels silence(std::size_t channelCount, std::size_t length);

float peakOf(const Channels& channels);
double energyOf(const std::vector<float>& channel);

} // namespace orvane::kestrum::host::test
