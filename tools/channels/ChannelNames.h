// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/LayoutTable.h"

#include <string>
#include <string_view>
#include <vector>

namespace orvane::kestrum::channels {

/// Short names of a layout's channels, in bus order, told from where the loudspeakers stand: "L", "Rs", "Ltf", "LFE".
/// In a layout with one pair beside or behind the listener this is "Ls" and "Rs", with two they are "Lss" and "Lrs".
std::vector<std::string> briefNames(const core::LayoutRow& layout);

/// The words that a short name stands for: "left surround" for "Ls".
/// @throws std::invalid_argument for what briefNames() never returns.
std::string_view spokenName(std::string_view briefName);

/// One channel of a bus as a person tells it.
struct Channel {
    std::string brief;
    /// The short name's words; where two loudspeakers of a layout share a name, with the number of the channel.
    std::string spoken;
    bool unique = true; ///< Whether no other channel of the layout has this short name.
    core::SpeakerRow speaker;
};

/// @return entry i is bus channel i.
std::vector<Channel> channelsOf(const core::LayoutRow& layout);

} // namespace orvane::kestrum::channels
