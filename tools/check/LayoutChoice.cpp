// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/LayoutChoice.h"

#include "check/CheckError.h"
#include "render/Names.h"

#include <vector>

namespace orvane::kestrum::check {

namespace {

std::string channels(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " channel" : " channels");
}

std::vector<std::string> layoutsOf(std::uint64_t channelCount) {
    std::vector<std::string> names;
    for (const render::Choice& layout : render::layoutChoices().all())
        if (layout.channelCount == channelCount)
            names.push_back(layout.name);
    return names;
}

/// "A", "B" or "C"
std::string orList(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t index = 0; index < names.size(); ++index) {
        if (index > 0)
            text += index + 1 == names.size() ? " or " : ", ";
        text += "\"" + names[index] + "\"";
    }
    return text;
}

std::string remedy(const std::vector<std::string>& fitting) {
    return fitting.empty() ? "no layout has so many, so export the mix in another one."
                           : "name " + orList(fitting) + " with --layout.";
}

} // namespace

std::string chooseLayout(std::uint64_t channelCount, const std::optional<std::string>& named) {
    const std::vector<std::string> fitting = layoutsOf(channelCount);
    if (named) {
        const render::Choice& layout = render::layoutChoices().find(*named);
        if (layout.channelCount != channelCount)
            throw CheckError("The layout \"" + layout.name + "\" has " + channels(layout.channelCount) +
                             " and the mix has " + channels(channelCount) + ": " + remedy(fitting));
        return layout.name;
    }
    if (fitting.size() != 1)
        throw CheckError("The mix has " + channels(channelCount) +
                         ", which alone does not tell its layout: " + remedy(fitting));
    return fitting.front();
}

} // namespace orvane::kestrum::check
