// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "base/SampleBuffer.h"

#include <cstdint>

namespace orvane {

/// Multiplies the `rampLength` samples that end at `endAt` (exclusive) of every channel by 1 - i /
/// rampLength, i from 1: the last one becomes 0.
///
/// Errors  std::out_of_range when the buffer is not longer than `endAt`, or the ramp would start before
/// sample 0.
void rampDownLinear(SampleBuffer& buffer, std::uint64_t endAt, std::uint64_t rampLength) ORVANE_REALTIME;

/// As above, dividing by i * factor.
///
/// Errors  as above, then std::invalid_argument for a factor of 0.
void rampDownHyperbolic(SampleBuffer& buffer, std::uint64_t endAt, std::uint64_t rampLength,
                        float factor) ORVANE_REALTIME;

} // namespace orvane
