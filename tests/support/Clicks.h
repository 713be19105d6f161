// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>
#include <vector>

namespace test {

/// Linear-phase high pass: from 4 kHz on everything passes, below 3 kHz nothing is left (-100 dB).
///
/// Shape   odd number of taps; the middle one is the moment.
/// Source  sinc under a Kaiser window, J. F. Kaiser 1974, "Nonrecursive Digital Filter Design Using the
///         I0-sinh Window Function".
inline std::vector<double> aboveFourKilohertz(double sampleRate) {
    constexpr double attenuationDb = 100;
    constexpr double cutoffHz = 3500;
    constexpr double transitionHz = 1000;
    constexpr double beta = 0.1102 * (attenuationDb - 8.7);
    const double width = 2 * std::numbers::pi * transitionHz / sampleRate;
    const auto half = static_cast<std::ptrdiff_t>(std::ceil((attenuationDb - 8) / (2.285 * width) / 2));
    const double cutoff = 2 * cutoffHz / sampleRate;
    std::vector<double> taps;
    for (std::ptrdiff_t index = -half; index <= half; ++index) {
        const double way = static_cast<double>(index) / static_cast<double>(half);
        const double window =
            std::cyl_bessel_i(0, beta * std::sqrt(std::max(0.0, 1 - way * way))) / std::cyl_bessel_i(0, beta);
        const double x = std::numbers::pi * static_cast<double>(index);
        const double lowPass = index == 0 ? cutoff : std::sin(x * cutoff) / x;
        taps.push_back(window * ((index == 0 ? 1.0 : 0.0) - lowPass));
    }
    return taps;
}

inline double meanPower(std::span<const float> signal) {
    double sum = 0;
    for (const float sample : signal)
        sum += static_cast<double>(sample) * static_cast<double>(sample);
    return sum / static_cast<double>(signal.size());
}

/// The part of a signal from one sample up to, but without, another.
struct Stretch {
    std::size_t from = 0;
    std::size_t to = 0;
};

/// The greatest mean of so many values in a row.
inline double loudestMean(std::span<const double> powers, std::size_t window) {
    double loudest = 0;
    double sum = 0;
    for (std::size_t index = 0; index < powers.size(); ++index) {
        sum += powers[index] - (index >= window ? powers[index - window] : 0.0);
        loudest = std::max(loudest, sum / static_cast<double>(window));
    }
    return loudest;
}

/// What a stretch of a signal holds above 4 kHz in its loudest 2 ms, as mean power.
inline double loudestHighPower(std::span<const float> signal, Stretch stretch, double sampleRate) {
    const std::vector<double> taps = aboveFourKilohertz(sampleRate);
    const std::size_t half = taps.size() / 2;
    std::vector<double> powers;
    for (std::size_t frame = stretch.from; frame < stretch.to; ++frame) {
        double sum = 0;
        for (std::size_t tap = 0; tap < taps.size(); ++tap)
            if (frame + tap >= half && frame + tap - half < signal.size())
                sum += taps[tap] * static_cast<double>(signal[frame + tap - half]);
        powers.push_back(sum * sum);
    }
    return loudestMean(powers, static_cast<std::size_t>(0.002 * sampleRate));
}

/// The loudest that a signal gets, as mean power over 10 ms: of a tone that changes slowly, its loudest
/// steady level.
inline double loudestPower(std::span<const float> signal, double sampleRate) {
    std::vector<double> powers;
    powers.reserve(signal.size());
    for (const float sample : signal)
        powers.push_back(static_cast<double>(sample) * static_cast<double>(sample));
    return loudestMean(powers, static_cast<std::size_t>(0.01 * sampleRate));
}

/// A click shows here first: a step of s between two samples of a smooth signal gives s.
inline double largestSecondDifference(std::span<const float> signal) {
    double largest = 0;
    for (std::size_t frame = 1; frame + 1 < signal.size(); ++frame)
        largest = std::max(largest, std::abs(static_cast<double>(signal[frame - 1]) -
                                             2.0 * static_cast<double>(signal[frame]) +
                                             static_cast<double>(signal[frame + 1])));
    return largest;
}

} // namespace test
