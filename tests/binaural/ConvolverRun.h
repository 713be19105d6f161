// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/SampleBuffer.h"
#include "binaural/ConvolutionFactory.h"
#include "binaural/IConvolution.h"
#include "support/Signals.h"

#include <cstdint>
#include <memory>

namespace test {

/// What both ears hear.
struct Stereo {
    Signal left;
    Signal right;

    void append(const orvane::SampleBuffer& block) {
        left.insert(left.end(), block.channel(0).begin(), block.channel(0).end());
        right.insert(right.end(), block.channel(1).begin(), block.channel(1).end());
    }
};

/// A response of noise that fades, as rooms do.
inline orvane::SampleBuffer noiseResponse(std::uint64_t length, Seed seed) {
    const Signal signal = noise(2 * length, seed);
    orvane::SampleBuffer response(2, length);
    for (std::uint64_t i = 0; i < length; ++i) {
        const float decay = 1.0f - static_cast<float>(i) / static_cast<float>(length);
        response.channelPointers[0][i] = signal[2 * i] * decay;
        response.channelPointers[1][i] = signal[2 * i + 1] * decay;
    }
    return response;
}

/// Hands the block that starts at `frame` of `input` to a convolver; `input` is not written.
inline orvane::SampleSpan blockOf(Signal& input, std::uint64_t frame, std::uint64_t blockSize) {
    return {input.data() + frame, blockSize};
}

/// The loudspeakers' convolver of one path.
inline std::unique_ptr<orvane::IConvolution> makeConvolver(orvane::RenderPath path, double sampleRate,
                                                           std::uint64_t blockSize,
                                                           std::uint64_t partitionCount,
                                                           std::int32_t bandLimitFactor) {
    orvane::ConvolutionFactory factory({.path = path});
    return factory.create(sampleRate, blockSize, partitionCount, bandLimitFactor);
}

/// Sets the response in the first block and runs all whole blocks of the input.
inline Stereo runConvolver(orvane::RenderPath path, Signal input, const orvane::SampleBuffer& response,
                           std::uint64_t blockSize, std::int32_t bandLimitFactor = 1) {
    const auto convolver =
        makeConvolver(path, 44100.0, blockSize, response.numSamples / blockSize, bandLimitFactor);
    orvane::SampleBuffer block(2, blockSize);
    Stereo output;
    for (std::uint64_t frame = 0; frame + blockSize <= input.size(); frame += blockSize) {
        convolver->process(blockOf(input, frame, blockSize), block, response, frame == 0);
        output.append(block);
    }
    return output;
}

} // namespace test
