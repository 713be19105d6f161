// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <cstdint>

namespace orvane {

class SampleBuffer;

/// Whatever turns a block of the speaker bus into headphone stereo: one engine, or two in a crossfade.
class IEngine {
public:
    virtual ~IEngine() = default;

    /// Renders one host block. `input` and `output` may be views of the same memory.
    ///
    /// Shape   input [bus channels][frames]; output [2 or more][frames], channels from 2 on are silenced.
    /// Thread  audio thread only.
    virtual void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME = 0;

    /// Number of loudspeakers that are rendered, the low-frequency channel included.
    virtual std::uint64_t speakerCount() const noexcept = 0;
};

} // namespace orvane
