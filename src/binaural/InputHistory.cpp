// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/InputHistory.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

constexpr float beyondAnySound = 1e30f; // 600 dB above full scale; sums of products stay finite below it

} // namespace

void InputHistory::push(SampleSpan block) noexcept {
    std::uint64_t place = pushed % samples.size();
    for (const float sample : block) {
        samples[place] = std::abs(sample) <= beyondAnySound ? sample : 0.0f;
        if (++place == samples.size())
            place = 0;
    }
    pushed += block.length;
}

void InputHistory::copyBefore(std::uint64_t last, std::uint64_t delay, float* target,
                              std::uint64_t count) const noexcept {
    const std::uint64_t length = samples.size();
    const std::uint64_t first = (last % length + 2 * length - delay - count) % length;
    const std::uint64_t beforeTheSeam = std::min(count, length - first);
    std::copy_n(samples.data() + first, beforeTheSeam, target);
    std::copy_n(samples.data(), count - beforeTheSeam, target + beforeTheSeam);
}

} // namespace orvane
