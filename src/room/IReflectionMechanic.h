// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "parameters/ISpatialParameterSetView.h"
#include "room/ReflectionList.h"

#include <cstdint>

namespace orvane {

/// Says where, when and how loud the early reflections of a room are, given where the source stands now.
///
/// Thread  reflections() on a building thread, the rest on the audio thread.
class IReflectionMechanic {
public:
    virtual ~IReflectionMechanic() = default;

    /// A list of its own for a renderer, filled from the room's template. Allocates.
    virtual ReflectionList reflections() const = 0;

    /// Moves `reflections`, which came from this mechanic, with the source. A reflection that would come later
    /// than `maxDelay` samples is folded back to just below it.
    virtual void update(ReflectionList& reflections, const ISpatialParameterSetView& view,
                        std::int32_t maxDelay) ORVANE_REALTIME = 0;

    /// Nominal response length, samples at 44100 Hz.
    virtual std::uint64_t length() const noexcept = 0;

    /// The same at the running rate, rounded up.
    virtual std::uint64_t scaledLength() const noexcept = 0;
};

} // namespace orvane
