// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IInPlaceProcessor.h"
#include "base/SampleBuffer.h"

namespace orvane::kestrum::core {

/// Applies the layout's make-up gain to the finished stereo mix.
///
/// Shape   buffer [2][frames], rewritten in place.
/// Units   gainCompensationDb in decibels; samples relative to full scale 1.0.
/// Source  level to amplitude ratio, 10^(x / 20).
class GainCompensationProcessor final : public IInPlaceProcessor {
public:
    explicit GainCompensationProcessor(float gainCompensationDb) noexcept;

    void process(SampleBuffer& buffer) noexcept ORVANE_REALTIME override;

private:
    float gain; ///< Linear factor, fixed at construction.
};

} // namespace orvane::kestrum::core
