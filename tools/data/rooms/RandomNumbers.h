// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>

namespace orvane::kestrum::tools {

/// Random numbers that are the same wherever they are drawn, normal values to the rounding of the machine's logarithm and
/// sine: the generator's sequence is fixed by the language, and the standard distributions, whose are not, are left
/// alone.
///
/// Source  normal values: Box and Muller, "A note on the generation of random normal deviates", Annals of
///         Mathematical Statistics 29, 1958.
class RandomNumbers {
public:
    explicit RandomNumbers(std::uint64_t seed) : generator(seed) {}

    /// Evenly from 0 (included) to 1 (not included).
    double uniform() { return static_cast<double>(generator() >> 11U) * 0x1p-53; }

    /// Mean 0, variance 1.
    double normal() {
        if (spare) {
            spare = false;
            return second;
        }
        const double radius = std::sqrt(-2 * std::log(1 - uniform()));
        const double angle = 2 * std::numbers::pi * uniform();
        second = radius * std::sin(angle);
        spare = true;
        return radius * std::cos(angle);
    }

    /// -1 or +1.
    double sign() { return (generator() >> 63U) != 0 ? 1.0 : -1.0; }

private:
    std::mt19937_64 generator;
    double second = 0;
    bool spare = false;
};

} // namespace orvane::kestrum::tools
