// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/InputGuard.h"

#include <cmath>

namespace orvane {

void silenceFaults(const SampleBuffer& buffer) noexcept {
    for (std::uint64_t channel = 0; channel < buffer.numChannels; ++channel) {
        float* const samples = buffer.channelPointers[channel];
        for (std::uint64_t frame = 0; frame < buffer.numSamples;
             ++frame) // a NaN compares false with everything
            samples[frame] = std::abs(samples[frame]) <= loudestInput ? samples[frame] : 0.0f;
    }
}

} // namespace orvane
