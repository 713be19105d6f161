// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/measures/RoomMeasures.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::tools {

namespace {

/// A sliding window with weights that sum to 1, and a gain that undoes a decay across it.
struct Window {
    Samples weights;
    Samples gains;
};

Window windowOf(double sampleRate, double seconds, double decaySeconds) {
    const auto half = static_cast<std::size_t>(std::lround(seconds * sampleRate / 2));
    const std::size_t size = 2 * half + 1;
    Window window{Samples(size), Samples(size, 1.0)};
    double sum = 0;
    for (std::size_t index = 0; index < size; ++index) {
        const double phase = static_cast<double>(index + 1) / static_cast<double>(size + 1);
        window.weights[index] = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * phase);
        sum += window.weights[index];
        const double offset = (static_cast<double>(index) - static_cast<double>(half)) / sampleRate;
        if (decaySeconds > 0)
            window.gains[index] = std::pow(10.0, 3 * offset / decaySeconds);
    }
    for (double& weight : window.weights)
        weight /= sum;
    return window;
}

/// @param centre sample in the middle of the window; what lies outside the response counts as 0.
double densityAt(std::span<const double> response, std::size_t centre, const Window& window, double silence) {
    const std::size_t half = window.weights.size() / 2;
    const auto sampleAt = [&](std::size_t index) {
        const std::size_t place = centre + index;
        return place >= half && place - half < response.size()
                   ? std::abs(response[place - half]) * window.gains[index]
                   : 0.0;
    };
    double variance = 0;
    for (std::size_t index = 0; index < window.weights.size(); ++index)
        variance += window.weights[index] * sampleAt(index) * sampleAt(index);
    const double deviation = std::sqrt(variance);
    if (deviation <= silence)
        return 0;
    double outside = 0;
    for (std::size_t index = 0; index < window.weights.size(); ++index)
        if (sampleAt(index) > deviation)
            outside += window.weights[index];
    const double gaussianShare = std::erfc(1 / std::numbers::sqrt2);
    return outside / gaussianShare;
}

} // namespace

EchoDensity echoDensity(std::span<const double> response, double sampleRate, double decaySeconds,
                        double windowSeconds) {
    constexpr double step = 0.001;
    constexpr double silentShare = 1e-5; // of the peak: what is heard no more, and where a response just ends
    const Window window = windowOf(sampleRate, windowSeconds, decaySeconds);
    double peak = 0;
    for (const double sample : response)
        peak = std::max(peak, std::abs(sample));
    EchoDensity density{step, windowSeconds, {}, -1};
    for (std::size_t index = 0;; ++index) {
        const double seconds = static_cast<double>(index) * step;
        const auto centre = static_cast<std::size_t>(std::lround(seconds * sampleRate));
        if (centre >= response.size())
            return density;
        density.values.push_back(densityAt(response, centre, window, peak * silentShare));
        if (density.fullSeconds < 0 && density.values.back() >= 1)
            density.fullSeconds = seconds;
    }
}

} // namespace orvane::kestrum::tools
