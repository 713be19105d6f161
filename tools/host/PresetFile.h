// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/IPlugin.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace orvane::kestrum::host {

/// What a ".vstpreset" file holds: a plug-in's state and whose it is.
///
///     'VST3' | version 1 | class id, 32 digits | offset of the list | chunks ... | 'List' | count | entries
///     entry: id ('Comp', 'Cont' or another's) | offset | size            integers little-endian, 32 or 64
///     bits
struct Preset {
    std::string classId; ///< 32 hexadecimal digits.
    PluginState state;
};

/// @throws HostError when the bytes are no preset: too short, a wrong mark, a chunk outside the file, no
/// 'Comp'. Its message reads on from the file's name: "is no .vstpreset file".
Preset parsePreset(std::span<const std::byte> file);
std::vector<std::byte> formatPreset(const Preset& preset);

/// @throws HostError with the path when the file cannot be read or written, or is no preset.
Preset readPreset(const std::filesystem::path& path);
void writePreset(const std::filesystem::path& path, const Preset& preset);

} // namespace orvane::kestrum::host
