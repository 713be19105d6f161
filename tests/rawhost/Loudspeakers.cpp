// SPDX-License-Identifier: GPL-3.0-or-later
#include "Loudspeakers.h"

#include "parameters/ListedTables.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>

namespace rawhost {

namespace {

struct Loudspeaker {
    bool lowFrequency = false;
    double azimuth = 0;   ///< Degrees, positive to the right.
    double elevation = 0; ///< Degrees.

    double aside() const { return std::abs(azimuth); }
    bool isUp() const { return elevation > 0; }
};

std::vector<Loudspeaker> loudspeakersOf(const listed::Layout& layout) {
    std::vector<Loudspeaker> all;
    std::istringstream list{std::string(layout.speakers)};
    for (std::string entry; std::getline(list, entry, ',');) {
        Loudspeaker one;
        one.lowFrequency = entry.find("LFE") != std::string::npos;
        if (!one.lowFrequency) {
            const std::size_t slash = entry.find('/');
            one.azimuth = std::stod(entry);
            one.elevation = slash != std::string::npos ? std::stod(entry.substr(slash + 1)) : 0;
        }
        all.push_back(one);
    }
    return all;
}

/// The layouts before "5.0 ITU" and those in an order of a maker's are played by number.
bool keepsItsOwnOrder(const listed::Layout& layout) {
    const auto first = std::ranges::find(listed::layouts, std::string_view("5.0 ITU"), &listed::Layout::name);
    return &layout < first || layout.name.find("Film") != layout.name.npos ||
           layout.name.find("Logic") != layout.name.npos || layout.name.find("SDDS") != layout.name.npos;
}

/// What stands around a loudspeaker decides which of two pairs a name means.
struct Surroundings {
    bool busHasSides = false; ///< The bus names Sl and Sr.
    bool farRear = false;     ///< The layout has a pair at 150 degrees, and its sides at 110.
};

/// Whether a loudspeaker in the left half is what a name without its L or R says.
bool isPairMember(std::string_view pair, const Loudspeaker& one, const Surroundings& around) {
    const double aside = one.aside();
    if (pair == "front")
        return !one.isUp() && aside > 0 && aside <= 45;
    if (pair == "wide")
        return !one.isUp() && aside == 60;
    if (pair == "side")
        return !one.isUp() && aside == (around.farRear ? 110 : 90);
    if (pair == "surround")
        return !one.isUp() && (around.busHasSides ? aside == 135 || aside == 150 : aside == 110);
    if (pair == "top front")
        return one.isUp() && aside > 0 && aside <= 45;
    if (pair == "top side")
        return one.isUp() && (aside == 80 || aside == 90);
    return pair == "top rear" && one.isUp() && aside >= 110;
}

struct NamedPair {
    std::string_view left;
    std::string_view right;
    std::string_view pair;
};
constexpr NamedPair pairs[]{{"L", "R", "front"},         {"Lc", "Rc", "wide"},
                            {"Sl", "Sr", "side"},        {"Ls", "Rs", "surround"},
                            {"Tfl", "Tfr", "top front"}, {"Tsl", "Tsr", "top side"},
                            {"Trl", "Trr", "top rear"}};

bool isCalled(std::string_view name, const Loudspeaker& one, const Surroundings& around) {
    if (one.lowFrequency || name == "Lfe")
        return one.lowFrequency && name == "Lfe";
    if (name == "C")
        return one.azimuth == 0 && !one.isUp();
    if (name == "Cs")
        return one.aside() == 180 && !one.isUp();
    if (name == "Tfc")
        return one.azimuth == 0 && one.elevation == 30;
    if (name == "Tc")
        return one.elevation == 90;
    for (const NamedPair& pair : pairs)
        if (name == pair.left || name == pair.right)
            return (one.azimuth < 0) == (name == pair.left) && isPairMember(pair.pair, one, around);
    return false;
}

} // namespace

std::optional<std::vector<std::size_t>> loudspeakersByName(std::string_view layoutName,
                                                           const std::vector<std::string_view>& channels) {
    const auto& layout = *std::ranges::find(listed::layouts, layoutName, &listed::Layout::name);
    const std::vector<Loudspeaker> all = loudspeakersOf(layout);
    if (keepsItsOwnOrder(layout) || all.size() != channels.size())
        return {};
    const Surroundings around{
        std::ranges::count(channels, "Sl") > 0,
        std::ranges::any_of(all, [](const Loudspeaker& one) { return one.aside() == 150; })};
    std::vector<std::size_t> mapped;
    for (const std::string_view name : channels) {
        const auto found =
            std::ranges::find_if(all, [&](const Loudspeaker& one) { return isCalled(name, one, around); });
        const auto index = static_cast<std::size_t>(found - all.begin());
        if (found == all.end() || std::ranges::count(mapped, index) > 0)
            return {};
        mapped.push_back(index);
    }
    return mapped;
}

std::vector<std::string_view> layoutsOfWidth(std::size_t channelCount) {
    std::vector<std::string_view> names;
    for (const listed::Layout& layout : listed::layouts)
        if (layout.channels == channelCount)
            names.push_back(layout.name);
    return names;
}

} // namespace rawhost
