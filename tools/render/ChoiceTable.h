// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::kestrum::render {

/// One entry of a selector: the name the host's parameter carries, and the one the plug-in's menu shows.
struct Choice {
    std::string name;
    std::string shownAs;
    std::uint64_t channelCount = 0; ///< Channels that a layout needs; 0 for a Scene.
};

/// The choices of one selector, found by either name, upper or lower case.
class ChoiceTable {
public:
    /// @param kind the word for one entry in messages: "layout", "Scene".
    ChoiceTable(std::string kind, std::vector<Choice> choices)
        : kind(std::move(kind)), choices(std::move(choices)) {}

    /// @throws RenderError with all choices when no entry has the name.
    const Choice& find(std::string_view name) const;
    /// @return null when no entry has the name.
    const Choice* search(std::string_view name) const;
    const std::vector<Choice>& all() const { return choices; }

private:
    std::string kind;
    std::vector<Choice> choices;
};

/// Equal but for upper and lower case of ASCII letters.
bool equalIgnoringCase(std::string_view left, std::string_view right);

} // namespace orvane::kestrum::render
