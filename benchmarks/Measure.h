// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <numeric>
#include <vector>

namespace bench {

/// Seconds since some fixed moment.
inline double secondsOf(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}
inline double wallSeconds() { return secondsOf(CLOCK_MONOTONIC); }
/// What the calling thread has computed.
inline double threadSeconds() { return secondsOf(CLOCK_THREAD_CPUTIME_ID); }
/// What all threads of the process have computed.
inline double processSeconds() { return secondsOf(CLOCK_PROCESS_CPUTIME_ID); }

/// The value below which a share of all values lies.
///
/// @param values at least one.
inline double quantile(std::vector<double> values, double share) {
    const auto index = static_cast<std::size_t>(share * static_cast<double>(values.size()));
    const auto place = values.begin() + static_cast<std::ptrdiff_t>(std::min(index, values.size() - 1));
    std::nth_element(values.begin(), place, values.end());
    return *place;
}
inline double median(const std::vector<double>& values) { return quantile(values, 0.5); }
inline double mean(const std::vector<double>& values) {
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}
inline double worst(const std::vector<double>& values) {
    return *std::max_element(values.begin(), values.end());
}

} // namespace bench
