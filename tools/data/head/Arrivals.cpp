// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/Arrivals.h"

#include <algorithm>
#include <cmath>

namespace orvane::kestrum::tools {

namespace {

constexpr std::size_t fineness = 4; ///< Points per sample; the parabola does the rest.

} // namespace

ArrivalFinder::ArrivalFinder(std::size_t tapCount)
    : analysis(powerOfTwoFrom(tapCount * 4)), fine(analysis.size() * fineness) {}

double ArrivalFinder::find(const Samples& response) {
    const Spectrum spectrum = analysis.forward(response);
    const Samples magnitudes = magnitudesOf(spectrum);
    if (*std::ranges::max_element(magnitudes) <= 0)
        return 0;
    const Spectrum minimum = analysis.minimumPhase(magnitudes);
    Spectrum product(fine.binCount());
    for (std::size_t bin = 0; bin < spectrum.size(); ++bin)
        product[bin] = spectrum[bin] * std::conj(minimum[bin]);
    const Samples correlation = fine.inverse(product);
    const double position = peakPosition(correlation) / static_cast<double>(fineness);
    const double size = static_cast<double>(analysis.size());
    return position > size / 2 ? position - size : position;
}

double peakPosition(const Samples& samples) {
    const auto peak = static_cast<std::size_t>(std::ranges::max_element(samples) - samples.begin());
    const std::size_t count = samples.size();
    const double before = samples[(peak + count - 1) % count];
    const double after = samples[(peak + 1) % count];
    const double bend = before - 2 * samples[peak] + after;
    return static_cast<double>(peak) + (bend < 0 ? 0.5 * (before - after) / bend : 0.0);
}

} // namespace orvane::kestrum::tools
