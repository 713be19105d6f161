// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/measures/Figures.h"

#include "data/head/Arrivals.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::tools {

namespace {

constexpr std::size_t analysisSize = 4096; ///< Some 10 Hz between bins: enough for the band at 250 Hz.

Samples binPowers(const Samples& response, RealTransform& transform) {
    const Spectrum spectrum = transform.forward(response);
    Samples powers(spectrum.size());
    std::ranges::transform(spectrum, powers.begin(), [](const auto& bin) { return std::norm(bin); });
    return powers;
}

double meanPower(const Samples& powers, double sampleRate, double fromHz, double toHz) {
    const double width = sampleRate / 2 / static_cast<double>(powers.size() - 1);
    const auto from = static_cast<std::size_t>(std::ceil(fromHz / width));
    const auto to = std::min(powers.size() - 1, static_cast<std::size_t>(std::floor(toHz / width)));
    double sum = 0;
    for (std::size_t bin = from; bin <= to; ++bin)
        sum += powers[bin];
    return to >= from ? sum / static_cast<double>(to + 1 - from) : 0.0;
}

double decibels(double power) { return 10 * std::log10(std::max(power, 1e-30)); }

std::size_t sizeFor(const Samples& response) {
    return std::max(analysisSize, powerOfTwoFrom(response.size()));
}

} // namespace

double interauralDelaySeconds(const Samples& left, const Samples& right, double sampleRate) {
    constexpr double fromHz = 100;
    constexpr double toHz = 1500;
    constexpr double longestSeconds = 1.2e-3;
    constexpr std::size_t fineness = 4; // the band ends far below: the parabola does the rest
    RealTransform transform(powerOfTwoFrom(2 * std::max(left.size(), right.size())));
    RealTransform fine(transform.size() * fineness);
    const Spectrum first = transform.forward(left);
    const Spectrum second = transform.forward(right);
    Spectrum product(fine.binCount());
    for (std::size_t bin = 0; bin < first.size(); ++bin) {
        const double frequencyHz =
            static_cast<double>(bin) * sampleRate / static_cast<double>(transform.size());
        if (frequencyHz >= fromHz && frequencyHz <= toHz)
            product[bin] = first[bin] * std::conj(second[bin]);
    }
    const Samples correlation = fine.inverse(product);
    const double perSecond = sampleRate * static_cast<double>(fineness);
    const auto half = static_cast<std::size_t>(longestSeconds * perSecond);
    Samples window(2 * half + 1);
    for (std::size_t index = 0; index < window.size(); ++index)
        window[index] = correlation[(index + correlation.size() - half) % correlation.size()];
    return (peakPosition(window) - static_cast<double>(half)) / perSecond;
}

double bandLevelDb(const Samples& response, double sampleRate, double fromHz, double toHz) {
    RealTransform transform(sizeFor(response));
    return decibels(meanPower(binPowers(response, transform), sampleRate, fromHz, toHz));
}

std::array<double, 5> interauralLevelsDb(const std::array<Samples, 2>& ears, double sampleRate,
                                         double highestHz) {
    RealTransform transform(std::max(sizeFor(ears[0]), sizeFor(ears[1])));
    const Samples left = binPowers(ears[leftEar], transform);
    const Samples right = binPowers(ears[rightEar], transform);
    std::array<double, 5> levels{};
    for (std::size_t band = 0; band < levels.size(); ++band) {
        const double from = octaveCentresHz[band] / std::numbers::sqrt2;
        const double to = std::min(highestHz, octaveCentresHz[band] * std::numbers::sqrt2);
        levels[band] = decibels(meanPower(right, sampleRate, from, to)) -
                       decibels(meanPower(left, sampleRate, from, to));
    }
    return levels;
}

std::vector<BandLevel> diffuseBands(std::span<const std::array<Samples, 2>> responses,
                                    std::span<const double> weights, double sampleRate, double highestHz) {
    if (responses.empty())
        return {};
    RealTransform transform(sizeFor(responses[0][0]));
    Samples mean(transform.binCount());
    double sum = 0;
    for (std::size_t index = 0; index < responses.size(); ++index) {
        sum += 2 * weights[index];
        for (const Samples& ear : responses[index]) {
            const Samples powers = binPowers(ear, transform);
            for (std::size_t bin = 0; bin < mean.size(); ++bin)
                mean[bin] += weights[index] * powers[bin];
        }
    }
    std::vector<BandLevel> bands;
    const double half = std::exp2(1.0 / 6);
    for (int third = -6; third < 30; ++third) { // bands of a base-two series round 1 kHz
        const double centre = 1000 * std::exp2(third / 3.0);
        if (centre / half >= highestHz)
            break;
        bands.push_back(
            {centre,
             decibels(meanPower(mean, sampleRate, centre / half, std::min(highestHz, centre * half)) / sum)});
    }
    return bands;
}

double meanLevelDb(std::span<const BandLevel> bands) {
    double sum = 0;
    for (const BandLevel& band : bands)
        sum += band.levelDb;
    return bands.empty() ? 0.0 : sum / static_cast<double>(bands.size());
}

void InterauralComparison::add(const ResponsePair& pair) {
    const double reference = interauralDelaySeconds(pair.reference[0], pair.reference[1], pair.referenceRate);
    const double made = interauralDelaySeconds(pair.made[0], pair.made[1], pair.madeRate);
    sum.worstDelaySeconds = std::max(sum.worstDelaySeconds, std::abs(made - reference));
    const auto referenceLevels = interauralLevelsDb(pair.reference, pair.referenceRate, highestHz);
    const auto madeLevels = interauralLevelsDb(pair.made, pair.madeRate, highestHz);
    for (std::size_t band = 0; band < madeLevels.size(); ++band) {
        const double error = std::abs(madeLevels[band] - referenceLevels[band]);
        sum.worstLevelDb = std::max(sum.worstLevelDb, error);
        sum.meanLevelByOctaveDb[band] += error;
    }
    ++sum.directionCount;
}

InterauralErrors InterauralComparison::errors() const {
    InterauralErrors result = sum;
    for (double& level : result.meanLevelByOctaveDb) {
        level /= std::max(1.0, static_cast<double>(sum.directionCount));
        result.meanLevelDb += level / static_cast<double>(octaveCentresHz.size());
    }
    return result;
}

KeptMedians keptMedians(std::span<const KeptEnergy> kept, std::span<const GridPlace> places) {
    constexpr double neitherDegrees = 5;
    std::vector<double> near;
    std::vector<double> far;
    for (std::size_t index = 0; index < kept.size(); ++index) {
        const double lateral = lateralDegrees(places[index].direction());
        if (std::abs(lateral) < neitherDegrees)
            continue;
        near.push_back(kept[index].ears[lateral > 0 ? rightEar : leftEar]);
        far.push_back(kept[index].ears[lateral > 0 ? leftEar : rightEar]);
    }
    const auto median = [](std::vector<double>& values) {
        if (values.empty())
            return 0.0;
        std::ranges::sort(values);
        return (values[(values.size() - 1) / 2] + values[values.size() / 2]) / 2;
    };
    return {median(near), median(far)};
}

} // namespace orvane::kestrum::tools
