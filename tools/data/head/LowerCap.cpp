// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/LowerCap.h"

#include "data/DataError.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <utility>

namespace orvane::kestrum::tools {

namespace {

constexpr int ringAzimuths = 72;

double ringGapDegrees(const std::vector<Direction>& sites, double elevation) {
    double gap = 0;
    for (int step = 0; step < ringAzimuths; ++step)
        gap = std::max(gap, nearestSiteDegrees(sites, directionFrom(360.0 / ringAzimuths * step, elevation)));
    return gap;
}

std::vector<Direction> capDirections(double ringDegrees) {
    constexpr double spacingDegrees = 8;
    const double height = ringDegrees + 90;
    const int rings = static_cast<int>(std::ceil(height / spacingDegrees));
    std::vector<Direction> result;
    for (int ring = 1; ring < rings; ++ring) {
        const double elevation = ringDegrees - height * ring / rings;
        // A multiple of four, so that the model mirrors where the head does.
        const double around = 90 * std::cos(elevation * std::numbers::pi / 180) / spacingDegrees;
        const int count = 4 * std::max(1, static_cast<int>(std::lround(around)));
        for (int step = 0; step < count; ++step)
            result.push_back(directionFrom(360.0 / count * step, elevation));
    }
    result.push_back({0, -1, 0});
    return result;
}

/// The lowest ring, and what the head adds to the sphere in the mean of it.
class Ring {
public:
    Ring(const AlignedSet& measured, const SphericalHead& model, double elevation)
        : set(measured),
          head(model),
          sites(measured.directions()),
          elevationDegrees(elevation),
          transform(measured.transformSize) {
        for (std::size_t ear = 0; ear < 2; ++ear) {
            Samples power(transform.binCount());
            Spectrum sum(transform.binCount());
            for (int step = 0; step < ringAzimuths; ++step) {
                const AlignedResponse response = at(360.0 / ringAzimuths * step);
                const Spectrum sphere = transform.minimumPhase(head.levels(response.direction, ear));
                for (std::size_t bin = 0; bin < power.size(); ++bin) {
                    const std::complex<double> addition = response.ears[ear][bin] / sphere[bin];
                    power[bin] += std::norm(addition) / ringAzimuths;
                    sum[bin] += addition;
                }
                meanLag[ear] +=
                    (response.arrivalSeconds[ear] - head.arrivalSeconds(response.direction, ear)) /
                    ringAzimuths;
            }
            // The ring's mean power in the ring's mean phase: a plain mean would lose the treble, where
            // phases scatter.
            meanAddition[ear].resize(power.size());
            for (std::size_t bin = 0; bin < power.size(); ++bin)
                meanAddition[ear][bin] = std::polar(std::sqrt(power[bin]), std::arg(sum[bin]));
        }
    }

    AlignedResponse at(double azimuth) const {
        const Direction direction = directionFrom(azimuth, elevationDegrees);
        return mixResponses(set, naturalWeights(sites, direction), direction);
    }

    AlignedResponse below(const Direction& direction) {
        const AlignedResponse above = at(azimuthDegrees(direction));
        const double way = (elevationDegrees - tools::elevationDegrees(direction)) / (elevationDegrees + 90);
        const double share =
            0.5 - 0.5 * std::cos(std::numbers::pi * std::clamp(way, 0.0, 1.0)); // of the mean
        AlignedResponse result;
        result.direction = direction;
        result.modelled = true;
        for (std::size_t ear = 0; ear < 2; ++ear) {
            const double lag = above.arrivalSeconds[ear] - head.arrivalSeconds(above.direction, ear);
            result.arrivalSeconds[ear] =
                head.arrivalSeconds(direction, ear) + lag + share * (meanLag[ear] - lag);
            const Spectrum there = transform.minimumPhase(head.levels(direction, ear));
            const Spectrum ring = transform.minimumPhase(head.levels(above.direction, ear));
            Samples meant(transform.binCount());
            Spectrum mixed(transform.binCount());
            for (std::size_t bin = 0; bin < transform.binCount(); ++bin) {
                const std::complex<double> addition = above.ears[ear][bin] / ring[bin];
                const std::complex<double> mean = meanAddition[ear][bin];
                mixed[bin] = addition + share * (mean - addition);
                meant[bin] = std::sqrt((1 - share) * std::norm(addition) + share * std::norm(mean));
            }
            restorePower(mixed, meant);
            result.ears[ear] = std::move(mixed);
            std::ranges::transform(result.ears[ear], there, result.ears[ear].begin(), std::multiplies<>());
        }
        return result;
    }

private:
    const AlignedSet& set;
    const SphericalHead& head;
    std::vector<Direction> sites;
    double elevationDegrees;
    RealTransform transform;
    std::array<double, 2> meanLag{};
    std::array<Spectrum, 2> meanAddition;
};

} // namespace

CapReport surveyCoverage(const std::vector<Direction>& sites) {
    constexpr double closed = 12;
    constexpr double highestRing = 30;
    constexpr double tooLarge = 30;
    std::vector<double> elevations;
    elevations.reserve(sites.size());
    for (const Direction& site : sites)
        elevations.push_back(elevationDegrees(site));
    std::ranges::sort(elevations);
    const auto ring = std::ranges::find_if(
        elevations, [&](double elevation) { return ringGapDegrees(sites, elevation) <= closed; });
    if (ring == elevations.end() || *ring > highestRing)
        throw DataError("The set measures no full ring round the head: give a set that covers the sphere.");
    CapReport report;
    report.lowestCoveredDegrees = *ring;
    for (int elevation = 90; elevation >= *ring; elevation -= 5)
        report.largestGapDegrees = std::max(report.largestGapDegrees, ringGapDegrees(sites, elevation));
    if (report.largestGapDegrees > tooLarge)
        throw DataError("The set leaves a hole of more than 30 degrees: give a set that covers the sphere.");
    return report;
}

CapReport completeLowerCap(AlignedSet& set, const SphericalHead& sphere) {
    const std::vector<Direction> sites = set.directions();
    CapReport report = surveyCoverage(sites);
    constexpr double nearPole = -89.9;
    if (report.lowestCoveredDegrees < nearPole)
        return report;
    constexpr double ownGround = 6; // single measured sites below the ring keep what is theirs
    Ring ring(set, sphere, report.lowestCoveredDegrees);
    std::vector<AlignedResponse> added;
    for (const Direction& direction : capDirections(report.lowestCoveredDegrees))
        if (nearestSiteDegrees(sites, direction) > ownGround)
            added.push_back(ring.below(direction));
    report.modelledCount = added.size();
    for (AlignedResponse& response : added)
        set.responses.push_back(std::move(response));
    return report;
}

} // namespace orvane::kestrum::tools
