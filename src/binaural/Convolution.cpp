// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/Convolution.h"

#include "binaural/ComplexMultiplyAdd.h"
#include "binaural/ConvolutionGain.h"

#include <algorithm>

namespace orvane {

Convolution::Convolution(double sampleRate, std::uint64_t blockSize, std::uint64_t partitionCount,
                         std::int32_t bandLimitFactor)
    : blockSize(blockSize),
      partitionCount(partitionCount),
      keptBins(blockSize / static_cast<std::uint64_t>(bandLimitFactor)),
      inverseScale(1.0f / static_cast<float>(2 * blockSize)),
      gain(convolutionGain(sampleRate)),
      inputSpectra(partitionCount, blockSize),
      leftSpectra(partitionCount, blockSize),
      rightSpectra(partitionCount, blockSize),
      partitionScratch(1, 2 * blockSize),
      inputWindow(1, 2 * blockSize),
      timeResult(1, 2 * blockSize),
      partition(partitionScratch.channel(0)),
      window(inputWindow.channel(0)),
      result(timeResult.channel(0)),
      validResult{result.data + blockSize, blockSize},
      accumulator(blockSize + 1),
      transform(2 * blockSize) {}

void Convolution::process(SampleSpan input, SampleBuffer& output, const SampleBuffer& impulseResponse,
                          bool updateResponse) {
    pushInput(input);
    if (updateResponse)
        prepare(impulseResponse);
    output.writeChannelScaled(0, convolve(leftSpectra), inverseScale);
    output.writeChannelScaled(1, convolve(rightSpectra), inverseScale);
}

void Convolution::processCrossfaded(SampleSpan input, SampleBuffer& oldOutput, SampleBuffer& newOutput,
                                    const SampleBuffer& impulseResponse, bool updateResponse) {
    pushInput(input);
    if (!updateResponse) {
        for (std::uint64_t ear = 0; ear < 2; ++ear) {
            const SampleSpan block = convolve(ear == 0 ? leftSpectra : rightSpectra);
            oldOutput.writeChannelScaled(ear, block, inverseScale);
            newOutput.writeChannelScaled(ear, block, inverseScale);
        }
        return;
    }
    oldOutput.writeChannelScaled(0, convolve(leftSpectra), inverseScale);
    oldOutput.writeChannelScaled(1, convolve(rightSpectra), inverseScale);
    prepareSpectra(leftSpectra, impulseResponse.channelPointers[0]);
    newOutput.writeChannelScaled(0, convolve(leftSpectra), inverseScale);
    prepareSpectra(rightSpectra, impulseResponse.channelPointers[1]);
    newOutput.writeChannelScaled(1, convolve(rightSpectra), inverseScale);
}

void Convolution::prepare(const SampleBuffer& impulseResponse) {
    prepareSpectra(leftSpectra, impulseResponse.channelPointers[0]);
    prepareSpectra(rightSpectra, impulseResponse.channelPointers[1]);
}

void Convolution::pushInput(SampleSpan input) noexcept {
    std::copy_n(window.data + blockSize, blockSize, window.data);
    std::copy_n(input.data, blockSize, window.data + blockSize);
    transform.forward(window.data, inputSpectra.slot(writeIndex).data);
    writeIndex = (writeIndex + 1) % partitionCount;
}

SampleSpan Convolution::convolve(const PartitionedSpectrum& response) noexcept {
    accumulator.clear();
    std::uint64_t inputSlot = writeIndex;
    for (std::uint64_t k = 0; k < partitionCount; ++k) {
        complexMultiplyAdd(accumulator.data, inputSpectra.slot(inputSlot).data, response.slot(k).data,
                           blockSize + 1);
        if (++inputSlot == partitionCount)
            inputSlot = 0;
    }
    transform.backward(accumulator.data, result.data);
    return validResult;
}

void Convolution::prepareSpectra(PartitionedSpectrum& response, const float* samples) noexcept {
    for (std::uint64_t j = 0; j < partitionCount; ++j) {
        std::copy_n(samples + j * blockSize, blockSize, partition.data);
        transform.forward(partition.data, response.slot(partitionCount - 1 - j).data);
        // Deliberate: slot j, not the slot just written. Slots are written from the top, so a cleared low
        // slot is overwritten later: the band limit acts on the early partitions only, the later ones keep
        // their full band.
        if (keptBins < blockSize)
            std::fill(response.slot(j).data + keptBins, response.slot(j).data + blockSize,
                      fft::Complex{0, 0});
    }
}

} // namespace orvane
