// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/ChannelNames.h"

#include <algorithm>
#include <cmath>

namespace orvane::kestrum::pictures {

namespace {

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

std::vector<std::string> channelNames(const core::LayoutRow& layout) {
    std::vector<std::string> names;
    for (const core::SpeakerRow& speaker : layout.speakers)
        names.push_back(nameOf(speaker, layout));
    return names;
}

} // namespace orvane::kestrum::pictures
