// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "filters/IChannelProcessor.h"

namespace orvane {

/// A second-order section over spans whose coefficients are worked out at the start of the next block.
///
/// Thread  one thread at a time, the audio thread as a rule.
class IGenericBiquadFilter : public IChannelProcessor {
public:
    using IChannelProcessor::process;

    /// Units   hertz; held between 0 and 0.458 of the sampling rate.
    virtual void setFrequency(float frequencyHz) ORVANE_REALTIME = 0;

    /// Not below 0.0001.
    virtual void setQ(float q) ORVANE_REALTIME = 0;

    /// Stored for responses that have a gain; a pass filter has none.
    virtual void setGain(float gain) ORVANE_REALTIME = 0;

    /// Linear factor on what goes in, from the next sample on.
    virtual void setInputGain(float gain) ORVANE_REALTIME = 0;

    /// Filters as many samples as the shorter span has; both may be one run.
    virtual void process(SampleSpan in, SampleSpan out) ORVANE_REALTIME = 0;

    /// Forgets the past: both state values become 0.
    virtual void reset() ORVANE_REALTIME = 0;
};

} // namespace orvane
