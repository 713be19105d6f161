// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "base/SampleSpan.h"

#include <cstdint>

namespace orvane {

class SampleBuffer;

/// Convolves mono blocks with a stereo response that may be replaced between any two blocks.
///
/// Shape   input [at least blockSize], of which exactly one block is read;
///         outputs [2][frames], overwritten: a shorter one gets its frames, a longer one zeros behind the
///         block; impulseResponse [2][at least blockSize * partitionCount], not checked.
/// Thread  made on a building thread, then one audio thread.
class IConvolution {
public:
    virtual ~IConvolution() = default;

    /// Delivers the block through the present response, or through `impulseResponse` if `updateResponse`.
    virtual void process(SampleSpan input, SampleBuffer& output, const SampleBuffer& impulseResponse,
                         bool updateResponse) ORVANE_REALTIME = 0;

    /// The same as running two convolvers over one history: the present response into `oldOutput`, then, if
    /// `updateResponse`, `impulseResponse` into `newOutput`; otherwise both get the present block.
    virtual void processCrossfaded(SampleSpan input, SampleBuffer& oldOutput, SampleBuffer& newOutput,
                                   const SampleBuffer& impulseResponse,
                                   bool updateResponse) ORVANE_REALTIME = 0;

    /// Replaces the response between blocks, on the building thread: the first block then need not.
    ///
    /// Shape   as in process().
    virtual void prepare(const SampleBuffer& impulseResponse) = 0;

    /// Does work that the next block would otherwise have to do; changes no output.
    ///
    /// @param pendingSamples how many of the next block's samples have come in, below blockSize.
    virtual void workAhead(std::uint64_t pendingSamples) ORVANE_REALTIME = 0;

    /// Linear gain that the owner applies to the finished block; the convolver does not.
    virtual float outputGain() const noexcept ORVANE_REALTIME = 0;
};

} // namespace orvane
