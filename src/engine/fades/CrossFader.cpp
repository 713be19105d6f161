// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/fades/CrossFader.h"

namespace orvane {

namespace {

/// The compiler's loop over vectors, without its checks for overlap.
void fade(float* __restrict samples, const float* __restrict old, const float* __restrict rising,
          const float* __restrict falling, std::uint64_t length) noexcept {
    for (std::uint64_t i = 0; i < length; ++i)
        samples[i] = samples[i] * rising[i] + falling[i] * old[i];
}

} // namespace

CrossFader::CrossFader(std::uint64_t channels, std::uint64_t length)
    : length(length), ramp(2 * length), oldBlock(channels, length) {
    for (std::uint64_t k = 0; k < length; ++k) {
        const float rising = static_cast<float>(k) / static_cast<float>(length - 1);
        ramp[k] = rising;
        ramp[2 * length - 1 - k] = rising;
    }
}

void CrossFader::apply(SampleBuffer& output) {
    const float* const rising = ramp.data();
    const float* const falling = ramp.data() + length;
    for (std::uint64_t channel = 0; channel < output.numChannels; ++channel)
        fade(output.channelPointers[channel], oldBlock.channelPointers[channel], rising, falling, length);
}

} // namespace orvane
