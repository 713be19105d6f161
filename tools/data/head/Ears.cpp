// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/Ears.h"

#include "data/DataError.h"
#include "data/head/Arrivals.h"

#include <cmath>
#include <numeric>
#include <utility>

namespace orvane::kestrum::tools {

namespace {

double energyOf(const Samples& response) {
    return std::inner_product(response.begin(), response.end(), response.begin(), 0.0);
}

} // namespace

EarDecision assignEars(MeasuredSet& set) {
    constexpr double leastLateralDegrees = 60;
    ArrivalFinder finder(set.tapCount);
    std::size_t count = 0;
    double level = 0; // of the first receiver over the second for sources on the left
    double lead = 0;  // of the first receiver before the second for sources on the left
    for (const Measurement& measurement : set.measurements) {
        const double lateral = lateralDegrees(measurement.direction);
        if (std::abs(lateral) < leastLateralDegrees)
            continue;
        const double first = energyOf(measurement.ears[0]);
        const double second = energyOf(measurement.ears[1]);
        if (!(first > 0 && second > 0))
            throw DataError("The set holds a silent response beside the head: give a complete measurement.");
        const double side = lateral < 0 ? 1 : -1;
        level += side * 10 * std::log10(first / second);
        lead += side * (finder.find(measurement.ears[1]) - finder.find(measurement.ears[0]));
        ++count;
    }
    if (count == 0)
        throw DataError(
            "The set holds no direction near the left or right ear, so the ears cannot be told apart: "
            "give a set that covers the sphere.");
    level /= static_cast<double>(count);
    lead /= static_cast<double>(count) * set.sampleRate;
    constexpr double leastLevelDb = 1;
    constexpr double leastLeadSeconds = 50e-6;
    if (std::abs(level) < leastLevelDb || std::abs(lead) < leastLeadSeconds || (level > 0) != (lead > 0))
        throw DataError(
            "Level and arrival of the side sources do not say which ear is the left one: the set is damaged "
            "or not of a head, give another.");
    const bool swapped = level < 0;
    if (swapped)
        for (Measurement& measurement : set.measurements)
            std::swap(measurement.ears[0], measurement.ears[1]);
    return {swapped, std::abs(level), std::abs(lead)};
}

} // namespace orvane::kestrum::tools
