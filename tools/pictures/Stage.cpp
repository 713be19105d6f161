// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Stage.h"

#include "channels/ChannelNames.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

namespace orvane::kestrum::pictures {

namespace {

constexpr double degree = std::numbers::pi / 180;

/// The upper right corner belongs to the product's name.
constexpr Area productName{880, 0, 200, 84};
constexpr Area window{6, 6, 1068, 492};

constexpr double labelBoxHeight = 18;

Cabinet cabinetOf(const core::SpeakerRow& speaker) {
    if (speaker.lowFrequency)
        return {46, 26, 27};
    if (speaker.elevation > 80)
        return {32, 32, 14};
    if (speaker.elevation > 0)
        return {23, 16, 29};
    return {};
}

Area coveredBy(const StagedSpeaker& staged) {
    const double azimuth = staged.speaker.azimuth * degree;
    const double sine = std::abs(std::sin(azimuth)), cosine = std::abs(std::cos(azimuth));
    const Cabinet& box = staged.cabinet;
    const double halfX = (box.width * cosine + box.depth * sine) / 2,
                 halfZ = (box.width * sine + box.depth * cosine) / 2;
    const double halfY = -stage::drawn(0, halfZ, 0).y, height = -stage::drawn(0, 0, box.height).y;
    return {staged.place.x - halfX, staged.place.y - height - halfY, 2 * halfX, height + 2 * halfY};
}

/// Places that a label may take beside its loudspeaker, the best first: outwards, then above or below.
std::array<Area, 8> candidates(const StagedSpeaker& staged) {
    const Area& box = staged.covered;
    const double width = staged.label.width, height = staged.label.height;
    constexpr double gap = 4;
    const double middleX = box.left + box.width / 2, middleY = box.top + box.height / 2;
    const auto at = [&](double left, double top) { return Area{left, top, width, height}; };
    const Area above = at(middleX - width / 2, box.top - gap - height);
    const Area below = at(middleX - width / 2, box.top + box.height + gap);
    const Area right = at(box.left + box.width + gap, middleY - height / 2);
    const Area left = at(box.left - gap - width, middleY - height / 2);
    const bool onTheRight = staged.speaker.azimuth >= 0 && staged.speaker.azimuth < 180;
    const Area outside = onTheRight ? right : left, inside = onTheRight ? left : right;
    const auto raised = [&](Area area, double share) {
        area.top += share * box.height;
        return area;
    };
    const bool behind = std::abs(staged.speaker.azimuth) > 100 && staged.speaker.elevation == 0;
    const bool atTheSide = std::abs(staged.speaker.azimuth) > 70;
    const Area first = atTheSide && !behind ? outside : behind ? below : above;
    const Area second = atTheSide && !behind ? above : outside;
    return {first,
            second,
            raised(outside, -0.4),
            raised(outside, 0.4),
            behind ? above : below,
            inside,
            raised(inside, -0.4),
            raised(inside, 0.4)};
}

double sharedArea(const Area& a, const Area& b) noexcept {
    const double width = std::min(a.left + a.width, b.left + b.width) - std::max(a.left, b.left);
    const double height = std::min(a.top + a.height, b.top + b.height) - std::max(a.top, b.top);
    return width > 0 && height > 0 ? width * height : 0;
}

/// A candidate's own rank, and a thousand times what it would cover.
double costOf(const Area& label, std::size_t rank, const StagedSpeaker& own,
              const std::vector<StagedSpeaker>& all) {
    const Area wide{label.left - 2, label.top - 2, label.width + 4, label.height + 4};
    double covered = sharedArea(wide, productName) + sharedArea(wide, listenerArea);
    covered += label.width * label.height - sharedArea(label, window);
    for (const StagedSpeaker& other : all) {
        covered += sharedArea(&other == &own ? label : wide, other.covered);
        if (&other != &own)
            covered += sharedArea(wide, other.label);
        // A stem through a label is no harm, but not pretty.
        const Area stem{other.foot.x - 1, other.place.y, 2, other.foot.y - other.place.y};
        covered += 0.00001 * sharedArea(label, stem);
    }
    return static_cast<double>(rank) + 1000 * covered;
}

/// Moves one label after the other to the best place that the others leave, until none wants to move.
void placeLabels(std::vector<StagedSpeaker>& all) {
    for (StagedSpeaker& staged : all)
        staged.label = candidates(staged).front();
    for (int round = 0; round < 12; ++round)
        for (StagedSpeaker& staged : all) {
            const std::array<Area, 8> places = candidates(staged);
            double best = std::numeric_limits<double>::infinity();
            for (std::size_t rank = 0; rank < places.size(); ++rank)
                if (const double cost = costOf(places[rank], rank, staged, all); cost < best) {
                    best = cost;
                    staged.label = places[rank];
                }
        }
}

} // namespace

Point stage::floorAt(double azimuth, double radius) noexcept {
    return {middle.x + radiusX * radius * std::sin(azimuth * degree),
            middle.y - radiusY * radius * std::cos(azimuth * degree)};
}

double stage::riseOf(double elevation) noexcept { return 205 * std::pow(std::sin(elevation * degree), 0.41); }

double stage::radiusOf(double elevation) noexcept {
    return std::sqrt(std::max(0.0, std::cos(elevation * degree)));
}

Point stage::drawn(double x, double z, double up) noexcept {
    constexpr double tilt = radiusY / radiusX; // sine of the angle from above
    return {x, -z * tilt - up * std::sqrt(1 - tilt * tilt)};
}

bool overlap(const Area& a, const Area& b) noexcept { return sharedArea(a, b) > 0; }

std::vector<StagedSpeaker> staged(const core::LayoutRow& layout, const Font& font) {
    const std::vector<std::string> names = channels::briefNames(layout);
    std::vector<StagedSpeaker> result;
    for (const core::SpeakerRow& speaker : layout.speakers) {
        StagedSpeaker one;
        one.speaker = speaker;
        one.name = names[result.size()];
        one.number = std::to_string(result.size() + 1);
        const double radius =
            speaker.lowFrequency ? stage::lowFrequencyRadius : stage::radiusOf(speaker.elevation);
        one.foot = stage::floorAt(speaker.azimuth, radius);
        one.place = {one.foot.x, one.foot.y - stage::riseOf(speaker.elevation)};
        one.cabinet = cabinetOf(speaker);
        one.covered = coveredBy(one);
        one.label.width = 2 * labelPadding + font.width(one.number, labelHeight) + labelGap +
                          font.width(one.name, labelHeight);
        one.label.height = labelBoxHeight;
        result.push_back(std::move(one));
    }
    placeLabels(result);
    return result;
}

} // namespace orvane::kestrum::pictures
