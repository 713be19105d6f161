// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/SampleBuffer.h"
#include "engine/fades/ICrossFader.h"

#include <cstdint>
#include <vector>

namespace orvane {

/// Linear in amplitude: sample 0 is wholly old, sample length - 1 and everything behind it wholly new.
///
/// Thread  constructed on a building thread, apply() on the audio thread.
class CrossFader final : public ICrossFader {
public:
    /// @param length samples, 2 or more: a fade of one sample has no slope and gives NaN.
    CrossFader(std::uint64_t channels, std::uint64_t length);

    /// Shape   output [at most channels][at least length], rewritten in place.
    void apply(SampleBuffer& output) ORVANE_REALTIME override;
    SampleBuffer& buffer() ORVANE_REALTIME override { return oldBlock; }

private:
    std::uint64_t length;
    std::vector<float> ramp; ///< [2 * length], rising from 0 to 1, then falling from 1 to 0.
    SampleBuffer oldBlock;   ///< [channels][length]
};

} // namespace orvane
