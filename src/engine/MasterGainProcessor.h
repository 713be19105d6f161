// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IInPlaceProcessor.h"
#include "base/SampleBuffer.h"

#include <cstdint>

namespace orvane::kestrum::core {

/// The master gain, with a linear ramp of 5 milliseconds that starts anew at every block while a difference
/// stands.
///
/// Shape   buffer [2][frames], rewritten in place.
class MasterGainProcessor final : public IInPlaceProcessor {
public:
    /// Units   sampleRate in hertz.
    /// @param gainDb borrowed, in decibels; read at every block. Its present value is taken over without a
    /// ramp.
    MasterGainProcessor(const float* gainDb, double sampleRate) noexcept;

    void process(SampleBuffer& buffer) noexcept ORVANE_REALTIME override;

private:
    const float* gainDb;
    float current;            ///< Linear.
    float target;             ///< Linear.
    std::uint64_t rampLength; ///< In frames.
    float step = 0;
    std::uint64_t remaining = 0; ///< Frames to the end of the ramp.
};

} // namespace orvane::kestrum::core
