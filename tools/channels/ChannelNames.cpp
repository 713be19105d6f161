// SPDX-License-Identifier: GPL-3.0-or-later
#include "channels/ChannelNames.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace orvane::kestrum::channels {

namespace {

/// Every short name there is.
constexpr std::array<std::pair<std::string_view, std::string_view>, 24> spokenNames{
    {{"M", "mono"},
     {"L", "front left"},
     {"R", "front right"},
     {"C", "front centre"},
     {"LFE", "low frequencies"},
     {"Lc", "left of centre"},
     {"Rc", "right of centre"},
     {"Lw", "left wide"},
     {"Rw", "right wide"},
     {"Ls", "left surround"},
     {"Rs", "right surround"},
     {"Lss", "side left"},
     {"Rss", "side right"},
     {"Lrs", "rear left"},
     {"Rrs", "rear right"},
     {"Cs", "rear centre"},
     {"Ltf", "left top front"},
     {"Rtf", "right top front"},
     {"Ctf", "centre top front"},
     {"Ltm", "left top middle"},
     {"Rtm", "right top middle"},
     {"Ltr", "left top rear"},
     {"Rtr", "right top rear"},
     {"Top", "top"}}};

constexpr std::array<std::string_view, 16> numbers{
    "one",  "two", "three",  "four",   "five",     "six",      "seven",   "eight",
    "nine", "ten", "eleven", "twelve", "thirteen", "fourteen", "fifteen", "sixteen"};

constexpr float centreEnd = 25, frontEnd = 50, wideEnd = 75; ///< Degrees from straight ahead.

bool surrounds(const core::SpeakerRow& speaker) {
    return !speaker.lowFrequency && speaker.elevation == 0 && speaker.azimuth > wideEnd &&
           speaker.azimuth < 180;
}

/// Azimuth of the surround pair that stands farthest ahead.
float nearestSurround(const core::LayoutRow& layout) {
    float nearest = 180;
    for (const core::SpeakerRow& speaker : layout.speakers)
        if (surrounds(speaker))
            nearest = std::min(nearest, speaker.azimuth);
    return nearest;
}

std::string aboveEars(const core::SpeakerRow& speaker, const std::string& side) {
    const float angle = std::abs(speaker.azimuth);
    if (speaker.elevation > 80)
        return "Top";
    return (side.empty() ? "C" : side) + (angle <= frontEnd ? "tf" : angle <= 100 ? "tm" : "tr");
}

std::string nameOf(const core::SpeakerRow& speaker, const core::LayoutRow& layout) {
    const float angle = std::abs(speaker.azimuth);
    std::string side = speaker.azimuth == 0 || angle == 180 ? "" : speaker.azimuth < 0 ? "L" : "R";
    if (speaker.lowFrequency)
        return "LFE";
    if (speaker.elevation > 0)
        return aboveEars(speaker, side);
    if (layout.speakers.size() == 1)
        return "M";
    if (angle == 180)
        return "Cs";
    if (side.empty())
        return "C";
    if (angle < centreEnd)
        return side + "c";
    if (angle <= frontEnd)
        return side;
    if (angle <= wideEnd)
        return side + "w";
    if (std::ranges::count_if(layout.speakers, surrounds) < 2)
        return side + "s";
    return side + (angle == nearestSurround(layout) ? "ss" : "rs");
}

} // namespace

std::vector<std::string> briefNames(const core::LayoutRow& layout) {
    std::vector<std::string> names;
    for (const core::SpeakerRow& speaker : layout.speakers)
        names.push_back(nameOf(speaker, layout));
    return names;
}

std::string_view spokenName(std::string_view briefName) {
    const auto found = std::ranges::find(spokenNames, briefName, &decltype(spokenNames)::value_type::first);
    if (found == spokenNames.end())
        throw std::invalid_argument("no channel is called \"" + std::string(briefName) + "\"");
    return found->second;
}

std::vector<Channel> channelsOf(const core::LayoutRow& layout) {
    const std::vector<std::string> names = briefNames(layout);
    std::vector<Channel> channels;
    for (std::size_t index = 0; index < names.size(); ++index) {
        Channel channel{names[index], std::string(spokenName(names[index])),
                        std::ranges::count(names, names[index]) == 1, layout.speakers[index]};
        if (!channel.unique)
            channel.spoken += std::string(", channel ").append(numbers.at(index));
        channels.push_back(std::move(channel));
    }
    return channels;
}

} // namespace orvane::kestrum::channels
