// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "base/SampleBuffer.h"
#include "support/NoiseHead.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace test {

/// Noise on the real store's grid, 5 degrees to a cell, that counts how often it is asked and may be replaced.
class GridHead final : public orvane::IHrir {
public:
    explicit GridHead(std::uint64_t responseLength) : noise(responseLength) {}

    void load(std::int32_t /*sampleRate*/, const std::string& /*dataDirectory*/) override {}
    std::int32_t bandLimitFactor() const noexcept override { return 1; }
    std::uint64_t length() const noexcept override { return noise.length(); }
    std::uint64_t generation() const noexcept override { return present; }

    std::uint32_t cell(std::int32_t azimuthDegrees, std::int32_t elevationDegrees) const noexcept override {
        return static_cast<std::uint32_t>(column(azimuthDegrees) * 37 + row(elevationDegrees));
    }

    std::uint64_t getResponse(orvane::SampleBuffer& out, std::int32_t azimuthDegrees,
                              std::int32_t elevationDegrees, bool simple) const noexcept override {
        ++asked;
        const std::int32_t set = simple ? shift + 500 : shift;
        return noise.getResponse(out, column(azimuthDegrees) + set, row(elevationDegrees), simple), present;
    }

    /// Another content under another generation.
    void replace() {
        ++shift;
        present = orvane::newHrirGeneration();
    }

    mutable std::uint64_t asked = 0; ///< Calls of getResponse().

private:
    static std::int32_t column(std::int32_t azimuth) noexcept {
        return (std::clamp(azimuth, -180, 180) + 180) / 5;
    }
    static std::int32_t row(std::int32_t elevation) noexcept {
        return (std::clamp(elevation, -90, 90) + 90) / 5;
    }

    NoiseHead noise;
    std::int32_t shift = 0;
    std::uint64_t present = orvane::newHrirGeneration();
};

} // namespace test
