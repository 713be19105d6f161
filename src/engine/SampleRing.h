// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <cstdint>
#include <vector>

namespace orvane::kestrum::core {

/// First in, first out, for one channel between host blocks and internal blocks; moves whole runs of samples.
///
/// Thread  the constructor allocates; everything else is fit for the audio thread, one at a time.
class SampleRing {
public:
    /// Empty, with room for `capacity` samples.
    explicit SampleRing(std::uint64_t capacity) : samples(capacity) {}

    /// Appends; where the room runs out, the oldest samples are lost.
    void push(const float* source, std::uint64_t count) noexcept ORVANE_REALTIME;

    /// Takes out the oldest samples, `count` of them at most size().
    void pop(float* target, std::uint64_t count) noexcept ORVANE_REALTIME;

    std::uint64_t size() const noexcept ORVANE_REALTIME { return held; }

private:
    std::uint64_t wrapped(std::uint64_t index) const noexcept ORVANE_REALTIME {
        return index < samples.size() ? index : index - samples.size();
    }

    std::vector<float> samples; ///< [capacity]
    std::uint64_t oldest = 0;   ///< Where the oldest sample lies.
    std::uint64_t held = 0;
};

} // namespace orvane::kestrum::core
