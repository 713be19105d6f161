// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/SampleShifter.h"

#include <algorithm>
#include <stdexcept>

namespace orvane {

SampleShifter::SampleShifter(std::uint64_t maxBufferSize)
    : maxBufferSize(maxBufferSize), scratch(channels, maxBufferSize) {}

void SampleShifter::process(SampleBuffer& buffer) {
    if (buffer.numSamples > maxBufferSize)
        throw std::out_of_range("Passed buffer is bigger than maxBufferSize");
    const std::uint64_t silent = std::min(shift, buffer.numSamples);
    scratch.clear();
    for (std::uint64_t channel = 0; channel < std::min(channels, buffer.numChannels); ++channel) {
        float* const samples = buffer.channelPointers[channel];
        float* const shifted = scratch.channelPointers[channel];
        std::copy_n(samples, buffer.numSamples - silent, shifted + silent);
        std::copy_n(shifted, buffer.numSamples, samples);
    }
}

} // namespace orvane
