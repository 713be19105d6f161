// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

namespace orvane {

class SampleBuffer;

/// A gain ramp that is applied block by block.
class IFade {
public:
    virtual ~IFade() = default;

    /// Thread  audio thread only.
    virtual void apply(SampleBuffer& buffer) ORVANE_REALTIME = 0;
};

} // namespace orvane
