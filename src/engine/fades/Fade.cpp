// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/fades/Fade.h"

#include "base/FadeStep.h"
#include "base/SampleBuffer.h"

namespace orvane {

Fade::Fade(float milliseconds, float sampleRate, float start, float target) noexcept
    : rising(target >= start),
      step(fadeStepPerSample(milliseconds, sampleRate)),
      current(start),
      target(target) {}

void Fade::apply(SampleBuffer& buffer) {
    if (rising && current + step > target && target == 1.0f)
        return;
    for (std::uint64_t frame = 0; frame < buffer.numSamples; ++frame) {
        float next = 0;
        if (rising) {
            next = current + step;
            if (next + step > target)
                next = target;
        } else {
            next = current - step;
            if (target > next - step)
                next = target;
        }
        current = next;
        for (std::uint64_t channel = 0; channel < buffer.numChannels; ++channel)
            buffer.channelPointers[channel][frame] *= current;
    }
}

} // namespace orvane
