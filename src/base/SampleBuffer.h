// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "base/SampleSpan.h"

#include <cstdint>
#include <vector>

namespace orvane {

/// A multi-channel block of 32-bit float samples, either owned or wrapped around memory of somebody else.
///
/// Shape   [numChannels][numSamples]; an owned buffer is one contiguous run, channel after channel.
/// Units   samples relative to full scale 1.0.
/// Thread  constructors and setSize() allocate (a wrapper does not); everything else is fit for the audio
/// thread.
class SampleBuffer {
public:
    /// An empty buffer that owns nothing yet.
    SampleBuffer() = default;

    /// An owned buffer, zero-filled.
    SampleBuffer(std::uint64_t channelCount, std::uint64_t sampleCount);

    /// Wraps outside memory without copying or allocating.
    ///
    /// @param channels borrowed array of `channelCount` pointers to `sampleCount` samples each; the array and
    ///                 the memory have to outlive the wrapper.
    SampleBuffer(float* const* channels, std::uint64_t channelCount, std::uint64_t sampleCount) noexcept;

    /// Copies own their samples, also when the original is a wrapper.
    SampleBuffer(const SampleBuffer& other);
    SampleBuffer& operator=(const SampleBuffer& other);
    SampleBuffer(SampleBuffer&& other) noexcept;
    SampleBuffer& operator=(SampleBuffer&& other) noexcept;
    ~SampleBuffer() = default;

    /// Reallocates, zero-filled. Not for the audio thread.
    /// @throws std::runtime_error when the buffer wraps outside memory.
    void setSize(std::uint64_t channelCount, std::uint64_t sampleCount);

    /// Zeroes every sample of every channel.
    void clear() noexcept ORVANE_REALTIME;

    /// Multiplies every sample by `gain`.
    void multiplyBy(float gain) noexcept ORVANE_REALTIME;

    /// Copies over the smaller channel count and length of the two; what lies beyond stays.
    void copyFrom(const SampleBuffer& other) noexcept ORVANE_REALTIME;

    /// Adds `other` sample by sample over the smaller channel count and length of the two.
    void addFrom(const SampleBuffer& other) noexcept ORVANE_REALTIME;

    /// `channel[i] = factor * span[i]` over the smaller of both lengths; the channel's further samples become
    /// 0.
    void writeChannelScaled(std::uint64_t channel, SampleSpan span, float factor) noexcept ORVANE_REALTIME;

    /// The whole of one channel.
    SampleSpan channel(std::uint64_t index) const noexcept ORVANE_REALTIME {
        return {channelPointers[index], numSamples};
    }

    std::uint64_t numChannels = 0;
    std::uint64_t numSamples = 0;
    float* const* channelPointers = nullptr; ///< [numChannels] first samples; null in an empty buffer.
    bool external = false;                   ///< True when the buffer merely wraps outside memory.

private:
    void allocate(std::uint64_t channelCount, std::uint64_t sampleCount);

    std::vector<float> samples;        ///< [numChannels * numSamples], empty in a wrapper.
    std::vector<float*> ownedPointers; ///< Into `samples`, empty in a wrapper.
};

} // namespace orvane
