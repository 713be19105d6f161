// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/BusLayouts.h"

#include "parameters/core/BusNames.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace orvane::kestrum {

namespace {

using Set = juce::AudioChannelSet;

/// What a host calls a channel that the framework takes for this one.
constexpr std::pair<Set::ChannelType, std::string_view> namedChannels[]{
    {Set::left, "L"},
    {Set::right, "R"},
    {Set::centre, "C"},
    {Set::LFE, "Lfe"},
    {Set::leftSurround, "Ls"},
    {Set::rightSurround, "Rs"},
    {Set::leftCentre, "Lc"},
    {Set::rightCentre, "Rc"},
    {Set::centreSurround, "Cs"},
    {Set::leftSurroundSide, "Sl"},
    {Set::rightSurroundSide, "Sr"},
    {Set::topMiddle, "Tc"},
    {Set::topFrontLeft, "Tfl"},
    {Set::topFrontCentre, "Tfc"},
    {Set::topFrontRight, "Tfr"},
    {Set::topRearLeft, "Trl"},
    {Set::topRearRight, "Trr"},
    {Set::topSideLeft, "Tsl"},
    {Set::topSideRight, "Tsr"},
};

std::string_view hostName(const juce::Array<Set::ChannelType>& types, Set::ChannelType type) {
    // With sides, the framework takes the host's Ls and Rs for its rear pair; beside surrounds of its own, that pair is Lcs and Rcs.
    const bool surroundsAreRear = types.contains(Set::leftSurroundSide) && !types.contains(Set::leftSurround);
    if (surroundsAreRear && type == Set::leftSurroundRear)
        return "Ls";
    if (surroundsAreRear && type == Set::rightSurroundRear)
        return "Rs";
    // Of the host's L and Lc, which stand side by side in front, it takes the outer one for its wide channel.
    if (types.contains(Set::wideLeft)) {
        if (type == Set::wideLeft)
            return "L";
        if (type == Set::wideRight)
            return "R";
        if (type == Set::left)
            return "Lc";
        if (type == Set::right)
            return "Rc";
    }
    const auto* const named =
        std::ranges::find(namedChannels, type, &std::pair<Set::ChannelType, std::string_view>::first);
    return named != std::end(namedChannels) ? named->second : std::string_view();
}

} // namespace

std::vector<std::string_view> hostNames(const juce::AudioChannelSet& bus) {
    const auto types = bus.getChannelTypes();
    std::vector<std::string_view> names;
    for (const auto type : types)
        names.push_back(hostName(types, type));
    return names;
}

BusLayouts::BusLayouts(const core::ISupportedLayouts& table) {
    table.forEach([this](const Properties& layout) { layouts.push_back(layout); });
    orders = std::vector<ChannelOrder>(layouts.size());
    for (std::size_t index = 0; index < layouts.size(); ++index)
        layouts[index].busOrder = &orders[index];
}

void BusLayouts::followBus(const juce::AudioChannelSet& bus) {
    const std::vector<std::string_view> names = hostNames(bus);
    for (std::size_t index = 0; index < layouts.size(); ++index)
        orders[index].set(core::orderByName(layouts[index].name, names));
}

void BusLayouts::forEach(std::function<void(const Properties&)> visit) const {
    for (const Properties& layout : layouts)
        visit(layout);
}

const core::ISupportedLayouts::Properties& BusLayouts::get(std::uint32_t id) const {
    const auto layout = std::ranges::find(layouts, id, &Properties::id);
    if (layout == layouts.end())
        throw std::invalid_argument("layout not supported");
    return *layout;
}

} // namespace orvane::kestrum
