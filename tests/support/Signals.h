// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <random>
#include <span>
#include <vector>

namespace test {

using Signal = std::vector<float>;

/// What starts a pseudo-random sequence; equal seeds give equal signals on every machine.
struct Seed {
    std::uint32_t value = 0;
};

/// Largest difference that still counts as equal, relative to full scale 1.
struct Tolerance {
    float value = 0;
};

/// Where in a signal something happens.
struct Position {
    std::size_t sample = 0;
};

/// Uniform in [-1, 1). The bits come from the generator itself: the library's distributions may differ.
inline Signal noise(std::size_t length, Seed seed) {
    std::mt19937 generator(seed.value);
    Signal signal(length);
    for (float& sample : signal)
        sample = static_cast<float>(generator() >> 8) / 8388608.0f - 1.0f;
    return signal;
}

inline Signal impulse(std::size_t length, Position at, float height = 1.0f) {
    Signal signal(length, 0.0f);
    signal[at.sample] = height;
    return signal;
}

inline float peak(std::span<const float> signal) {
    float largest = 0;
    for (const float sample : signal)
        largest = std::isnan(sample) ? sample : std::max(largest, std::abs(sample));
    return largest;
}

/// Every sample is exactly 0 (either sign).
MATCHER(Silence, negation ? "is not silent" : "is silent") {
    for (std::size_t i = 0; i < arg.size(); ++i)
        if (arg[i] != 0.0f) {
            *result_listener << "sample " << i << " is " << arg[i];
            return false;
        }
    return true;
}

/// Same length, and every sample within `tolerance` of the expected one (floats or doubles).
MATCHER_P2(CloseTo, expected, tolerance, "") {
    if (arg.size() != expected.size()) {
        *result_listener << "has " << arg.size() << " samples, not " << expected.size();
        return false;
    }
    for (std::size_t i = 0; i < arg.size(); ++i) {
        const double difference = static_cast<double>(arg[i]) - static_cast<double>(expected[i]);
        if (!(std::abs(difference) <= static_cast<double>(tolerance.value))) {
            *result_listener << "sample " << i << " is " << arg[i] << ", not " << expected[i];
            return false;
        }
    }
    return true;
}

/// The same signal `delay` samples later, zeros before; what has not yet come out at the end is not missed.
MATCHER_P3(DelayedCopyOf, original, delay, tolerance, "") {
    for (std::size_t i = 0; i < arg.size(); ++i) {
        const bool inside = i >= delay && i - delay < original.size();
        const float expected = inside ? original[i - delay] : 0.0f;
        if (!(std::abs(arg[i] - expected) <= tolerance.value)) {
            *result_listener << "sample " << i << " is " << arg[i] << ", not " << expected;
            return false;
        }
    }
    return true;
}

} // namespace test
