// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/Names.h"

#include "parameters/core/LayoutTable.h"
#include "parameters/core/MenuPresentation.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orvane::kestrum::render {

namespace {

constexpr std::array<std::pair<std::uint64_t, std::string_view>, 13> usual{{{1, "1.0"},
                                                                            {2, "2.0 +/-30°"},
                                                                            {4, "Quad"},
                                                                            {5, "5.0 ITU"},
                                                                            {6, "5.1 ITU"},
                                                                            {7, "7.0"},
                                                                            {8, "7.1"},
                                                                            {9, "7.0.2"},
                                                                            {10, "5.1.4"},
                                                                            {11, "7.0.4"},
                                                                            {12, "7.1.4"},
                                                                            {14, "13.1"},
                                                                            {16, "9.1.6"}}};

std::uint64_t channelCountOf(std::string_view layout) {
    const auto table = core::layoutTable();
    const auto row = std::ranges::find(table, layout, &core::LayoutRow::name);
    return row != table.end() ? row->speakers.size() : 0;
}

} // namespace

const ChoiceTable& layoutChoices() {
    static const ChoiceTable table = [] {
        std::vector<Choice> choices;
        for (const core::MenuEntry& entry : core::layoutMenu())
            choices.push_back(
                {std::string(entry.name), std::string(entry.shownAs), channelCountOf(entry.name)});
        return ChoiceTable("layout", std::move(choices));
    }();
    return table;
}

const ChoiceTable& sceneChoices() {
    static const ChoiceTable table = [] {
        std::vector<Choice> choices;
        for (const core::MenuEntry& entry : core::sceneMenu())
            choices.push_back({std::string(entry.name), std::string(entry.shownAs), 0});
        return ChoiceTable("Scene", std::move(choices));
    }();
    return table;
}

std::optional<std::string_view> usualLayout(std::uint64_t channelCount) {
    const auto found = std::ranges::find(usual, channelCount, &decltype(usual)::value_type::first);
    if (found == usual.end())
        return std::nullopt;
    return found->second;
}

} // namespace orvane::kestrum::render
