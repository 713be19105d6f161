// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string_view>

namespace orvane::kestrum::core {

/// How a selector's entry looks in its menu. The host's parameter lists use the raw names instead.
struct MenuEntry {
    std::string_view name;          ///< As in the layout or Scene table, same order.
    std::string_view shownAs;       ///< Mostly the name itself.
    std::string_view sectionBefore; ///< Header that stands above this entry; empty for none.
};

std::span<const MenuEntry> layoutMenu() noexcept;
std::span<const MenuEntry> sceneMenu() noexcept;

} // namespace orvane::kestrum::core
