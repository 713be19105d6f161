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

inline Biquad lowPass(double hertz, double q, double sampleRate) {
    return bilinear({1, 0, 0}, {1, 1 / q, 1}, cutoffAt(hertz, sampleRate));
}

inline Biquad highPass(double hertz, double q, double sampleRate) {
    return bilinear({0, 0, 1}, {1, 1 / q, 1}, cutoffAt(hertz, sampleRate));
}

/// A low shelf that cuts: the depth is in its poles.
inline Biquad lowShelfCut(double hertz, double decibels, double sampleRate) {
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
