// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

namespace orvane {

class SampleBuffer;

/// Rewrites a buffer where it lies: response stages and the stages of the output chain.
class IInPlaceProcessor {
public:
    virtual ~IInPlaceProcessor() = default;

    /// Thread  audio thread only.
    virtual void process(SampleBuffer& buffer) ORVANE_REALTIME = 0;
};

} // namespace orvane
