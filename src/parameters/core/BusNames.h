// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ChannelOrder.h"

#include <span>
#include <string_view>

namespace orvane::kestrum::core {

/// A layout that is played by name on a bus whose channels the host names.
struct NamedLayoutRow {
    std::string_view layout;
    std::string_view
        names; ///< The interface's short names, between blanks, in the order of the layout's channels.
};

/// The layouts that are played by name. On any bus the others take bus channel i as their channel i, and so do these on a
/// bus whose names are not theirs.
std::span<const NamedLayoutRow> namedLayoutTable() noexcept;

/// Which bus channel feeds each channel of the layout, by name where every name of the one is a name of the other.
///
/// Shape   busNames[i] is the interface's short name of bus channel i, empty for a channel without one.
/// @return ChannelOrder::identity where the names do not match one to one.
ChannelOrder::Table orderByName(std::string_view layout, std::span<const std::string_view> busNames) noexcept;

} // namespace orvane::kestrum::core
