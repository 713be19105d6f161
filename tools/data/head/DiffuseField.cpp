// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/DiffuseField.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace orvane::kestrum::tools {

Samples diffuseField(const AlignedSet& set, std::span<const double> weights) {
    Samples power(set.transformSize / 2 + 1);
    double sum = 0;
    for (std::size_t index = 0; index < set.responses.size(); ++index) {
        sum += 2 * weights[index];
        for (const Spectrum& ear : set.responses[index].ears)
            for (std::size_t bin = 0; bin < power.size(); ++bin)
                power[bin] += weights[index] * std::norm(ear[bin]);
    }
    std::ranges::transform(power, power.begin(), [sum](double value) { return std::sqrt(value / sum); });
    return power;
}

Spectrum inverseOf(const Samples& diffuseMagnitudes, double binWidthHz, const EqualisationLimits& limits) {
    const std::size_t binCount = diffuseMagnitudes.size();
    const double nyquistHz = binWidthHz * static_cast<double>(binCount - 1);
    const auto lowest =
        std::max<std::size_t>(1, static_cast<std::size_t>(std::lround(limits.lowestHz / binWidthHz)));
    const auto highest =
        static_cast<std::size_t>(std::lround(std::min(limits.highestHz, 0.9 * nyquistHz) / binWidthHz));
    const auto bound =
        std::max(lowest, static_cast<std::size_t>(std::lround(limits.boundAboveHz / binWidthHz)));
    Samples inverse = smoothed(diffuseMagnitudes, limits.smoothingOctaves);
    std::ranges::transform(inverse, inverse.begin(), [](double value) { return 1 / std::max(value, 1e-12); });
    double meanLog = 0;
    for (std::size_t bin = bound; bin <= highest; ++bin)
        meanLog += std::log(inverse[bin]) / static_cast<double>(highest + 1 - bound);
    const double largest = std::exp(meanLog) * std::pow(10.0, limits.largestBoostDb / 20);
    for (std::size_t bin = bound; bin <= highest; ++bin)
        inverse[bin] = std::min(inverse[bin], largest);
    std::fill(inverse.begin(), inverse.begin() + static_cast<std::ptrdiff_t>(lowest), inverse[lowest]);
    std::fill(inverse.begin() + static_cast<std::ptrdiff_t>(highest), inverse.end(), inverse[highest]);
    RealTransform transform((binCount - 1) * 2);
    return transform.minimumPhase(inverse);
}

void applyFilter(AlignedSet& set, const Spectrum& filter) {
    for (AlignedResponse& response : set.responses)
        for (Spectrum& ear : response.ears)
            std::ranges::transform(ear, filter, ear.begin(), std::multiplies<>());
}

} // namespace orvane::kestrum::tools
