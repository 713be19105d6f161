// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"

#include <cstdint>
#include <string>

namespace test {

/// A store that never changes, with a cell of its own for every whole degree.
class StandInHrir : public orvane::IHrir {
public:
    void load(std::int32_t /*sampleRate*/, const std::string& /*dataDirectory*/) override {}
    std::int32_t bandLimitFactor() const noexcept override { return 1; }
    std::uint64_t generation() const noexcept override { return ownGeneration; }
    std::uint32_t cell(std::int32_t azimuthDegrees, std::int32_t elevationDegrees) const noexcept override {
        return static_cast<std::uint32_t>((azimuthDegrees + 1000) * 4096 + elevationDegrees + 1000);
    }

private:
    std::uint64_t ownGeneration = orvane::newHrirGeneration();
};

} // namespace test
