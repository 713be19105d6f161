// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/BusNames.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace orvane::kestrum::core {

namespace {

// Ls Rs are the one pair of surrounds, or the pair behind where Sl Sr stand beside the listener. Lc Rc are the wide pair:
// the interface knows no other between front and side. The Film, Logic and SDDS orders are not here: they are for buses
// that carry them, whatever the host calls the channels.
constexpr NamedLayoutRow table[]{
    {"5.0 ITU", "L R C Ls Rs"},
    {"5.1 ITU", "L R C Lfe Ls Rs"},
    {"6.0", "L R C Ls Rs Cs"},
    {"6.1", "L R C Lfe Ls Rs Cs"},
    {"7.0", "L R C Sl Sr Ls Rs"},
    {"7.1", "L R C Lfe Sl Sr Ls Rs"},
    {"5.0.2", "L R C Ls Rs Tfl Tfr"},
    {"5.1.2", "L R C Lfe Ls Rs Tsl Tsr"},
    {"5.0.4", "L R C Ls Rs Tfl Tfr Trl Trr"},
    {"5.1.4", "L R C Lfe Ls Rs Tfl Tfr Trl Trr"},
    {"7.0.2", "L R C Sl Sr Ls Rs Tsl Tsr"},
    {"7.1.2", "L R C Lfe Sl Sr Ls Rs Tsl Tsr"},
    {"7.0.4", "L R C Sl Sr Ls Rs Tfl Tfr Trl Trr"},
    {"7.1.4", "L R C Lfe Ls Rs Sl Sr Tfl Tfr Trl Trr"},
    {"9.1.2", "L R C Lfe Lc Rc Sl Sr Ls Rs Tsl Tsr"},
    {"9.1.6", "L R C Lfe Ls Rs Lc Rc Sl Sr Tfl Tfr Trl Trr Tsl Tsr"},
    {"8.0", "L R Ls Rs Tfl Tfr Trl Trr"},
    {"9.1", "L R C Lfe Ls Rs Tfl Tfr Trl Trr"},
    {"11.1", "L R C Lfe Ls Rs Tc Tfl Tfc Tfr Trl Trr"},
    {"13.1", "L R C Lfe Ls Rs Sl Sr Tc Tfl Tfc Tfr Trl Trr"},
};

using Names = std::array<std::string_view, ChannelOrder::maximumLength>;

/// Cuts `text` at its blanks. @return the names and how many they are.
constexpr std::pair<Names, std::size_t> split(std::string_view text) noexcept {
    Names names{};
    std::size_t count = 0;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find(' '), text.size());
        names[count++] = text.substr(0, length);
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return {names, count};
}

/// Where a bus or a layout has one pair of heights, it is that pair, whether it is called front, side or rear.
constexpr void renameOnlyHeights(std::span<std::string_view> names) noexcept {
    constexpr std::pair<std::string_view, std::string_view> pairs[]{
        {"Tfl", "Tfr"}, {"Tsl", "Tsr"}, {"Trl", "Trr"}};
    const auto has = [names](std::string_view name) { return std::ranges::find(names, name) != names.end(); };
    const auto hasAny = [has](const auto& pair) { return has(pair.first) || has(pair.second); };
    if (std::ranges::count_if(pairs, hasAny) != 1)
        return;
    for (const auto& [left, right] : pairs) {
        std::ranges::replace(names, left, std::string_view("Tsl"));
        std::ranges::replace(names, right, std::string_view("Tsr"));
    }
}

constexpr bool namesDiffer(const NamedLayoutRow& row) {
    const auto [names, count] = split(row.names);
    for (std::size_t channel = 0; channel < count; ++channel)
        if (std::ranges::count(names, names[channel]) != 1)
            return false;
    return true;
}
static_assert(std::ranges::all_of(table, namesDiffer));

} // namespace

std::span<const NamedLayoutRow> namedLayoutTable() noexcept { return table; }

ChannelOrder::Table orderByName(std::string_view layout,
                                std::span<const std::string_view> busNames) noexcept {
    const auto* const row = std::ranges::find(table, layout, &NamedLayoutRow::layout);
    if (row == std::end(table))
        return ChannelOrder::identity;
    auto [wanted, count] = split(row->names);
    if (busNames.size() != count)
        return ChannelOrder::identity;
    Names offered{};
    std::ranges::copy(busNames, offered.begin());
    renameOnlyHeights(std::span(wanted).first(count));
    renameOnlyHeights(std::span(offered).first(count));
    ChannelOrder::Table order = ChannelOrder::identity;
    for (std::size_t channel = 0; channel < count; ++channel) {
        const auto* const found = std::ranges::find(offered, wanted[channel]);
        if (found == offered.end())
            return ChannelOrder::identity;
        order[channel] = static_cast<std::uint8_t>(found - offered.begin());
    }
    return order;
}

} // namespace orvane::kestrum::core
