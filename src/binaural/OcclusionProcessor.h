// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IInPlaceProcessor.h"
#include "base/SampleBuffer.h"
#include "filters/IBiquadFilter.h"
#include "filters/IBiquadFilterFactory.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace orvane {

/// Low-passes a response as if its source stood behind an obstacle.
///
/// Deliberate: the filters are not reset between runs, so a little of the previous response's tail carries
/// over.
class OcclusionProcessor final : public IInPlaceProcessor {
public:
    /// Units   sampleRate in hertz.
    /// @param amount borrowed, 0 (out of the way) to 1 (200 Hz), read at every run.
    /// @param filterFactory used in the constructor only.
    OcclusionProcessor(float sampleRate, const float* amount, std::uint64_t channelCount,
                       IBiquadFilterFactory* filterFactory);

    void process(SampleBuffer& buffer) ORVANE_REALTIME override;

private:
    const float* amount;
    std::vector<std::unique_ptr<IBiquadFilter>> filters; ///< One per channel.
};

} // namespace orvane
