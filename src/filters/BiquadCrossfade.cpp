// SPDX-License-Identifier: GPL-3.0-or-later
#include "filters/BiquadCrossfade.h"

#include "base/FadeStep.h"

#include <algorithm>
#include <utility>

namespace orvane {

BiquadCrossfade::BiquadCrossfade(std::unique_ptr<IBiquadFilter> filter, std::uint64_t blockSize,
                                 float sampleRate, float milliseconds, float start)
    : filter(std::move(filter)),
      dry(1, blockSize),
      step(fadeStepPerSample(milliseconds, sampleRate)),
      mix(start) {}

void BiquadCrossfade::apply(float* buffer, std::uint64_t count, bool engaged) {
    if (!engaged && mix - step < 0.0f)
        return;
    float* const original = dry.channelPointers[0];
    std::copy_n(buffer, count, original);
    filter->processInPlace(buffer, count, 1.0f);
    if (engaged && mix + step > 1.0f)
        return;
    for (std::uint64_t i = 0; i < count; ++i) {
        mix = std::clamp(engaged ? mix + step : mix - step, 0.0f, 1.0f);
        buffer[i] = mix * buffer[i] + (1.0f - mix) * original[i];
    }
}

} // namespace orvane
