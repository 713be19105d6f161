// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

namespace orvane {

/// Transfer function (b0 + b1 z^-1 + b2 z^-2) / (1 + a1 z^-1 + a2 z^-2). The default passes everything.
struct BiquadCoefficients {
    float b0 = 1;
    float b1 = 0;
    float b2 = 0;
    float a1 = 0;
    float a2 = 0;
};

/// One second-order section in transposed direct form II, in 32-bit float.
struct BiquadSection {
    BiquadCoefficients coefficients;
    float z1 = 0;
    float z2 = 0;

    float next(float x) noexcept ORVANE_REALTIME {
        const float y = coefficients.b0 * x + z1;
        z1 = coefficients.b1 * x + z2 - coefficients.a1 * y;
        z2 = coefficients.b2 * x - coefficients.a2 * y;
        return y;
    }

    void reset() noexcept ORVANE_REALTIME {
        z1 = 0;
        z2 = 0;
    }
};

inline constexpr float biquadMinFrequency = 0.0f;   ///< As a fraction of the sampling rate.
inline constexpr float biquadMaxFrequency = 0.458f; ///< As a fraction of the sampling rate.

/// Limits a fraction of the sampling rate to what the filters can be set to; a NaN becomes the lower limit.
float clampNormalizedFrequency(float normalizedFrequency) noexcept ORVANE_REALTIME;

/// True when two fractions count as one and the same setting.
bool sameNormalizedFrequency(float present, float wanted) noexcept ORVANE_REALTIME;

/// Bilinear-transform designs, prewarped by K = tan(pi * normalizedFrequency).
///
/// Source  second-order pass filters with W = K / q and second-order shelving filters, as in
///         U. Zoelzer (ed.), "DAFX: Digital Audio Effects", chapter "Filters and delays".
BiquadCoefficients lowPassCoefficients(float normalizedFrequency, float q) noexcept ORVANE_REALTIME;
BiquadCoefficients highPassCoefficients(float normalizedFrequency, float q) noexcept ORVANE_REALTIME;
BiquadCoefficients lowShelfCoefficients(float normalizedFrequency, float gainDb) noexcept ORVANE_REALTIME;

} // namespace orvane
