// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/measures/Loudness.h"

#include "data/DataError.h"

#include <ebur128.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <random>
#include <string>

namespace orvane::kestrum::tools {

namespace {

struct MeterEnd {
    void operator()(ebur128_state* meter) const { ebur128_destroy(&meter); }
};

} // namespace

Samples pinkNoise(std::size_t length, double sampleRate, std::uint32_t seed) {
    constexpr double lowestHz = 20;
    std::mt19937 generator(seed);
    RealTransform transform(length);
    Spectrum spectrum(transform.binCount());
    double power = 0;
    for (std::size_t bin = 1; bin + 1 < spectrum.size(); ++bin) {
        const double frequencyHz = static_cast<double>(bin) * sampleRate / static_cast<double>(length);
        const double phase = 2 * std::numbers::pi * static_cast<double>(generator()) / 4294967296.0;
        if (frequencyHz >= lowestHz)
            spectrum[bin] = std::polar(1 / std::sqrt(frequencyHz), phase);
        power += 2 * std::norm(spectrum[bin]);
    }
    const double scale = static_cast<double>(length) / std::sqrt(power);
    for (auto& bin : spectrum)
        bin *= scale;
    return transform.inverse(spectrum);
}

double integratedLoudness(const EarResponses& signal, double sampleRate) {
    const std::unique_ptr<ebur128_state, MeterEnd> meter(
        ebur128_init(2, static_cast<unsigned>(sampleRate), EBUR128_MODE_I));
    if (!meter)
        throw DataError("The loudness meter does not work at " + std::to_string(std::lround(sampleRate)) +
                        " Hz: measure at 48000 Hz.");
    std::vector<double> interleaved;
    interleaved.reserve(2 * signal[leftEar].size());
    for (std::size_t frame = 0; frame < signal[leftEar].size(); ++frame) {
        interleaved.push_back(signal[leftEar][frame]);
        interleaved.push_back(signal[rightEar][frame]);
    }
    double loudness = 0;
    if (ebur128_add_frames_double(meter.get(), interleaved.data(), signal[leftEar].size()) !=
            EBUR128_SUCCESS ||
        ebur128_loudness_global(meter.get(), &loudness) != EBUR128_SUCCESS)
        throw DataError("The loudness meter ran out of memory: close other programs.");
    return loudness;
}

} // namespace orvane::kestrum::tools
