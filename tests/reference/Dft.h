// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <span>
#include <vector>

namespace test::reference {

/// exp(sign * 2 pi i m / length) for every m, so that the sums below look their factors up exactly.
inline std::vector<std::complex<double>> unitRoots(std::size_t length, double sign) {
    std::vector<std::complex<double>> roots(length);
    for (std::size_t m = 0; m < length; ++m)
        roots[m] = std::polar(1.0, sign * 2.0 * std::numbers::pi * static_cast<double>(m) /
                                       static_cast<double>(length));
    return roots;
}

/// The transform as textbooks define it, X[k] = sum over n of x[n] exp(-2 pi i k n / N), bins 0 to N / 2.
inline std::vector<std::complex<double>> dft(std::span<const float> time) {
    const std::size_t length = time.size();
    const auto roots = unitRoots(length, -1.0);
    std::vector<std::complex<double>> bins(length / 2 + 1);
    for (std::size_t k = 0; k < bins.size(); ++k)
        for (std::size_t n = 0; n < length; ++n)
            bins[k] += static_cast<double>(time[n]) * roots[k * n % length];
    return bins;
}

/// The unscaled inverse for a real result; imaginary parts of bin 0 and of the middle bin do not count.
inline std::vector<double> inverseDft(std::span<const std::complex<double>> bins, std::size_t length) {
    const auto roots = unitRoots(length, 1.0);
    std::vector<double> time(length);
    for (std::size_t n = 0; n < length; ++n) {
        time[n] = bins[0].real();
        for (std::size_t k = 1; k < bins.size(); ++k) {
            const bool middle = 2 * k == length;
            time[n] += (middle ? 1.0 : 2.0) *
                       ((middle ? std::complex(bins[k].real()) : bins[k]) * roots[k * n % length]).real();
        }
    }
    return time;
}

/// The response of a filter with this impulse response at a fraction of the sampling rate.
inline std::complex<double> responseAt(std::span<const float> impulseResponse, double normalizedFrequency) {
    std::complex<double> sum = 0;
    for (std::size_t n = 0; n < impulseResponse.size(); ++n)
        sum += static_cast<double>(impulseResponse[n]) *
               std::polar(1.0, -2.0 * std::numbers::pi * normalizedFrequency * static_cast<double>(n));
    return sum;
}

} // namespace test::reference
