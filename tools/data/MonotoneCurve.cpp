// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/MonotoneCurve.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace orvane::kestrum::tools {

namespace {

/// The straight line from one point to the next.
struct Chord {
    double width = 0;
    double slope = 0;
};

/// No cubic whose slopes at both ends stay within three times its chord's turns back.
constexpr double steepest = 3;

double limited(double slope, double chordSlope) {
    if (slope * chordSlope <= 0)
        return 0;
    return std::copysign(std::min(std::abs(slope), steepest * std::abs(chordSlope)), slope);
}

double innerSlope(const Chord& before, const Chord& after, Lean lean) {
    if (before.slope * after.slope <= 0)
        return 0;
    if (lean == Lean::harmonicMean) {
        const double weightBefore = 2 * after.width + before.width;
        const double weightAfter = after.width + 2 * before.width;
        return (weightBefore + weightAfter) / (weightBefore / before.slope + weightAfter / after.slope);
    }
    const double parabola =
        (after.width * before.slope + before.width * after.slope) / (before.width + after.width);
    return limited(limited(parabola, before.slope), after.slope);
}

/// The parabola through the end and its two neighbours.
double endSlope(const Chord& last, const Chord& inner) {
    const double parabola =
        ((2 * last.width + inner.width) * last.slope - last.width * inner.slope) / (last.width + inner.width);
    return limited(parabola, last.slope);
}

} // namespace

MonotoneCurve::MonotoneCurve(std::vector<double> givenPlaces, std::vector<double> givenValues, Lean lean)
    : places(std::move(givenPlaces)), values(std::move(givenValues)) {
    std::vector<Chord> chords;
    for (std::size_t index = 0; index + 1 < places.size(); ++index) {
        const double width = places[index + 1] - places[index];
        chords.push_back({width, (values[index + 1] - values[index]) / width});
    }
    slopes.push_back(endSlope(chords[0], chords[1]));
    for (std::size_t index = 1; index < chords.size(); ++index)
        slopes.push_back(innerSlope(chords[index - 1], chords[index], lean));
    slopes.push_back(endSlope(chords[chords.size() - 1], chords[chords.size() - 2]));
}

double MonotoneCurve::at(double place) const {
    const auto next = std::upper_bound(places.begin() + 1, places.end() - 1, place);
    const auto after = static_cast<std::size_t>(next - places.begin());
    const std::size_t before = after - 1;
    const double width = places[after] - places[before];
    const double way = (place - places[before]) / width;
    const double rest = 1 - way;
    return values[before] * (1 + 2 * way) * rest * rest + values[after] * way * way * (1 + 2 * rest) +
           width * way * rest * (slopes[before] * rest - slopes[after] * way);
}

} // namespace orvane::kestrum::tools
