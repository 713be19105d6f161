// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/Readiness.h"

#include <algorithm>
#include <chrono>

namespace orvane::kestrum::track {

void Readiness::wait(std::span<const int> descriptors, Clock::duration longest) {
    waited.clear();
    for (const int descriptor : descriptors)
        waited.push_back({descriptor, POLLIN, 0});
    const auto pause = std::max(longest, Clock::duration::zero());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(pause);
    const timespec limit{seconds.count(), std::chrono::nanoseconds(pause - seconds).count()};
    if (ppoll(waited.data(), waited.size(), &limit, nullptr) <= 0)
        waited.clear();
}

bool Readiness::has(int descriptor) const {
    return std::ranges::any_of(
        waited, [descriptor](const pollfd& entry) { return entry.fd == descriptor && entry.revents != 0; });
}

} // namespace orvane::kestrum::track
