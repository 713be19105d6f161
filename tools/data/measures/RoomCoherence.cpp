// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/measures/BandFilter.h"
#include "data/measures/RoomMeasures.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace orvane::kestrum::tools {

namespace {

constexpr double thirdOctave = 1.2599210498948732; ///< 2^(1/3)
constexpr int lowestThird = -10;                   ///< 1 kHz * 2^(-10/3) = 99 Hz.

std::vector<double> thirdsBelow(double highestHz) {
    std::vector<double> centres;
    for (int third = lowestThird;; ++third) {
        const double centre = 1000 * std::exp2(third / 3.0);
        if (centre * std::sqrt(thirdOctave) >= highestHz)
            return centres;
        centres.push_back(centre);
    }
}

/// The sums of the definition, over the bins of one band.
class CrossSpectrum {
public:
    explicit CrossSpectrum(double bandCentreHz) : centreHz(bandCentreHz) {}

    void add(const Spectrum& left, const Spectrum& right, double binWidthHz, double weight) {
        const double half = std::sqrt(thirdOctave);
        const auto from = static_cast<std::size_t>(std::ceil(centreHz / half / binWidthHz));
        const auto to = static_cast<std::size_t>(std::floor(centreHz * half / binWidthHz));
        for (std::size_t bin = from; bin <= std::min(to, left.size() - 1); ++bin) {
            cross += weight * left[bin] * std::conj(right[bin]);
            leftPower += weight * std::norm(left[bin]);
            rightPower += weight * std::norm(right[bin]);
        }
    }

    CoherenceBand band(double freedom) const {
        const double norm = std::sqrt(leftPower * rightPower);
        if (norm <= 0)
            return {centreHz, 0, 0, 0};
        return {centreHz, cross.real() / norm, std::abs(cross) / norm, freedom};
    }

private:
    double centreHz;
    std::complex<double> cross;
    double leftPower = 0;
    double rightPower = 0;
};

EarResponses bandOf(const EarResponses& late, double sampleRate, double centreHz) {
    EarResponses band;
    for (std::size_t ear = 0; ear < band.size(); ++ear) {
        const BandResponse filtered = reversedBandPass(late[ear], sampleRate, centreHz, thirdOctave);
        band[ear].assign(filtered.samples.begin() + static_cast<std::ptrdiff_t>(filtered.lead),
                         filtered.samples.end());
    }
    return band;
}

/// Undoes the decay of both ears, cuts where it has gone 40 dB, and rounds off both ends.
void flatten(EarResponses& band, double sampleRate) {
    constexpr double rangeDb = 40;
    constexpr double taperShare = 0.1;
    const Samples decay = energyDecayDb(band, sampleRate);
    const double seconds = decayTime(decay, sampleRate).seconds;
    const auto end = std::ranges::find_if(decay, [](double levelDb) { return levelDb < -rangeDb; });
    const auto length = static_cast<std::size_t>(end - decay.begin());
    const double nepersPerSample = seconds > 0 ? 3 * std::numbers::ln10 / seconds / sampleRate : 0.0;
    const double taper = std::max(1.0, taperShare * static_cast<double>(length));
    for (Samples& ear : band) {
        ear.resize(length);
        for (std::size_t index = 0; index < length; ++index) {
            const double fromEdge =
                std::min(static_cast<double>(index) + 0.5, static_cast<double>(length - index) - 0.5);
            const double edge = std::sin(std::min(1.0, fromEdge / taper) * std::numbers::pi / 2);
            ear[index] *= std::exp(nepersPerSample * static_cast<double>(index)) * edge * edge;
        }
    }
}

CoherenceBand lateBand(const EarResponses& late, double sampleRate, double centreHz) {
    EarResponses band = bandOf(late, sampleRate, centreHz);
    flatten(band, sampleRate);
    CrossSpectrum sums(centreHz);
    if (band[leftEar].empty())
        return sums.band(0);
    RealTransform transform(2 * powerOfTwoFrom(band[leftEar].size()));
    const Spectrum left = transform.forward(band[leftEar]);
    const Spectrum right = transform.forward(band[rightEar]);
    sums.add(left, right, sampleRate / static_cast<double>(transform.size()), 1);
    const double widthHz = centreHz * (std::sqrt(thirdOctave) - 1 / std::sqrt(thirdOctave));
    return sums.band(widthHz * static_cast<double>(band[leftEar].size()) / sampleRate);
}

bool sounds(const EarResponses& response) {
    return std::ranges::any_of(response, [](const Samples& ear) {
        return std::ranges::any_of(ear, [](double sample) { return sample != 0; });
    });
}

} // namespace

std::vector<CoherenceBand> lateCoherence(const EarResponses& response, double sampleRate,
                                         double fromSeconds) {
    const auto from = static_cast<std::size_t>(std::lround(fromSeconds * sampleRate));
    EarResponses late;
    for (std::size_t ear = 0; ear < late.size(); ++ear)
        late[ear].assign(response[ear].begin() +
                             static_cast<std::ptrdiff_t>(std::min(from, response[ear].size())),
                         response[ear].end());
    std::vector<CoherenceBand> bands;
    if (sounds(late))
        for (const double centreHz : thirdsBelow(sampleRate / 2))
            bands.push_back(lateBand(late, sampleRate, centreHz));
    return bands;
}

std::vector<CoherenceBand> diffuseFieldCoherence(std::span<const EarResponses> responses,
                                                 std::span<const double> weights, double sampleRate) {
    constexpr std::size_t shortest = 8192; // several bins in the narrowest band
    std::vector<CoherenceBand> bands;
    if (responses.empty())
        return bands;
    std::vector<CrossSpectrum> sums;
    for (const double centreHz : thirdsBelow(sampleRate / 2))
        sums.emplace_back(centreHz);
    RealTransform transform(std::max(shortest, powerOfTwoFrom(responses[0][leftEar].size())));
    for (std::size_t index = 0; index < responses.size(); ++index) {
        const Spectrum left = transform.forward(responses[index][leftEar]);
        const Spectrum right = transform.forward(responses[index][rightEar]);
        for (CrossSpectrum& sum : sums)
            sum.add(left, right, sampleRate / static_cast<double>(transform.size()), weights[index]);
    }
    bands.reserve(sums.size());
    for (const CrossSpectrum& sum : sums)
        bands.push_back(sum.band(0));
    return bands;
}

} // namespace orvane::kestrum::tools
