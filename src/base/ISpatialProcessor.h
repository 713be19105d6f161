// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

namespace orvane {

class SampleBuffer;

/// Turns a mono block into a stereo block.
class ISpatialProcessor {
public:
    virtual ~ISpatialProcessor() = default;

    /// Shape   input: only channel 0 is read; output [2][frames], overwritten.
    /// Thread  audio thread only.
    virtual void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME = 0;
};

} // namespace orvane
