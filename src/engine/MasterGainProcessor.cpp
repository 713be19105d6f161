// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/MasterGainProcessor.h"

#include <cmath>

namespace orvane::kestrum::core {

namespace {

float gainFromDecibels(float decibels) noexcept { return std::pow(10.0f, decibels / 20.0f); }

} // namespace

MasterGainProcessor::MasterGainProcessor(const float* gainDb, double sampleRate) noexcept
    : gainDb(gainDb),
      current(gainFromDecibels(*gainDb)),
      target(current),
      rampLength(static_cast<std::uint64_t>(5.0 / 1000.0 * sampleRate)) {}

void MasterGainProcessor::process(SampleBuffer& buffer) noexcept {
    target = gainFromDecibels(*gainDb);
    // Exact comparison: a settled gain does not ramp.
    remaining = current != target ? rampLength : 0;
    step = remaining != 0 ? (target - current) / static_cast<float>(rampLength) : 0.0f;
    float* const left = buffer.channelPointers[0];
    float* const right = buffer.channelPointers[1];
    for (std::uint64_t frame = 0; frame < buffer.numSamples; ++frame) {
        const float gain = current; // a frame takes the gain that stood before its update
        if (remaining != 0) {
            --remaining;
            current = target - static_cast<float>(remaining) * step;
        }
        left[frame] *= gain;
        right[frame] *= gain;
    }
}

} // namespace orvane::kestrum::core
