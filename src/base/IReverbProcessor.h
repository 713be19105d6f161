// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <cstdint>

namespace orvane {
class SampleBuffer;
}

namespace orvane::kestrum::core {

/// The late reverb that all loudspeakers of an engine share.
class IReverbProcessor {
public:
    virtual ~IReverbProcessor() = default;

    /// Shape   input [any channels][blockSize]; output [2][blockSize], overwritten.
    /// Thread  audio thread only.
    virtual void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME = 0;

    /// Does work that the next block would otherwise have to do; changes no output.
    ///
    /// @param pendingSamples how many of the next block's samples have come in, below blockSize.
    /// Thread  audio thread only.
    virtual void workAhead(std::uint64_t pendingSamples) ORVANE_REALTIME = 0;
};

} // namespace orvane::kestrum::core
