// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>

#include "base/Realtime.h"
#include "base/SampleSpan.h"

namespace orvane {

/// A high pass that steps out of the signal path altogether when it is set to 20 Hz or lower.
///
/// Deliberate: the switch is a hard one, and while the filter is out its state stands still.
template <typename Filter>
class RumbleFree final : public Filter {
public:
    using Filter::Filter;
    using Filter::process;

    void setFrequency(float frequencyHz) ORVANE_REALTIME override {
        requestedFrequency = frequencyHz;
        Filter::setFrequency(frequencyHz);
    }

    void process(SampleSpan in, SampleSpan out) ORVANE_REALTIME override {
        if (bypassBelow >= requestedFrequency) {
            if (in.data != out.data)
                std::copy_n(in.data, std::min(in.length, out.length), out.data);
            return;
        }
        Filter::process(in, out);
    }

private:
    float bypassBelow = 20.0f;        ///< Hertz.
    float requestedFrequency = 20.0f; ///< Hertz, before any limit.
};

} // namespace orvane
