// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <cstdint>

namespace orvane {

/// A second-order section over raw runs of samples. Coefficients follow a parameter at once; the state
/// survives the change.
///
/// Shape   in, out, buffer [count]; in and out may be one run.
/// Thread  one thread at a time, the audio thread as a rule.
class IBiquadFilter {
public:
    virtual ~IBiquadFilter() = default;

    /// Units   hertz; held between 0 and 0.458 of the sampling rate.
    virtual void setFrequency(float frequencyHz) ORVANE_REALTIME = 0;

    /// The type's second parameter: the quality of a pass filter (0 is not guarded and gives infinite
    /// coefficients). A shelf has none and takes its gain in decibels here.
    virtual void setQ(float q) ORVANE_REALTIME = 0;

    /// `out[i] = y`, fed with `gain * in[i]`.
    virtual void process(const float* in, float* out, std::uint64_t count, float gain) ORVANE_REALTIME = 0;

    /// `buffer[i] = y * gain`, fed with `buffer[i]`.
    /// Deliberate: this one scales what comes out, all the others what goes in.
    virtual void processInPlace(float* buffer, std::uint64_t count, float gain) ORVANE_REALTIME = 0;

    /// `buffer[i] = (1 - (offset + i) / count) * y`, fed with `gain * buffer[i]`.
    virtual void processInPlaceFading(float* buffer, std::uint64_t count, std::uint64_t offset,
                                      float gain) ORVANE_REALTIME = 0;

    /// `out[i] += y`, fed with `gain * in[i]`.
    virtual void processAdd(const float* in, float* out, std::uint64_t count, float gain) ORVANE_REALTIME = 0;

    /// `out[i] += (1 - (i + offset) / count) * y`, fed with `gain * in[i]`.
    virtual void processAddFading(const float* in, float* out, std::uint64_t count, std::uint64_t offset,
                                  float gain) ORVANE_REALTIME = 0;

    /// Forgets the past: both state values become 0.
    virtual void reset() ORVANE_REALTIME = 0;
};

} // namespace orvane
