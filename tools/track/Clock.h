// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

namespace orvane::kestrum::track {

/// What every deadline here is counted on; it never jumps.
using Clock = std::chrono::steady_clock;
using Instant = Clock::time_point;

constexpr double secondsOf(Clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

constexpr Clock::duration durationOf(double seconds) {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

} // namespace orvane::kestrum::track
