// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/measures/BandFilter.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace orvane::kestrum::tools {

namespace {

/// The slowest poles of the prototype decay with half the bandwidth: so long until they are 160 dB down.
std::size_t ringingSamples(double sampleRate, double widthHz) {
    constexpr double decayNepers = 18.4;
    return static_cast<std::size_t>(std::ceil(decayNepers / (0.5 * std::numbers::pi * widthHz) * sampleRate));
}

std::complex<double> bandPassAt(double frequencyHz, double centreHz, double widthHz) {
    if (frequencyHz <= 0)
        return 0;
    const std::complex<double> s(0,
                                 (frequencyHz * frequencyHz - centreHz * centreHz) / (frequencyHz * widthHz));
    return 1.0 / (((s + 2.0) * s + 2.0) * s + 1.0);
}

} // namespace

BandResponse reversedBandPass(std::span<const double> response, double sampleRate, double centreHz,
                              double edgeRatio) {
    const double widthHz = centreHz * (std::sqrt(edgeRatio) - 1 / std::sqrt(edgeRatio));
    BandResponse band;
    band.lead = ringingSamples(sampleRate, widthHz);
    Samples padded(band.lead + response.size());
    std::ranges::copy(response, padded.begin() + static_cast<std::ptrdiff_t>(band.lead));
    RealTransform transform(powerOfTwoFrom(padded.size() + band.lead));
    Spectrum spectrum = transform.forward(padded);
    for (std::size_t bin = 0; bin < spectrum.size(); ++bin) {
        const double frequencyHz =
            static_cast<double>(bin) * sampleRate / static_cast<double>(transform.size());
        spectrum[bin] *= std::conj(bandPassAt(frequencyHz, centreHz, widthHz));
    }
    spectrum.back() = spectrum.back().real();
    band.samples = transform.inverse(spectrum);
    band.samples.resize(padded.size());
    return band;
}

} // namespace orvane::kestrum::tools
