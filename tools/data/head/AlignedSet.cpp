// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/AlignedSet.h"

#include "data/head/Arrivals.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::tools {

namespace {

constexpr std::size_t leastTransformSize =
    2048; ///< Room for what the equalisation adds behind short responses.

void addScaled(Spectrum& sum, const Spectrum& spectrum, double factor) {
    for (std::size_t bin = 0; bin < sum.size(); ++bin)
        sum[bin] += factor * spectrum[bin];
}

} // namespace

std::vector<Direction> AlignedSet::directions() const {
    std::vector<Direction> result;
    result.reserve(responses.size());
    for (const AlignedResponse& response : responses)
        result.push_back(response.direction);
    return result;
}

AlignedSet alignResponses(const MeasuredSet& set) {
    AlignedSet aligned;
    aligned.sampleRate = set.sampleRate;
    aligned.distanceMetres = set.distanceMetres;
    aligned.transformSize = std::max(leastTransformSize, powerOfTwoFrom(set.tapCount * 2));
    aligned.responses.reserve(set.measurements.size());
    RealTransform transform(aligned.transformSize);
    ArrivalFinder finder(set.tapCount);
    for (const Measurement& measurement : set.measurements) {
        AlignedResponse response;
        response.direction = measurement.direction;
        for (std::size_t ear = 0; ear < 2; ++ear) {
            const double arrival = finder.find(measurement.ears[ear]);
            response.arrivalSeconds[ear] = arrival / set.sampleRate;
            response.ears[ear] = transform.forward(measurement.ears[ear]);
            delaySpectrum(response.ears[ear], -arrival);
        }
        aligned.responses.push_back(std::move(response));
    }
    return aligned;
}

std::size_t mergeRepeats(AlignedSet& set, double toleranceDegrees) {
    const double tolerance = toleranceDegrees * std::numbers::pi / 180;
    const std::size_t before = set.responses.size();
    std::vector<AlignedResponse> merged;
    std::vector<double> counts;
    for (AlignedResponse& response : set.responses) {
        const auto same = std::ranges::find_if(merged, [&](const AlignedResponse& earlier) {
            return angleBetween(earlier.direction, response.direction) < tolerance;
        });
        if (same == merged.end()) {
            merged.push_back(std::move(response));
            counts.push_back(1);
            continue;
        }
        counts[static_cast<std::size_t>(same - merged.begin())] += 1;
        for (std::size_t ear = 0; ear < 2; ++ear) {
            same->arrivalSeconds[ear] += response.arrivalSeconds[ear];
            addScaled(same->ears[ear], response.ears[ear], 1);
        }
    }
    for (std::size_t index = 0; index < merged.size(); ++index)
        for (std::size_t ear = 0; ear < 2; ++ear) {
            merged[index].arrivalSeconds[ear] /= counts[index];
            for (auto& bin : merged[index].ears[ear])
                bin /= counts[index];
        }
    set.responses = std::move(merged);
    return before - set.responses.size();
}

AlignedResponse mixResponses(const AlignedSet& set, std::span<const SiteWeight> weights,
                             const Direction& direction) {
    AlignedResponse mixed;
    mixed.direction = direction;
    for (Spectrum& ear : mixed.ears)
        ear.assign(set.transformSize / 2 + 1, 0);
    std::array<Samples, 2> power;
    for (Samples& ear : power)
        ear.resize(set.transformSize / 2 + 1);
    for (const SiteWeight& weight : weights) {
        const AlignedResponse& site = set.responses[weight.site];
        for (std::size_t ear = 0; ear < 2; ++ear) {
            mixed.arrivalSeconds[ear] += weight.value * site.arrivalSeconds[ear];
            addScaled(mixed.ears[ear], site.ears[ear], weight.value);
            for (std::size_t bin = 0; bin < power[ear].size(); ++bin)
                power[ear][bin] += weight.value * std::norm(site.ears[ear][bin]);
        }
        mixed.modelled = mixed.modelled || site.modelled;
    }
    if (weights.size() > 1)
        for (std::size_t ear = 0; ear < 2; ++ear) {
            std::ranges::transform(power[ear], power[ear].begin(),
                                   [](double value) { return std::sqrt(value); });
            restorePower(mixed.ears[ear], power[ear]);
        }
    return mixed;
}

Samples assembleResponse(const AlignedResponse& response, std::size_t ear, double sampleRate,
                         double originSeconds, RealTransform& transform) {
    Spectrum spectrum = response.ears[ear];
    delaySpectrum(spectrum, (response.arrivalSeconds[ear] - originSeconds) * sampleRate);
    return transform.inverse(spectrum);
}

} // namespace orvane::kestrum::tools
