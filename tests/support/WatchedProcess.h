// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <ostream>

namespace test {

/// How work ended that a process of its own has done.
struct WatchedEnd {
    enum class How { returned, threw, crashed, hung };
    How how = How::crashed;
    int value = 0; ///< What the work returned, 0 to 255.
    std::chrono::microseconds
        cpuTime{}; ///< Of the process while it worked, all its threads; 0 unless it returned.

    friend std::ostream& operator<<(std::ostream& stream, const WatchedEnd& end);
};

/// Does work in a fork of this process, so that it may hang, crash, or spoil the process that it runs in.
///
/// @param guard after which it counts as hung. Generous: it is no deadline.
/// Thread  the only one of its process: only the caller's lives on in the fork.
WatchedEnd watch(const std::function<int()>& work, std::chrono::milliseconds guard = std::chrono::minutes(1));

} // namespace test
