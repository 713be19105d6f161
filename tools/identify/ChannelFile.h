// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "channels/ChannelNames.h"
#include "identify/Voices.h"
#include "parameters/core/LayoutTable.h"

#include <cstddef>
#include <filesystem>
#include <vector>

namespace orvane::kestrum::identify {

/// Where each channel is heard.
///
/// Units   frames: channel i sounds from i * turnFrames on.
struct Turns {
    std::vector<channels::Channel> channels; ///< In bus order, which is the order of the turns.
    std::size_t turnFrames = 0;              ///< A whole number of seconds, 2 unless a voice takes longer.
};

/// The layout of this name, which may be that of the plug-in's menu, in upper or lower case.
/// @throws render::RenderError that lists the layouts when there is none.
const core::LayoutRow& layoutNamed(std::string_view name);

/// Writes a file with a channel for each loudspeaker of the layout, in bus order, in which each sounds alone in its turn.
/// Nothing is written before all voices are there.
/// @throws render::RenderError when a voice is missing or the file cannot be written.
Turns writeChannelFile(const std::filesystem::path& path, const core::LayoutRow& layout, const Voices& voices,
                       unsigned sampleRate);

} // namespace orvane::kestrum::identify
