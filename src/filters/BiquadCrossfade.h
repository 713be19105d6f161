// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/SampleBuffer.h"
#include "filters/IBiquadCrossfade.h"
#include "filters/IBiquadFilter.h"

#include <cstdint>
#include <memory>

namespace orvane {

/// Does no work while the filter is wholly out, and only the filter's while it is wholly in.
class BiquadCrossfade final : public IBiquadCrossfade {
public:
    /// Units   sampleRate in hertz; `start` is the filter's share at first, 0 to 1.
    BiquadCrossfade(std::unique_ptr<IBiquadFilter> filter, std::uint64_t blockSize, float sampleRate,
                    float milliseconds, float start);

    void apply(float* buffer, std::uint64_t count, bool engaged) ORVANE_REALTIME override;

private:
    std::unique_ptr<IBiquadFilter> filter;
    SampleBuffer dry; ///< [1][blockSize]
    float step;       ///< Of `mix`, per sample.
    float mix;        ///< The filter's share.
};

} // namespace orvane
