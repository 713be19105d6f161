// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "base/SampleSpan.h"

namespace orvane {

/// Rewrites one channel where it lies.
class IChannelProcessor {
public:
    virtual ~IChannelProcessor() = default;

    /// Thread  audio thread only.
    virtual void process(SampleSpan buffer) ORVANE_REALTIME = 0;
};

} // namespace orvane
