// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/headphones/FollowMeter.h"

#include <algorithm>
#include <cmath>

namespace orvane::kestrum::tools {

namespace {

constexpr std::size_t analysisSize = 8192; ///< Some 6 Hz between bins: the band at 31 Hz holds one at least.
constexpr int lowestThird = -15;           ///< From 1 kHz, in steps of a base-two series: 31 Hz.
constexpr double highestHz = 18000;
constexpr double highestShareOfRate = 0.46;

double decibels(double ratio) { return 10 * std::log10(std::max(ratio, 1e-12)); }

Samples powersOf(const Spectrum& spectrum) {
    Samples powers(spectrum.size());
    std::ranges::transform(spectrum, powers.begin(), [](const auto& bin) { return std::norm(bin); });
    return powers;
}

} // namespace

double followsFromHz(const std::vector<FollowedBand>& bands) {
    constexpr double nearEnoughDb = 1;
    double from = 0;
    for (auto band = bands.rbegin(); band != bands.rend() && std::abs(band->missedDb()) <= nearEnoughDb;
         ++band)
        from = band->centreHz;
    return from;
}

FollowMeter::FollowMeter(const HeadphoneCurve& curve, double sampleRate)
    : transform(analysisSize), powerGains(transform.binCount()) {
    const double binWidthHz = sampleRate / double{analysisSize};
    for (std::size_t bin = 0; bin < powerGains.size(); ++bin)
        powerGains[bin] = std::pow(10.0, curve.gainDb(static_cast<double>(bin) * binWidthHz) / 10);
    const double half = std::exp2(1.0 / 6);
    for (int third = lowestThird;; ++third) {
        const double centre = 1000 * std::exp2(third / 3.0);
        if (centre * half > highestShareOfRate * sampleRate || centre > highestHz)
            break;
        Band band;
        band.centreHz = centre;
        band.from = static_cast<std::size_t>(std::ceil(centre / half / binWidthHz));
        band.to = static_cast<std::size_t>(std::floor(centre * half / binWidthHz));
        sums.push_back(band);
    }
}

void FollowMeter::add(const Samples& before, const Samples& after, double weight) {
    const Samples powersBefore = powersOf(transform.forward(before));
    const Samples powersAfter = powersOf(transform.forward(after));
    for (Band& band : sums) {
        double then = 0;
        double wanted = 0;
        double now = 0;
        for (std::size_t bin = band.from; bin <= band.to; ++bin) {
            then += powersBefore[bin];
            wanted += powersBefore[bin] * powerGains[bin];
            now += powersAfter[bin];
        }
        band.before += weight * then;
        band.wanted += weight * wanted;
        band.reached += weight * now;
        band.missedDb.push_back(std::abs(decibels(now / wanted)));
    }
}

std::vector<FollowedBand> FollowMeter::bands() const {
    std::vector<FollowedBand> result;
    for (const Band& band : sums) {
        std::vector<double> missed = band.missedDb;
        const auto ninth = missed.begin() + static_cast<std::ptrdiff_t>(missed.size() * 9 / 10);
        std::ranges::nth_element(missed, ninth);
        result.push_back({band.centreHz, decibels(band.wanted / band.before),
                          decibels(band.reached / band.before), *ninth});
    }
    return result;
}

} // namespace orvane::kestrum::tools
