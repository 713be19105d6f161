// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Clock.h"
#include "track/Rotation.h"
#include "track/Sample.h"

#include <cstdint>
#include <optional>
#include <string>

namespace orvane::kestrum::track {

/// What the redrawn line says: who sends, how often, where the head is, how old that is.
class View {
public:
    void countSample() { ++samples; }
    void countUnusable(std::uint64_t count) { unusable += count; }

    /// Measures the rate, once in a second.
    void advance(Instant now);

    std::string line(const std::optional<Source>& source, const std::optional<HeadAngles>& angles,
                     Clock::duration age) const;

private:
    std::uint64_t samples = 0; ///< Since rateStart.
    std::uint64_t unusable = 0;
    double rate = 0; ///< A second.
    Instant rateStart{};
};

} // namespace orvane::kestrum::track
