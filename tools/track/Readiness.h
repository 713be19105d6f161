// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Clock.h"

#include <span>
#include <vector>

#include <poll.h>

namespace orvane::kestrum::track {

/// Waits for descriptors and remembers which have something to read, so that no system call is spent on the others: at
/// 250 packets in a second, calls are what the tracker costs.
///
/// Thread  one.
class Readiness {
public:
    /// Until one of the descriptors has something to read, a signal is taken or `longest` is over; at once when that is
    /// not positive. Forgets what was ready before.
    void wait(std::span<const int> descriptors, Clock::duration longest);

    /// Of the last wait; false before the first and for a descriptor that it did not wait for.
    bool has(int descriptor) const;

private:
    std::vector<pollfd> waited;
};

} // namespace orvane::kestrum::track
