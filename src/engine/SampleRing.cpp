// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/SampleRing.h"

#include <algorithm>

namespace orvane::kestrum::core {

void SampleRing::push(const float* source, std::uint64_t count) noexcept {
    const std::uint64_t capacity = samples.size();
    if (count > capacity) {
        source += count - capacity;
        count = capacity;
    }
    if (held + count > capacity) {
        const std::uint64_t lost = held + count - capacity;
        oldest = wrapped(oldest + lost);
        held -= lost;
    }
    const std::uint64_t start = wrapped(oldest + held);
    const std::uint64_t beforeTheEnd = std::min(count, capacity - start);
    std::copy_n(source, beforeTheEnd, samples.data() + start);
    std::copy_n(source + beforeTheEnd, count - beforeTheEnd, samples.data());
    held += count;
}

void SampleRing::pop(float* target, std::uint64_t count) noexcept {
    const std::uint64_t beforeTheEnd = std::min<std::uint64_t>(count, samples.size() - oldest);
    std::copy_n(samples.data() + oldest, beforeTheEnd, target);
    std::copy_n(samples.data(), count - beforeTheEnd, target + beforeTheEnd);
    oldest = wrapped(oldest + count);
    held -= count;
}

} // namespace orvane::kestrum::core
