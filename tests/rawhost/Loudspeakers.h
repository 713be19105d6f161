// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace rawhost {

/// Which loudspeaker of a layout a bus's channel belongs to, by the names that the host gives its channels.
///
/// @param layout   a layout's name.
/// @param channels the interfaces' names of the bus's channels.
/// @return entry c is the loudspeaker of channel c; nothing when the layout keeps an order of its own, or when its
///         loudspeakers and the names cannot be matched one to one: then loudspeaker i plays channel i.
/// Source  the directions in the layouts' list, and what the interfaces' headers say of each name.
std::optional<std::vector<std::size_t>> loudspeakersByName(std::string_view layout,
                                                           const std::vector<std::string_view>& channels);

/// The layouts of so many channels, by name.
std::vector<std::string_view> layoutsOfWidth(std::size_t channelCount);

} // namespace rawhost
