// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "base/SampleBuffer.h"
#include "reference/Biquad.h"
#include "reference/Dft.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// What a response is drawn of, in double precision: each step as its definition says.
namespace test::reference {

using Ears = std::array<std::vector<double>, 2>;

/// The stored response of a direction; azimuth in the store's frame.
inline Ears headResponse(const orvane::IHrir& head, int azimuth, int elevation) {
    orvane::SampleBuffer stored(2, head.length());
    head.getResponse(stored, azimuth, elevation, false);
    Ears ears;
    for (std::size_t ear = 0; ear < 2; ++ear)
        ears[ear].assign(stored.channel(ear).begin(), stored.channel(ear).end());
    return ears;
}

/// Every bin of both ears divided by their common magnitude to the power of `amount`, raised by 25 dB at most,
/// without the bin at Nyquist, at 0.875 of the level. Twice as long as what goes in.
inline Ears clarified(const Ears& ears, double amount) {
    const std::size_t length = ears[0].size();
    const double limit = std::pow(10.0, 25.0 / 20.0);
    std::array<std::vector<std::complex<double>>, 2> bins;
    for (std::size_t ear = 0; ear < 2; ++ear) {
        std::vector<float> padded(ears[ear].begin(), ears[ear].end());
        padded.resize(2 * length);
        bins[ear] = dft(padded);
    }
    for (std::size_t k = 0; k < length; ++k) {
        const double magnitude = std::sqrt((std::norm(bins[0][k]) + std::norm(bins[1][k])) / 2.0);
        const double weight = std::min(std::pow(magnitude, -amount), limit);
        bins[0][k] *= weight;
        bins[1][k] *= weight;
    }
    Ears result;
    for (std::size_t ear = 0; ear < 2; ++ear) {
        bins[ear][length] = 0;
        result[ear] = inverseDft(bins[ear], 2 * length);
        for (double& sample : result[ear])
            sample *= 0.875 / static_cast<double>(2 * length);
    }
    return result;
}

inline void scale(Ears& ears, double gain) {
    for (std::vector<double>& ear : ears)
        for (double& sample : ear)
            sample *= gain;
}

inline void filter(Ears& ears, const Biquad& coefficients) {
    for (std::vector<double>& ear : ears)
        ear = filtered(ear, coefficients);
}

/// The last 15 samples fall in equal steps to 0.
inline void fadeOut(Ears& ears) {
    for (std::vector<double>& ear : ears)
        for (std::size_t i = 0; i < 15; ++i)
            ear[ear.size() - 1 - i] *= static_cast<double>(i) / 15.0;
}

/// The last 15 samples are divided by 4, 8, ... 60.
inline void taper(Ears& ears) {
    for (std::vector<double>& ear : ears)
        for (std::size_t i = 1; i <= 15; ++i)
            ear[ear.size() - 16 + i] /= 4.0 * static_cast<double>(i);
}

/// Adds a response from sample `delay` on; what goes beyond `sum` is lost.
inline void addDelayed(Ears& sum, const Ears& later, std::size_t delay) {
    for (std::size_t ear = 0; ear < 2; ++ear)
        for (std::size_t i = 0; i < later[ear].size() && delay + i < sum[ear].size(); ++i)
            sum[ear][delay + i] += later[ear][i];
}

} // namespace test::reference
