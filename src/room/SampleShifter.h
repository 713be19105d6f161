// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IInPlaceProcessor.h"
#include "base/SampleBuffer.h"

#include <cstdint>

namespace orvane {

/// Moves a stereo buffer later in time, zeros in front; what falls off the end is lost.
///
/// Thread  constructed on a building thread, process() on the audio thread.
class SampleShifter final : public IInPlaceProcessor {
public:
    /// Units   samples.
    explicit SampleShifter(std::uint64_t maxBufferSize);

    /// Shape   buffer [2][up to maxBufferSize].
    /// @throws std::out_of_range for a longer buffer.
    void process(SampleBuffer& buffer) ORVANE_REALTIME override;

    std::uint64_t shift = 0; ///< Samples; set by the owner before each use. Beyond the buffer: all zeros.

private:
    static constexpr std::uint64_t channels = 2;
    std::uint64_t maxBufferSize;
    SampleBuffer scratch; ///< [2][maxBufferSize]
};

} // namespace orvane
