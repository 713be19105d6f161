// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/Grid.h"

#include <cmath>
#include <cstdlib>
#include <numbers>

namespace orvane::kestrum::tools {

std::vector<GridPlace> gridPlaces() {
    std::vector<GridPlace> places{{0, -90}};
    places.reserve(responseCount);
    for (int group = 0; group < static_cast<int>(azimuthGroupCount); ++group) {
        for (int elevation = -90 + gridStepDegrees; elevation < 90; elevation += gridStepDegrees)
            places.push_back({group * gridStepDegrees, elevation});
        if (group == 0)
            places.push_back({0, 90});
    }
    return places;
}

std::size_t gridIndex(int azimuthDegrees, int elevationDegrees) {
    constexpr int circle = 360;
    if (elevationDegrees <= -90)
        return 0;
    if (elevationDegrees >= 90)
        return elevationCount + 1;
    const auto group =
        static_cast<std::size_t>((azimuthDegrees % circle + circle) % circle / gridStepDegrees);
    const auto row = static_cast<std::size_t>((elevationDegrees + 90) / gridStepDegrees);
    return group * elevationCount + row + (group > 0 ? 1 : 0);
}

std::vector<double> gridWeights() {
    constexpr double radians = std::numbers::pi / 180;
    constexpr double half = gridStepDegrees / 2.0;
    std::vector<double> weights;
    weights.reserve(responseCount);
    for (const GridPlace& place : gridPlaces()) {
        const double elevation = place.elevationDegrees;
        if (std::abs(place.elevationDegrees) == 90)
            weights.push_back((1 - std::sin((90 - half) * radians)) / 2);
        else
            weights.push_back(
                (std::sin((elevation + half) * radians) - std::sin((elevation - half) * radians)) / 2 /
                static_cast<double>(azimuthGroupCount));
    }
    return weights;
}

} // namespace orvane::kestrum::tools
