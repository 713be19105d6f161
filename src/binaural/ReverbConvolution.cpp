// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/ReverbConvolution.h"

#include "base/SampleBuffer.h"
#include "binaural/ComplexMultiplyAdd.h"
#include "binaural/ConvolutionGain.h"

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

bool isSilent(const float* samples, std::uint64_t count) noexcept {
    return std::all_of(samples, samples + count, [](float sample) { return sample == 0.0f; });
}

/// Whole vectors, so that the last bin, which is added apart, is in none of them; all bins if it would be.
std::uint64_t binsToAdd(std::uint64_t keptBins, std::uint64_t blockSize) noexcept {
    constexpr std::uint64_t line = fft::alignment / sizeof(fft::Complex);
    const std::uint64_t vectors = (keptBins + line - 1) / line * line;
    return vectors <= blockSize ? vectors : blockSize + 1;
}

} // namespace

ReverbConvolution::ReverbConvolution(double sampleRate, std::uint64_t blockSize, std::uint64_t partitionCount,
                                     const BandLimit& bandLimit, InstructionSet instructionSet)
    : blockSize(blockSize),
      partitionCount(partitionCount),
      bandLimit(bandLimit),
      limitedBins(binsToAdd(bandLimit.keptBins, blockSize)),
      inverseScale(1.0f / static_cast<float>(2 * blockSize)),
      gain(convolutionGain(sampleRate)),
      kernel(multiplyAddKernel(instructionSet)),
      inputSpectra(partitionCount, blockSize),
      leftSpectra(partitionCount, blockSize),
      rightSpectra(partitionCount, blockSize),
      terms(partitionCount),
      pairTerms(partitionCount),
      present{makeSums(), makeSums()},
      next{makeSums(), makeSums()},
      inputWindow(fft::makeAlignedArray<float>(2 * blockSize)),
      padded(fft::makeAlignedArray<float>(2 * blockSize)),
      timeResult(fft::makeAlignedArray<float>(2 * blockSize)),
      transform(2 * blockSize) {
    partitions.reserve(partitionCount);
}

ReverbConvolution::EarSums ReverbConvolution::makeSums() const {
    return {fft::makeAlignedArray<fft::Complex>(blockSize + 1),
            fft::makeAlignedArray<fft::Complex>(blockSize + 1)};
}

void ReverbConvolution::process(SampleSpan input, SampleBuffer& output, const SampleBuffer& impulseResponse,
                                bool updateResponse) {
    if (updateResponse) {
        pushInput(input);
        replaceAndDeliver(impulseResponse, output);
    } else {
        deliver(sumOfNextBlock(input), output);
    }
}

void ReverbConvolution::processCrossfaded(SampleSpan input, SampleBuffer& oldOutput, SampleBuffer& newOutput,
                                          const SampleBuffer& impulseResponse, bool updateResponse) {
    deliver(sumOfNextBlock(input), oldOutput, updateResponse ? nullptr : &newOutput);
    if (updateResponse)
        replaceAndDeliver(impulseResponse, newOutput);
}

void ReverbConvolution::prepare(const SampleBuffer& impulseResponse) {
    replace(impulseResponse);
    beginPair(true); // the sums so far are those of the old response
}

void ReverbConvolution::workAhead(std::uint64_t pendingSamples) {
    const std::uint64_t share = (pairTermsDue() - pairTermsAtBlock) * pendingSamples / blockSize;
    addPairTermsUpTo(pairTermsAtBlock + share);
}

void ReverbConvolution::pushInput(SampleSpan input) noexcept {
    std::copy_n(inputWindow.get() + blockSize, blockSize, inputWindow.get());
    std::copy_n(input.data, blockSize, inputWindow.get() + blockSize);
    newestSlot = newestSlot + 1 < partitionCount ? newestSlot + 1 : 0;
    transform.forward(inputWindow.get(), inputSpectra.slot(newestSlot).data);
}

ReverbConvolution::EarSums& ReverbConvolution::sumOfNextBlock(SampleSpan input) noexcept {
    addPairTermsUpTo(pairTermsDue());
    pushInput(input);
    EarSums* sums = &present[1];
    if (firstBlockIsNext) {
        std::swap(present, next);
        beginPair(false);
        sums = &present[0];
    } else {
        firstBlockIsNext = true;
        pairTermsAtBlock = pairTermsDone;
    }
    addTerms(*sums, pairTermCount);
    return *sums;
}

void ReverbConvolution::replaceAndDeliver(const SampleBuffer& impulseResponse,
                                          SampleBuffer& output) noexcept {
    replace(impulseResponse);
    beginPair(true);
    clear(present[0]);
    addTerms(present[0], 0);
    deliver(present[0], output);
}

void ReverbConvolution::replace(const SampleBuffer& impulseResponse) noexcept {
    partitions.clear();
    for (std::uint64_t partition = partitionCount; partition-- > 0;) {
        bool silent = true;
        for (std::uint64_t ear = 0; ear < 2; ++ear) {
            const float* const samples = impulseResponse.channelPointers[ear] + partition * blockSize;
            silent = silent && isSilent(samples, blockSize);
            std::copy_n(samples, blockSize, padded.get());
            fft::Complex* const spectrum = (ear == 0 ? leftSpectra : rightSpectra).slot(partition).data;
            transform.forward(padded.get(), spectrum);
            if (bandLimit.limits(partition))
                std::fill(spectrum + bandLimit.keptBins, spectrum + blockSize, fft::Complex{0, 0});
        }
        if (!silent)
            partitions.push_back(partition);
    }
    const auto countFrom = [this](std::uint64_t lowest) {
        return static_cast<std::uint64_t>(std::ranges::count_if(
            partitions, [lowest](std::uint64_t partition) { return partition >= lowest; }));
    };
    unlimitedCount = countFrom(bandLimit.limitedPartitions);
    pairTermCount = countFrom(2);
}

void ReverbConvolution::clear(EarSums& sums) noexcept {
    std::fill_n(sums.left.get(), blockSize + 1, fft::Complex{0, 0});
    std::fill_n(sums.right.get(), blockSize + 1, fft::Complex{0, 0});
}

void ReverbConvolution::beginPair(bool firstIsNext) noexcept {
    firstBlockIsNext = firstIsNext;
    pairTermsDone = 0;
    pairTermsAtBlock = 0;
    for (EarSums& sums : next)
        clear(sums);
}

/// One half with each of the two blocks before the pair. The last term, that of the third partition, needs the input
/// of the second of them; it is never in the first half.
std::uint64_t ReverbConvolution::pairTermsDue() const noexcept {
    return firstBlockIsNext ? pairTermCount : pairTermCount / 2;
}

void ReverbConvolution::addPairTermsUpTo(std::uint64_t end) noexcept {
    // By how many blocks the pair's second block follows the last one that has come in.
    const std::uint64_t ahead = firstBlockIsNext ? 2 : 3;
    while (pairTermsDone < end) {
        const bool limited = pairTermsDone >= unlimitedCount;
        const std::uint64_t stop = limited ? end : std::min(end, unlimitedCount);
        std::uint64_t count = 0;
        for (; pairTermsDone < stop; ++pairTermsDone, ++count) {
            const std::uint64_t partition = partitions[pairTermsDone];
            pairTerms[count] = {inputBack(partition + 1 - ahead), inputBack(partition - ahead),
                                leftSpectra.slot(partition).data, rightSpectra.slot(partition).data};
        }
        kernel.addTermsOfTwoBlocks(next[0].left.get(), next[0].right.get(), next[1].left.get(),
                                   next[1].right.get(), pairTerms.data(), count,
                                   limited ? limitedBins : blockSize + 1);
        for (std::uint64_t i = 0; limited && limitedBins <= blockSize && i < count; ++i) {
            const TwoBlockTerm& term = pairTerms[i];
            addLastBin(next[0], {term.firstInput, term.left, term.right});
            addLastBin(next[1], {term.secondInput, term.left, term.right});
        }
    }
}

void ReverbConvolution::addTerms(EarSums& sums, std::uint64_t firstTerm) noexcept {
    std::uint64_t count = 0;
    for (std::uint64_t i = firstTerm; i < partitions.size(); ++i, ++count)
        terms[count] = {inputBack(partitions[i]), leftSpectra.slot(partitions[i]).data,
                        rightSpectra.slot(partitions[i]).data};
    const std::uint64_t unlimited = unlimitedCount > firstTerm ? unlimitedCount - firstTerm : 0;
    kernel.addTerms(sums.left.get(), sums.right.get(), terms.data(), unlimited, blockSize + 1);
    kernel.addTerms(sums.left.get(), sums.right.get(), terms.data() + unlimited, count - unlimited,
                    limitedBins);
    for (std::uint64_t i = unlimited; limitedBins <= blockSize && i < count; ++i)
        addLastBin(sums, terms[i]);
}

/// The one that the band limit leaves at the upper end.
void ReverbConvolution::addLastBin(EarSums& sums, const SpectrumTerm& term) noexcept {
    complexMultiplyAdd(sums.left.get() + blockSize, term.input + blockSize, term.left + blockSize, 1);
    complexMultiplyAdd(sums.right.get() + blockSize, term.input + blockSize, term.right + blockSize, 1);
}

void ReverbConvolution::deliver(const EarSums& sums, SampleBuffer& output, SampleBuffer* copy) noexcept {
    const SampleSpan validResult{timeResult.get() + blockSize, blockSize};
    for (std::uint64_t ear = 0; ear < 2; ++ear) {
        transform.backward(ear == 0 ? sums.left.get() : sums.right.get(), timeResult.get());
        output.writeChannelScaled(ear, validResult, inverseScale);
        if (copy != nullptr)
            copy->writeChannelScaled(ear, validResult, inverseScale);
    }
}

const fft::Complex* ReverbConvolution::inputBack(std::uint64_t blocks) const noexcept {
    return inputSpectra
        .slot(newestSlot >= blocks ? newestSlot - blocks : newestSlot + partitionCount - blocks)
        .data;
}

} // namespace orvane
