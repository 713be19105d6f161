// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <complex>
#include <numbers>

namespace test::reference {

/// Second-order sections as their analogue prototypes say, without any digital coefficient: the bilinear
/// transform only maps the frequency axis, s = i tan(pi f) / tan(pi cutoff), f as fractions of the rate.
inline std::complex<double> prototypeFrequency(double f, double cutoff) {
    return {0.0, std::tan(std::numbers::pi * f) / std::tan(std::numbers::pi * cutoff)};
}

inline std::complex<double> lowPassResponse(double f, double cutoff, double q) {
    const auto s = prototypeFrequency(f, cutoff);
    return 1.0 / (s * s + s / q + 1.0);
}

inline std::complex<double> highPassResponse(double f, double cutoff, double q) {
    const auto s = prototypeFrequency(f, cutoff);
    return s * s / (s * s + s / q + 1.0);
}

/// A boost has the gain in its zeros, a cut in its poles.
inline std::complex<double> lowShelfResponse(double f, double cutoff, double gainDb) {
    const auto s = prototypeFrequency(f, cutoff);
    const double v = std::pow(10.0, std::abs(gainDb) / 20.0);
    const auto raised = s * s + std::sqrt(2.0 * v) * s + v;
    const auto flat = s * s + std::sqrt(2.0) * s + 1.0;
    return gainDb >= 0.0 ? raised / flat : flat / raised;
}

} // namespace test::reference
