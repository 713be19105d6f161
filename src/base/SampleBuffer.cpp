// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace orvane {

SampleBuffer::SampleBuffer(std::uint64_t channelCount, std::uint64_t sampleCount) {
    allocate(channelCount, sampleCount);
}

SampleBuffer::SampleBuffer(float* const* channels, std::uint64_t channelCount,
                           std::uint64_t sampleCount) noexcept
    : numChannels(channelCount), numSamples(sampleCount), channelPointers(channels), external(true) {}

SampleBuffer::SampleBuffer(const SampleBuffer& other) : SampleBuffer(other.numChannels, other.numSamples) {
    copyFrom(other);
}

SampleBuffer& SampleBuffer::operator=(const SampleBuffer& other) {
    if (this != &other)
        *this = SampleBuffer(other);
    return *this;
}

SampleBuffer::SampleBuffer(SampleBuffer&& other) noexcept
    : numChannels(std::exchange(other.numChannels, 0)),
      numSamples(std::exchange(other.numSamples, 0)),
      channelPointers(std::exchange(other.channelPointers, nullptr)),
      external(std::exchange(other.external, false)),
      samples(std::move(other.samples)),
      ownedPointers(std::move(other.ownedPointers)) {}

SampleBuffer& SampleBuffer::operator=(SampleBuffer&& other) noexcept {
    if (this != &other) {
        numChannels = std::exchange(other.numChannels, 0);
        numSamples = std::exchange(other.numSamples, 0);
        samples = std::move(other.samples);
        ownedPointers = std::move(other.ownedPointers);
        channelPointers = std::exchange(other.channelPointers, nullptr);
        external = std::exchange(other.external, false);
    }
    return *this;
}

void SampleBuffer::setSize(std::uint64_t channelCount, std::uint64_t sampleCount) {
    if (external)
        throw std::runtime_error("setSize can be used only for internally allocated memory");
    allocate(channelCount, sampleCount);
}

void SampleBuffer::allocate(std::uint64_t channelCount, std::uint64_t sampleCount) {
    std::vector<float> newSamples(channelCount * sampleCount, 0.0f);
    std::vector<float*> newPointers(channelCount);
    for (std::uint64_t index = 0; index < channelCount; ++index)
        newPointers[index] = newSamples.data() + index * sampleCount;
    samples.swap(newSamples);
    ownedPointers.swap(newPointers);
    channelPointers = ownedPointers.data();
    numChannels = channelCount;
    numSamples = sampleCount;
}

void SampleBuffer::clear() noexcept {
    for (std::uint64_t index = 0; index < numChannels; ++index)
        std::fill_n(channelPointers[index], numSamples, 0.0f);
}

void SampleBuffer::multiplyBy(float gain) noexcept {
    for (std::uint64_t index = 0; index < numChannels; ++index) {
        float* const channelSamples = channelPointers[index];
        for (std::uint64_t frame = 0; frame < numSamples; ++frame)
            channelSamples[frame] *= gain;
    }
}

void SampleBuffer::copyFrom(const SampleBuffer& other) noexcept {
    const std::uint64_t channelCount = std::min(numChannels, other.numChannels);
    const std::uint64_t sampleCount = std::min(numSamples, other.numSamples);
    for (std::uint64_t index = 0; index < channelCount; ++index)
        std::copy_n(other.channelPointers[index], sampleCount, channelPointers[index]);
}

void SampleBuffer::addFrom(const SampleBuffer& other) noexcept {
    const std::uint64_t channelCount = std::min(numChannels, other.numChannels);
    const std::uint64_t sampleCount = std::min(numSamples, other.numSamples);
    for (std::uint64_t index = 0; index < channelCount; ++index) {
        const float* const source = other.channelPointers[index];
        float* const target = channelPointers[index];
        for (std::uint64_t frame = 0; frame < sampleCount; ++frame)
            target[frame] += source[frame];
    }
}

void SampleBuffer::writeChannelScaled(std::uint64_t channelIndex, SampleSpan span, float factor) noexcept {
    float* const target = channelPointers[channelIndex];
    const std::uint64_t count = std::min(numSamples, span.length);
    for (std::uint64_t frame = 0; frame < count; ++frame)
        target[frame] = factor * span.data[frame];
    std::fill(target + count, target + numSamples, 0.0f);
}

} // namespace orvane
