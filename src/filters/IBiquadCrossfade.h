// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <cstdint>

namespace orvane {

/// A filter that is faded into a signal and out of it.
class IBiquadCrossfade {
public:
    virtual ~IBiquadCrossfade() = default;

    /// Shape   buffer [count], count at most the block size.
    /// @param engaged whether the filter is to be heard from now on.
    /// Thread  audio thread only.
    virtual void apply(float* buffer, std::uint64_t count, bool engaged) ORVANE_REALTIME = 0;
};

} // namespace orvane
