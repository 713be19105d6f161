// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/RmsSpectrum.h"

#include "binaural/PartitionedSpectrum.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

void power(const fft::Complex* values, float* out, std::uint64_t count) noexcept {
    for (std::uint64_t k = 0; k < count; ++k)
        out[k] = values[k].re * values[k].re + values[k].im * values[k].im;
}

} // namespace

RmsSpectrum::RmsSpectrum(std::uint64_t length) : leftPower(length), rightPower(length) {}

void RmsSpectrum::compute(const PartitionedSpectrum& spectra, float* out) {
    const std::uint64_t count = std::min<std::uint64_t>(spectra.slot(0).count - 1, leftPower.size());
    power(spectra.slot(0).data, leftPower.data(), count);
    power(spectra.slot(1).data, rightPower.data(), count);
    for (std::uint64_t k = 0; k < count; ++k)
        out[k] = std::sqrt((leftPower[k] + rightPower[k]) * 0.5f);
}

} // namespace orvane
