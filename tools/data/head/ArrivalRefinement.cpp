// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/ArrivalRefinement.h"

#include "data/head/Arrivals.h"
#include "data/head/DiffuseField.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <vector>

namespace orvane::kestrum::tools {

namespace {

constexpr std::size_t fineness = 4;

/// Pairs of sites that share a border of their Voronoi cells.
std::vector<std::pair<std::size_t, std::size_t>> neighbourPairs(const std::vector<Direction>& sites) {
    std::vector<std::pair<std::size_t, std::size_t>> pairs;
    for (std::size_t site = 0; site < sites.size(); ++site)
        for (const std::size_t neighbour : cellNeighbours(sites, site))
            if (site < neighbour)
                pairs.emplace_back(site, neighbour);
    return pairs;
}

Samples whitening(const AlignedSet& set) {
    const std::vector<double> equal(set.responses.size(), 1.0);
    const Samples mean = smoothed(diffuseField(set, equal), 1.0 / 3);
    Samples result(mean.size());
    for (std::size_t bin = 0; bin < mean.size(); ++bin) {
        const double frequencyHz = static_cast<double>(bin) * set.binWidthHz();
        if (frequencyHz >= 300 && frequencyHz <= 8000 && mean[bin] > 0)
            result[bin] = 1 / (mean[bin] * mean[bin]);
    }
    return result;
}

struct Lag {
    double samples = 0;  ///< How much later the second response comes.
    double likeness = 0; ///< 1 for equal shapes.
};

/// The best lag within `reach` samples, of two responses whose arrivals stand at 0.
Lag lagBetween(const Spectrum& first, const Spectrum& second, const Samples& weights, double reach,
               RealTransform& fine) {
    Spectrum product(fine.binCount());
    double firstPower = 0;
    double secondPower = 0;
    for (std::size_t bin = 0; bin < first.size(); ++bin) {
        product[bin] = weights[bin] * second[bin] * std::conj(first[bin]);
        firstPower += weights[bin] * std::norm(first[bin]);
        secondPower += weights[bin] * std::norm(second[bin]);
    }
    const Samples correlation = fine.inverse(product);
    const auto half = static_cast<std::size_t>(std::ceil(reach * static_cast<double>(fineness)));
    Samples window(2 * half + 1);
    for (std::size_t index = 0; index < window.size(); ++index)
        window[index] = correlation[(index + correlation.size() - half) % correlation.size()];
    const auto peak = static_cast<std::size_t>(std::ranges::max_element(window) - window.begin());
    if (peak == 0 || peak + 1 == window.size() || !(window[peak] > 0) || !(firstPower * secondPower > 0))
        return {};
    // A bin stands for its mirror too, and the inverse divides by the size.
    const double scale = static_cast<double>(fine.size()) / (2 * std::sqrt(firstPower * secondPower));
    return {(peakPosition(window) - static_cast<double>(half)) / static_cast<double>(fineness),
            std::min(1.0, window[peak] * scale)};
}

} // namespace

std::vector<double> solveDifferences(std::span<const DifferenceEquation> equations,
                                     std::vector<double> start) {
    const std::size_t count = start.size();
    const auto multiply = [&](const std::vector<double>& values) {
        std::vector<double> result(count);
        for (const DifferenceEquation& equation : equations) {
            const double flow = equation.weight * (values[equation.second] - values[equation.first]);
            result[equation.second] += flow;
            result[equation.first] -= flow;
        }
        return result;
    };
    std::vector<double> residual(count);
    for (const DifferenceEquation& equation : equations) {
        const double flow = equation.weight * equation.difference;
        residual[equation.second] += flow;
        residual[equation.first] -= flow;
    }
    const std::vector<double> present = multiply(start);
    for (std::size_t index = 0; index < count; ++index)
        residual[index] -= present[index];
    std::vector<double> step = residual;
    double power = std::inner_product(residual.begin(), residual.end(), residual.begin(), 0.0);
    const double enough = power * 1e-20;
    for (std::size_t round = 0; round < 4 * count && power > enough && power > 0; ++round) {
        const std::vector<double> image = multiply(step);
        const double length = power / std::inner_product(step.begin(), step.end(), image.begin(), 0.0);
        for (std::size_t index = 0; index < count; ++index) {
            start[index] += length * step[index];
            residual[index] -= length * image[index];
        }
        const double next = std::inner_product(residual.begin(), residual.end(), residual.begin(), 0.0);
        for (std::size_t index = 0; index < count; ++index)
            step[index] = residual[index] + next / power * step[index];
        power = next;
    }
    return start;
}

void refineArrivals(AlignedSet& set) {
    const std::vector<Direction> sites = set.directions();
    const auto pairs = neighbourPairs(sites);
    const Samples weights = whitening(set);
    RealTransform fine(set.transformSize * fineness);
    for (std::size_t ear = 0; ear < 2; ++ear) {
        // Work on undone alignment: the lags of the responses as they really arrive, searched round what
        // geometry allows.
        std::vector<double> arrivals(set.responses.size());
        for (std::size_t index = 0; index < arrivals.size(); ++index)
            arrivals[index] = set.responses[index].arrivalSeconds[ear] * set.sampleRate;
        const double mean =
            std::accumulate(arrivals.begin(), arrivals.end(), 0.0) / static_cast<double>(arrivals.size());
        std::vector<Spectrum> arrived(arrivals.size());
        for (std::size_t index = 0; index < arrivals.size(); ++index) {
            arrived[index] = set.responses[index].ears[ear];
            delaySpectrum(arrived[index], arrivals[index] - mean);
        }
        std::vector<DifferenceEquation> equations;
        equations.reserve(pairs.size());
        for (const auto& [first, second] : pairs) {
            // No path round a head of 9 cm changes faster with angle than its radius.
            const double reach =
                2 + angleBetween(sites[first], sites[second]) * 0.12 / 343.0 * set.sampleRate;
            const Lag lag = lagBetween(arrived[first], arrived[second], weights, reach, fine);
            if (lag.likeness > 0)
                equations.push_back({first, second, lag.samples, std::pow(lag.likeness, 4)});
        }
        const std::vector<double> refined = solveDifferences(equations, arrivals);
        for (std::size_t index = 0; index < refined.size(); ++index) {
            delaySpectrum(set.responses[index].ears[ear], arrivals[index] - refined[index]);
            set.responses[index].arrivalSeconds[ear] = refined[index] / set.sampleRate;
        }
    }
}

} // namespace orvane::kestrum::tools
