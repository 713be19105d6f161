// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/measures/ThirdOctaves.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::tools {

namespace {

constexpr double lowestCentreHz = 100;
constexpr double bandsPerDecade = 10;

/// Counted in bands from the lowest centre.
double bandPlace(double frequencyHz) { return bandsPerDecade * std::log10(frequencyHz / lowestCentreHz); }

double gainAt(std::size_t band, double frequencyHz) {
    const double away = frequencyHz > 0 ? bandPlace(frequencyHz) - static_cast<double>(band) : -1e9;
    const bool beyondAll = (band == 0 && away < 0) || (band + 1 == thirdOctaveCount && away > 0);
    const double cosine = std::cos(std::numbers::pi / 2 * std::min(std::abs(away), 1.0));
    return beyondAll ? 1.0 : cosine * cosine;
}

} // namespace

std::array<BandWindow, thirdOctaveCount> thirdOctaves(std::size_t binCount, double sampleRate) {
    std::array<BandWindow, thirdOctaveCount> bands;
    const double binWidthHz = sampleRate / 2 / static_cast<double>(binCount - 1);
    const auto binOf = [&](std::size_t band, double steps) {
        const double hertz =
            lowestCentreHz * std::pow(10.0, (static_cast<double>(band) + steps) / bandsPerDecade);
        return std::min(static_cast<std::size_t>(std::ceil(hertz / binWidthHz)), binCount);
    };
    for (std::size_t band = 0; band < thirdOctaveCount; ++band) {
        BandWindow& window = bands[band];
        window.centreHz = lowestCentreHz * std::pow(10.0, static_cast<double>(band) / bandsPerDecade);
        window.firstBin = band == 0 ? 0 : binOf(band, -1);
        const std::size_t end = band + 1 == thirdOctaveCount ? binCount : binOf(band, 1);
        for (std::size_t bin = window.firstBin; bin < end; ++bin)
            window.gains.push_back(gainAt(band, binWidthHz * static_cast<double>(bin)));
    }
    return bands;
}

} // namespace orvane::kestrum::tools
