// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/FastConvolution.h"

#include "base/SampleBuffer.h"
#include "binaural/ConvolutionGain.h"
#include "binaural/PartitionedSpectrum.h"

#include <algorithm>

namespace orvane {

FastConvolution::FastConvolution(double sampleRate, std::uint64_t blockSize, std::uint64_t partitionCount,
                                 std::int32_t bandLimitFactor, InstructionSet instructionSet)
    : blockSize(blockSize),
      partitionCount(partitionCount),
      slotStride(PartitionedSpectrum::slotStride(blockSize)),
      inverseScale(1.0f / static_cast<float>(2 * blockSize)),
      gain(convolutionGain(sampleRate)),
      kernel(multiplyAddKernel(instructionSet)),
      response(blockSize, partitionCount, bandLimitFactor),
      inputSpectra(fft::makeAlignedArray<fft::Complex>(partitionCount * slotStride)),
      terms(partitionCount),
      termSlots(partitionCount),
      inputWindow(fft::makeAlignedArray<float>(2 * blockSize)),
      timeResult(fft::makeAlignedArray<float>(2 * blockSize)),
      presentSums(fft::makeAlignedArray<fft::Complex>(2 * slotStride)),
      nextSums(fft::makeAlignedArray<fft::Complex>(2 * slotStride)),
      transform(2 * blockSize) {}

void FastConvolution::process(SampleSpan input, SampleBuffer& output, const SampleBuffer& impulseResponse,
                              bool updateResponse) {
    pushInput(input);
    if (updateResponse)
        replaceFrom(0, impulseResponse);
    aimTerms();
    std::fill_n(presentSums.get(), 2 * slotStride, fft::Complex{0, 0});
    addTerms(presentSums, 0, termCount);
    for (std::uint64_t ear = 0; ear < 2; ++ear)
        output.writeChannelScaled(ear, transformBack(presentSums, ear), inverseScale);
}

void FastConvolution::processCrossfaded(SampleSpan input, SampleBuffer& oldOutput, SampleBuffer& newOutput,
                                        const SampleBuffer& impulseResponse, bool updateResponse) {
    pushInput(input);
    aimTerms();
    const std::uint64_t firstChanged =
        updateResponse ? response.firstChangedSlot(impulseResponse) : partitionCount;
    const bool changed = firstChanged < partitionCount;
    const std::uint64_t commonTerms = changed ? termsBefore(firstChanged) : termCount;
    std::fill_n(presentSums.get(), 2 * slotStride, fft::Complex{0, 0});
    addTerms(presentSums, 0, commonTerms);
    if (changed) {
        std::copy_n(presentSums.get(), 2 * slotStride, nextSums.get());
        addTerms(presentSums, commonTerms, termCount);
    }
    for (std::uint64_t ear = 0; ear < 2; ++ear) {
        const SampleSpan result = transformBack(presentSums, ear);
        oldOutput.writeChannelScaled(ear, result, inverseScale);
        if (!changed)
            newOutput.writeChannelScaled(ear, result, inverseScale);
    }
    if (!changed)
        return;
    replaceFrom(firstChanged, impulseResponse);
    aimTerms();
    addTerms(nextSums, commonTerms, termCount);
    for (std::uint64_t ear = 0; ear < 2; ++ear)
        newOutput.writeChannelScaled(ear, transformBack(nextSums, ear), inverseScale);
}

void FastConvolution::prepare(const SampleBuffer& impulseResponse) { replaceFrom(0, impulseResponse); }

void FastConvolution::pushInput(SampleSpan input) noexcept {
    std::copy_n(inputWindow.get() + blockSize, blockSize, inputWindow.get());
    std::copy_n(input.data, blockSize, inputWindow.get() + blockSize);
    transform.forward(inputWindow.get(), inputSpectra.get() + writeIndex * slotStride);
    if (++writeIndex == partitionCount)
        writeIndex = 0;
}

void FastConvolution::replaceFrom(std::uint64_t firstSlot, const SampleBuffer& impulseResponse) noexcept {
    response.replaceFrom(firstSlot, impulseResponse, transform);
    termCount = 0;
    for (std::uint64_t slot = 0; slot < partitionCount; ++slot) {
        if (response.isSilent(slot))
            continue;
        termSlots[termCount] = slot;
        terms[termCount] = {nullptr, response.spectrum(slot, 0), response.spectrum(slot, 1)};
        ++termCount;
    }
}

/// Points the terms to the input spectra that they meet in this block.
void FastConvolution::aimTerms() noexcept {
    for (std::uint64_t i = 0; i < termCount; ++i) {
        const std::uint64_t turned = writeIndex + termSlots[i];
        const std::uint64_t slot = turned < partitionCount ? turned : turned - partitionCount;
        terms[i].input = inputSpectra.get() + slot * slotStride;
    }
}

std::uint64_t FastConvolution::termsBefore(std::uint64_t slot) const noexcept {
    const std::uint64_t* const first = termSlots.data();
    return static_cast<std::uint64_t>(std::lower_bound(first, first + termCount, slot) - first);
}

void FastConvolution::addTerms(Sums& sums, std::uint64_t first, std::uint64_t last) noexcept {
    kernel.addTerms(sums.get(), sums.get() + slotStride, terms.data() + first, last - first, blockSize + 1);
}

SampleSpan FastConvolution::transformBack(Sums& sums, std::uint64_t ear) noexcept {
    transform.backward(sums.get() + ear * slotStride, timeResult.get());
    return {timeResult.get() + blockSize, blockSize}; // the half that no circular wrap has reached
}

} // namespace orvane
