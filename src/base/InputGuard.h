// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "base/SampleBuffer.h"

namespace orvane {

/// The largest magnitude that is taken for sound: 120 dB above full scale. Beyond it, and in what is no number, there is only
/// the fault of whatever wrote it, and a filter that has taken it in would ring with it for ever.
inline constexpr float loudestInput = 1e6f;

/// Turns every sample that is not finite, or beyond loudestInput, into silence; all others keep their bits.
///
/// Thread  audio thread; one pass of vector instructions.
void silenceFaults(const SampleBuffer& buffer) noexcept ORVANE_REALTIME;

} // namespace orvane
