// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/MeasuredSet.h"

#include "support/WaveFile.h"

#include <cmath>
#include <cstddef>
#include <numbers>
#include <random>
#include <vector>

namespace test {

using orvane::kestrum::tools::Direction;
using orvane::kestrum::tools::directionFrom;
using orvane::kestrum::tools::MeasuredSet;
using orvane::kestrum::tools::Samples;

/// A head that can be computed by hand: each ear hears a short pulse, later and softer the farther the source
/// stands on the other side. `side` is -1 for the left ear, +1 for the right.
struct SyntheticHead {
    double sampleRate = 44100;
    std::size_t tapCount = 256;
    double commonDelay = 60; ///< Samples to the middle of the head.
    double halfDelay = 12;   ///< Samples between the middle and an ear at the side.
    double sideGainDb = 6;   ///< A source at the side is so much louder at the near ear, softer at the far.

    static double towards(int side, const Direction& direction) { return side * direction.x; }
    double delay(int side, const Direction& direction) const {
        return commonDelay - halfDelay * towards(side, direction);
    }
    double gain(int side, const Direction& direction) const {
        return std::pow(10.0, sideGainDb * towards(side, direction) / 20);
    }

    /// A raised-cosine pulse, five samples wide, round any broken delay: next to nothing at the Nyquist
    /// frequency.
    Samples response(int side, const Direction& direction) const {
        constexpr double halfWidth = 2.5;
        Samples samples(tapCount);
        for (std::size_t index = 0; index < tapCount; ++index) {
            const double from = (static_cast<double>(index) - delay(side, direction)) / halfWidth;
            if (std::abs(from) < 1)
                samples[index] = gain(side, direction) * (0.5 + 0.5 * std::cos(std::numbers::pi * from));
        }
        return samples;
    }

    MeasuredSet measure(const std::vector<Direction>& directions) const {
        MeasuredSet set;
        set.sampleRate = sampleRate;
        set.distanceMetres = 1.5;
        set.tapCount = tapCount;
        set.origin.title = "synthetic head";
        for (const Direction& direction : directions)
            set.measurements.push_back({direction, {response(-1, direction), response(1, direction)}});
        return set;
    }
};

/// Rings `step` degrees apart from `lowest` up to the pole, `step` degrees apart on every ring.
inline std::vector<Direction> rings(int step, int lowest) {
    std::vector<Direction> directions;
    for (int elevation = lowest; elevation < 90; elevation += step) {
        if (elevation == -90) {
            directions.push_back({0, -1, 0});
            continue;
        }
        for (int azimuth = 0; azimuth < 360; azimuth += step)
            directions.push_back(directionFrom(azimuth, elevation));
    }
    directions.push_back({0, 1, 0});
    return directions;
}

/// `count` directions of a spiral with no two at the same elevation.
inline std::vector<Direction> spiral(int count) {
    const double turn = 180.0 * (3 - std::sqrt(5.0));
    std::vector<Direction> directions;
    directions.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
        const double height = 1 - (2.0 * index + 1) / count;
        directions.push_back(directionFrom(turn * index, std::asin(height) * 180 / std::numbers::pi));
    }
    return directions;
}

/// `count` directions drawn evenly over the sphere from a seed.
inline std::vector<Direction> scattered(int count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> unit(-1, 1);
    std::vector<Direction> directions;
    directions.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index)
        directions.push_back(
            directionFrom(180 * unit(random), std::asin(unit(random)) * 180 / std::numbers::pi));
    return directions;
}

} // namespace test
