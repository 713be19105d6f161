// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/measures/RoomMeasures.h"

#include <algorithm>
#include <cmath>

namespace orvane::kestrum::tools {

namespace {

double energyOf(const EarResponses& response, std::size_t from, std::size_t to) {
    double sum = 0;
    for (const Samples& ear : response)
        for (std::size_t index = from; index < std::min(to, ear.size()); ++index)
            sum += ear[index] * ear[index];
    return sum;
}

/// Level of one energy over another; what is missing altogether counts as 120 dB away.
double ratioDb(double energy, double other) {
    constexpr double furthestDb = 120;
    if (energy <= 0)
        return -furthestDb;
    if (other <= 0)
        return furthestDb;
    return std::clamp(10 * std::log10(energy / other), -furthestDb, furthestDb);
}

} // namespace

std::size_t onsetOf(const EarResponses& response) {
    constexpr double underPeak = 0.1; // 20 dB
    double peak = 0;
    for (const Samples& ear : response)
        for (const double sample : ear)
            peak = std::max(peak, std::abs(sample));
    std::size_t onset = std::max(response[leftEar].size(), response[rightEar].size());
    for (const Samples& ear : response) {
        const auto first = std::ranges::find_if(
            ear, [&](double sample) { return sample != 0 && std::abs(sample) >= peak * underPeak; });
        if (first != ear.end())
            onset = std::min(onset, static_cast<std::size_t>(first - ear.begin()));
    }
    return onset;
}

double clarityDb(const EarResponses& response, double sampleRate, double earlySeconds) {
    const std::size_t border =
        onsetOf(response) + static_cast<std::size_t>(std::lround(earlySeconds * sampleRate));
    const std::size_t end = std::max(response[leftEar].size(), response[rightEar].size());
    return ratioDb(energyOf(response, 0, border), energyOf(response, border, end));
}

double directToRestDb(const EarResponses& direct, const EarResponses& rest) {
    const auto whole = [](const EarResponses& response) {
        return energyOf(response, 0, std::max(response[leftEar].size(), response[rightEar].size()));
    };
    return ratioDb(whole(direct), whole(rest));
}

} // namespace orvane::kestrum::tools
