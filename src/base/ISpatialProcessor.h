// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <cstdint>

namespace orvane {

class SampleBuffer;

/// Turns a mono block into a stereo block.
class ISpatialProcessor {
public:
    virtual ~ISpatialProcessor() = default;

    /// Shape   input: only channel 0 is read; output [2][frames], overwritten.
    /// Thread  audio thread only.
    virtual void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME = 0;

    /// Does work that the next block would otherwise have to do; changes no output.
    ///
    /// @param pendingSamples how many of the next block's samples have come in, less than a block.
    virtual void workAhead(std::uint64_t /*pendingSamples*/) ORVANE_REALTIME {}
};

} // namespace orvane
