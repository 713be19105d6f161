// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/SampleBuffer.h"
#include "support/StandInHrir.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace test {

/// A store with one impulse per ear and direction: delay and level of a simple spherical head, so that a test
/// can predict what a loudspeaker must sound like.
///
/// Frame   as the real store: the azimuth it is asked for counts to the left (renderers negate before they
/// ask).
class SphericalHead final : public StandInHrir {
public:
    explicit SphericalHead(std::uint64_t responseLength = 128) : samples(responseLength) {}

    struct Ear {
        std::uint64_t delay; ///< Samples.
        float gain;
    };

    /// What the ear on `side` (-1 left, +1 right) gets from a source; azimuth positive to the right.
    static Ear ear(int side, double azimuthDegrees, double elevationDegrees) {
        const double radians = std::numbers::pi / 180.0;
        const double lateral =
            std::sin(azimuthDegrees * radians) * std::cos(elevationDegrees * radians) * side;
        return {static_cast<std::uint64_t>(std::lround(20.0 - 15.0 * lateral)),
                static_cast<float>(std::pow(10.0, lateral * 6.0 / 20.0))};
    }

    std::uint64_t length() const noexcept override { return samples; }

    std::uint64_t getResponse(orvane::SampleBuffer& out, std::int32_t azimuthDegrees,
                              std::int32_t elevationDegrees, bool /*simple*/) const noexcept override {
        for (std::uint64_t channel = 0; channel < 2; ++channel) {
            float* const target = out.channelPointers[channel];
            std::fill_n(target, std::min(samples, out.numSamples), 0.0f);
            const Ear at = ear(channel == 0 ? -1 : 1, -azimuthDegrees, elevationDegrees);
            if (at.delay < out.numSamples)
                target[at.delay] = at.gain;
        }
        return generation();
    }

private:
    std::uint64_t samples;
};

} // namespace test
