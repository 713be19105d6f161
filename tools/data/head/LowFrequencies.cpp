// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/LowFrequencies.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::tools {

namespace {

/// 0 at the lower end of the range and below, 1 at the upper end.
double measuredShare(double frequencyHz, const LowFrequencyRange& range) {
    if (frequencyHz <= range.modelBelowHz)
        return 0;
    const double way =
        std::log(frequencyHz / range.modelBelowHz) / std::log(range.measuredAboveHz / range.modelBelowHz);
    return 0.5 - 0.5 * std::cos(std::numbers::pi * std::min(way, 1.0));
}

} // namespace

double removeRollOffLead(AlignedSet& set, std::span<const double> weights, const LowFrequencyRange& range) {
    constexpr double highestHz = 800;
    const double width = set.binWidthHz();
    const auto from = static_cast<std::size_t>(std::ceil(range.measuredAboveHz / width));
    const auto to = static_cast<std::size_t>(highestHz / width);
    // Normal equations of phase = c / f + d f.
    double inverseInverse = 0;
    double inverseDirect = 0;
    double directDirect = 0;
    double inversePhase = 0;
    double directPhase = 0;
    for (std::size_t bin = from; bin <= to; ++bin) {
        std::complex<double> mean = 0;
        for (std::size_t index = 0; index < set.responses.size(); ++index)
            for (const Spectrum& ear : set.responses[index].ears)
                mean += weights[index] * ear[bin];
        const double frequency = static_cast<double>(bin) * width;
        const double phase = std::arg(mean);
        inverseInverse += 1 / (frequency * frequency);
        inverseDirect += 1;
        directDirect += frequency * frequency;
        inversePhase += phase / frequency;
        directPhase += phase * frequency;
    }
    const double lead = (inversePhase * directDirect - directPhase * inverseDirect) /
                        (inverseInverse * directDirect - inverseDirect * inverseDirect);
    for (AlignedResponse& response : set.responses)
        for (Spectrum& ear : response.ears)
            for (std::size_t bin = 1; bin + 1 < ear.size(); ++bin)
                ear[bin] *= std::polar(1.0, -lead / (static_cast<double>(bin) * width));
    return lead;
}

void extendLowFrequencies(AlignedSet& set, const SphericalHead& sphere, std::span<const double> weights,
                          const LowFrequencyRange& range) {
    const double width = set.binWidthHz();
    const auto upper = static_cast<std::size_t>(std::ceil(range.measuredAboveHz / width));
    Samples spherePower(upper);
    double sum = 0;
    for (std::size_t index = 0; index < set.responses.size(); ++index)
        for (std::size_t ear = 0; ear < 2; ++ear) {
            const Samples levels = sphere.levels(set.responses[index].direction, ear);
            sum += weights[index];
            for (std::size_t bin = 0; bin < upper; ++bin)
                spherePower[bin] += weights[index] * levels[bin] * levels[bin];
        }
    for (AlignedResponse& response : set.responses)
        for (std::size_t ear = 0; ear < 2; ++ear) {
            const Samples levels = sphere.levels(response.direction, ear);
            Spectrum& spectrum = response.ears[ear];
            const double phasePerBin = std::arg(spectrum[upper]) / static_cast<double>(upper);
            for (std::size_t bin = 0; bin < upper; ++bin) {
                const double share = measuredShare(static_cast<double>(bin) * width, range);
                const double model = levels[bin] / std::sqrt(spherePower[bin] / sum);
                const double level =
                    std::pow(std::max(std::abs(spectrum[bin]), 1e-6), share) * std::pow(model, 1 - share);
                const double straight = phasePerBin * static_cast<double>(bin);
                const double phase = straight + share * std::remainder(std::arg(spectrum[bin]) - straight,
                                                                       2 * std::numbers::pi);
                spectrum[bin] = std::polar(level, phase);
            }
        }
}

} // namespace orvane::kestrum::tools
