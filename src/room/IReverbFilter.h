// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "base/SampleBuffer.h"

#include <cstdint>

namespace orvane {

/// The response of a room's late reverb as the convolver takes it, with a decay that can be shortened.
///
/// Thread  update() and changed() on the building thread, then on the audio thread; the rest on any.
class IReverbFilter {
public:
    virtual ~IReverbFilter() = default;

    /// Draws the response anew if the decay differs from that of the last call; a whole pass over it.
    ///
    /// Shape   buffer [2][at least a block beyond the partitions], the same one at every call.
    /// @param decay percent, 50 (the shortest) to 100 (as stored); outside as at the nearer end.
    virtual void update(SampleBuffer& buffer, float decay) ORVANE_REALTIME = 0;

    virtual std::uint64_t partitionCount() const noexcept = 0;

    /// How many times the running rate exceeds the stored one.
    virtual std::int32_t bandLimitFactor() const noexcept = 0;

    /// True if the last update() wrote the buffer.
    virtual bool changed() const noexcept ORVANE_REALTIME = 0;
};

} // namespace orvane
