// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <ctime>

namespace bench {

/// Sets "realtime": the processor time of a run's blocks as a share of their duration. Measured here, as the
/// library shows inverted rates with a unit of time.
class ShareOfRealTime {
public:
    ShareOfRealTime(benchmark::State& run, std::int64_t blockSize, double rate)
        : state(run), length(blockSize), sampleRate(rate) {}
    ~ShareOfRealTime() {
        const double used = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        const double blocks = static_cast<double>(state.iterations());
        state.counters["realtime"] = used / (blocks * static_cast<double>(length) / sampleRate);
    }
    ShareOfRealTime(const ShareOfRealTime&) = delete;
    ShareOfRealTime& operator=(const ShareOfRealTime&) = delete;

private:
    benchmark::State& state;
    std::int64_t length; ///< Samples of one block.
    double sampleRate;   ///< Hertz.
    std::clock_t start = std::clock();
};

} // namespace bench
