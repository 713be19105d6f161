// SPDX-License-Identifier: GPL-3.0-or-later
#include "filters/BiquadSection.h"

#include <cmath>

namespace orvane {

namespace {

float prewarped(float normalizedFrequency) noexcept { return std::tan(normalizedFrequency * 3.1415927f); }

} // namespace

float clampNormalizedFrequency(float normalizedFrequency) noexcept {
    if (normalizedFrequency > biquadMaxFrequency)
        return biquadMaxFrequency;
    return normalizedFrequency > biquadMinFrequency ? normalizedFrequency : biquadMinFrequency;
}

bool sameNormalizedFrequency(float present, float wanted) noexcept {
    return std::abs(present - wanted) <= std::abs(present) * 1e-18f;
}

BiquadCoefficients lowPassCoefficients(float normalizedFrequency, float q) noexcept {
    const float K = prewarped(normalizedFrequency);
    const float W = K / q;
    const float norm = 1.0f / (W + 1.0f + K * K);
    return {K * K * norm, 2.0f * K * K * norm, K * K * norm, 2.0f * (K * K - 1.0f) * norm,
            (1.0f - W + K * K) * norm};
}

BiquadCoefficients highPassCoefficients(float normalizedFrequency, float q) noexcept {
    const float K = prewarped(normalizedFrequency);
    const float W = K / q;
    const float norm = 1.0f / (W + 1.0f + K * K);
    return {norm, -2.0f * norm, norm, 2.0f * (K * K - 1.0f) * norm, (1.0f - W + K * K) * norm};
}

BiquadCoefficients lowShelfCoefficients(float normalizedFrequency, float gainDb) noexcept {
    const float K = prewarped(normalizedFrequency);
    const float V = std::pow(10.0f, std::abs(gainDb) / 20.0f);
    const float rootTwo = std::sqrt(2.0f);
    const float rootTwoV = std::sqrt(2.0f * V);
    if (gainDb >= 0.0f) {
        const float norm = 1.0f / (1.0f + rootTwo * K + K * K);
        return {(1.0f + rootTwoV * K + V * K * K) * norm, 2.0f * (V * K * K - 1.0f) * norm,
                (1.0f - rootTwoV * K + V * K * K) * norm, 2.0f * (K * K - 1.0f) * norm,
                (1.0f - rootTwo * K + K * K) * norm};
    }
    const float norm = 1.0f / (1.0f + rootTwoV * K + V * K * K);
    return {(1.0f + rootTwo * K + K * K) * norm, 2.0f * (K * K - 1.0f) * norm,
            (1.0f - rootTwo * K + K * K) * norm, 2.0f * (V * K * K - 1.0f) * norm,
            (1.0f - rootTwoV * K + V * K * K) * norm};
}

} // namespace orvane
