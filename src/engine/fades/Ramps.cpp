// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/fades/Ramps.h"

#include <stdexcept>

namespace orvane {

namespace {

void checkRange(const SampleBuffer& buffer, std::uint64_t endAt, std::uint64_t rampLength) {
    if (buffer.numSamples <= endAt)
        throw std::out_of_range("endtAt exceeds the boundary of the buffer");
    if (static_cast<std::int32_t>(endAt - rampLength) < 0)
        throw std::out_of_range("the ramp starts at outside of the buffer");
}

} // namespace

void rampDownLinear(SampleBuffer& buffer, std::uint64_t endAt, std::uint64_t rampLength) {
    checkRange(buffer, endAt, rampLength);
    for (std::uint64_t channel = 0; channel < buffer.numChannels; ++channel) {
        float* const start = buffer.channelPointers[channel] + (endAt - rampLength);
        for (std::uint64_t i = 1; i <= rampLength; ++i)
            start[i - 1] *= 1.0f - static_cast<float>(i) / static_cast<float>(rampLength);
    }
}

void rampDownHyperbolic(SampleBuffer& buffer, std::uint64_t endAt, std::uint64_t rampLength, float factor) {
    checkRange(buffer, endAt, rampLength);
    if (factor == 0.0f)
        throw std::invalid_argument("factor should be non-zero");
    for (std::uint64_t channel = 0; channel < buffer.numChannels; ++channel) {
        float* const start = buffer.channelPointers[channel] + (endAt - rampLength);
        for (std::uint64_t i = 1; i <= rampLength; ++i)
            start[i - 1] /= static_cast<float>(i) * factor;
    }
}

} // namespace orvane
