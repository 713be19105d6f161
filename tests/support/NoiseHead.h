// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/SampleBuffer.h"
#include "support/StandInHrir.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace test {

/// A store with fading noise of its own in either ear for every whole degree, dense in time and frequency as
/// measured heads are: no two directions can be confused, and no error of a filter hides.
class NoiseHead final : public StandInHrir {
public:
    explicit NoiseHead(std::uint64_t responseLength) : samples(responseLength) {}

    /// Sample `i` of one ear, 0 left and 1 right; azimuth in the store's frame.
    float at(std::uint64_t ear, std::int32_t azimuth, std::int32_t elevation,
             std::uint64_t i) const noexcept {
        std::uint64_t bits = ear + 2 * (static_cast<std::uint64_t>(azimuth + 1000) +
                                        4096 * (static_cast<std::uint64_t>(elevation + 1000) + 4096 * i));
        // SplitMix64's finaliser (Steele, Lea, Flood 2014, "Fast splittable pseudorandom number generators").
        bits = (bits + 0x9E3779B97F4A7C15u) * 0xBF58476D1CE4E5B9u;
        bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBu;
        bits ^= bits >> 31;
        const float noise = static_cast<float>(bits >> 40) / 8388608.0f - 1.0f;
        return noise * std::exp(-5.0f * static_cast<float>(i) / static_cast<float>(samples));
    }

    std::uint64_t length() const noexcept override { return samples; }

    std::uint64_t getResponse(orvane::SampleBuffer& out, std::int32_t azimuthDegrees,
                              std::int32_t elevationDegrees, bool /*simple*/) const noexcept override {
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            for (std::uint64_t i = 0; i < std::min(samples, out.numSamples); ++i)
                out.channelPointers[ear][i] = at(ear, azimuthDegrees, elevationDegrees, i);
        return generation();
    }

private:
    std::uint64_t samples;
};

} // namespace test
