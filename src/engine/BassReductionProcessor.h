// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IInPlaceProcessor.h"
#include "base/SampleBuffer.h"
#include "filters/IBiquadFilter.h"
#include "filters/IBiquadFilterFactory.h"

#include <array>
#include <memory>

namespace orvane::kestrum::core {

/// Takes 2.7 dB off below 340 Hz, where near loudspeakers in a response sum up too strongly.
///
/// Shape   buffer [2][frames], rewritten in place.
class BassReductionProcessor final : public IInPlaceProcessor {
public:
    /// Units   sampleRate in hertz.
    BassReductionProcessor(double sampleRate, IBiquadFilterFactory* filterFactory);

    void process(SampleBuffer& buffer) ORVANE_REALTIME override;

private:
    std::array<std::unique_ptr<IBiquadFilter>, 2> filters;
};

} // namespace orvane::kestrum::core
