// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

/// Second-order filters as the difference equation, in double precision.
namespace test::reference {

/// y[n] = b0 x[n] + b1 x[n-1] + b2 x[n-2] - a1 y[n-1] - a2 y[n-2]
struct Biquad {
    double b0;
    double b1;
    double b2;
    double a1;
    double a2;
};

/// The bilinear transform of an analogue section, s = (1 - z^-1) / (k (1 + z^-1)), k = tan(pi f), with its
/// polynomials in s given from the constant term up.
inline Biquad bilinear(const std::array<double, 3>& numerator, const std::array<double, 3>& denominator,
                       double f) {
    const double k = std::tan(std::numbers::pi * f);
    const auto inZ = [k](const std::array<double, 3>& c) {
        return std::array<double, 3>{c[0] * k * k + c[1] * k + c[2], 2.0 * (c[0] * k * k - c[2]),
                                     c[0] * k * k - c[1] * k + c[2]};
    };
    const auto b = inZ(numerator);
    const auto a = inZ(denominator);
    return {b[0] / a[0], b[1] / a[0], b[2] / a[0], a[1] / a[0], a[2] / a[0]};
}

/// Hertz as a fraction of the rate; no filter goes beyond 0.458.
inline double cutoffAt(double hertz, double sampleRate) { return std::min(hertz / sampleRate, 0.458); }

/// How a filter's coefficients are worked out: as exactly as doubles can, or in 32-bit floats as the renderer
/// keeps them. Near 50 Hz a coefficient's last bit moves the response by a thousandth; a test of what happens
/// around the filters takes the rounded ones.
enum class Coefficients { exact, in32Bits };

/// The second-order design by its published formulas in 32-bit floats: pass filters with W = K / q, shelves
/// with V = 10^(gain / 20), K = tan(pi f).
struct DesignIn32Bits {
    float K;
    explicit DesignIn32Bits(double hertz, double sampleRate)
        : K(std::tan(std::min(static_cast<float>(hertz) / static_cast<float>(sampleRate), 0.458f) *
                     3.1415927f)) {}

    Biquad lowPass(double q) const {
        const float W = K / static_cast<float>(q);
        const float norm = 1.0f / (W + 1.0f + K * K);
        return {K * K * norm, 2.0f * K * K * norm, K * K * norm, 2.0f * (K * K - 1.0f) * norm,
                (1.0f - W + K * K) * norm};
    }
    Biquad highPass(double q) const {
        const float W = K / static_cast<float>(q);
        const float norm = 1.0f / (W + 1.0f + K * K);
        return {norm, -2.0f * norm, norm, 2.0f * (K * K - 1.0f) * norm, (1.0f - W + K * K) * norm};
    }
    Biquad lowShelfCut(double decibels) const {
        const float V = std::pow(10.0f, static_cast<float>(decibels) / 20.0f);
        const float root = std::sqrt(2.0f);
        const float rootV = std::sqrt(2.0f * V);
        const float norm = 1.0f / (1.0f + rootV * K + V * K * K);
        return {(1.0f + root * K + K * K) * norm, 2.0f * (K * K - 1.0f) * norm,
                (1.0f - root * K + K * K) * norm, 2.0f * (V * K * K - 1.0f) * norm,
                (1.0f - rootV * K + V * K * K) * norm};
    }
};

inline Biquad lowPass(double hertz, double q, double sampleRate, Coefficients kind = Coefficients::exact) {
    if (kind == Coefficients::in32Bits)
        return DesignIn32Bits(hertz, sampleRate).lowPass(q);
    return bilinear({1, 0, 0}, {1, 1 / q, 1}, cutoffAt(hertz, sampleRate));
}

inline Biquad highPass(double hertz, double q, double sampleRate, Coefficients kind = Coefficients::exact) {
    if (kind == Coefficients::in32Bits)
        return DesignIn32Bits(hertz, sampleRate).highPass(q);
    return bilinear({0, 0, 1}, {1, 1 / q, 1}, cutoffAt(hertz, sampleRate));
}

/// A low shelf that cuts: the depth is in its poles.
inline Biquad lowShelfCut(double hertz, double decibels, double sampleRate,
                          Coefficients kind = Coefficients::exact) {
    if (kind == Coefficients::in32Bits)
        return DesignIn32Bits(hertz, sampleRate).lowShelfCut(decibels);
    const double v = std::pow(10.0, decibels / 20.0);
    return bilinear({1, std::sqrt(2.0), 1}, {v, std::sqrt(2.0 * v), 1}, cutoffAt(hertz, sampleRate));
}

/// A signal through a filter that was silent before.
inline std::vector<double> filtered(const std::vector<double>& x, const Biquad& c) {
    std::vector<double> y(x.size());
    for (std::size_t n = 0; n < x.size(); ++n) {
        y[n] = c.b0 * x[n];
        if (n >= 1)
            y[n] += c.b1 * x[n - 1] - c.a1 * y[n - 1];
        if (n >= 2)
            y[n] += c.b2 * x[n - 2] - c.a2 * y[n - 2];
    }
    return y;
}

} // namespace test::reference
