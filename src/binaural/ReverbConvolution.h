// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/SampleSpan.h"
#include "binaural/BandLimit.h"
#include "binaural/IConvolution.h"
#include "binaural/MultiplyAdd.h"
#include "binaural/PartitionedSpectrum.h"
#include "binaural/fft/AlignedArray.h"
#include "binaural/fft/RealTransform.h"

#include <array>
#include <cstdint>
#include <vector>

namespace orvane {

/// The same as Convolution, bit for bit as long as the spectra stay finite, for a response that seldom changes:
/// most of a block's sum is there before the block is.
///
/// Sums run from the oldest input to the newest. All terms but the newest of a block, and all but the two newest
/// of the block behind it, are known beforehand, so blocks go in pairs: the terms of both from the last partition
/// down to the third are added in one walk over the response, in the time of the two blocks before.
///
///     delivered      2n-2          2n-1          2n           2n+1
///     terms of pair n   first half    the rest      + partitions 1, 0 on the blocks
///
/// Partitions that are all zeros are left out: their products are zeros of either sign, and a sum that starts at
/// +0 never becomes -0, so adding them changes nothing. So are the bins that the band limit has cleared.
///
/// Input that is not finite is heard for as many blocks as through Convolution, or fewer.
///
/// Thread  as IConvolution.
class ReverbConvolution final : public IConvolution {
public:
    /// Units   sampleRate in hertz, blockSize in samples, 1 or more; partitionCount 1 or more.
    ReverbConvolution(double sampleRate, std::uint64_t blockSize, std::uint64_t partitionCount,
                      const BandLimit& bandLimit, InstructionSet instructionSet);

    void process(SampleSpan input, SampleBuffer& output, const SampleBuffer& impulseResponse,
                 bool updateResponse) ORVANE_REALTIME override;
    void processCrossfaded(SampleSpan input, SampleBuffer& oldOutput, SampleBuffer& newOutput,
                           const SampleBuffer& impulseResponse, bool updateResponse) ORVANE_REALTIME override;
    void prepare(const SampleBuffer& impulseResponse) override;
    void workAhead(std::uint64_t pendingSamples) ORVANE_REALTIME override;
    float outputGain() const noexcept ORVANE_REALTIME override { return gain; }

private:
    using Sum = fft::AlignedArray<fft::Complex>; ///< [blockSize + 1]
    struct EarSums {
        Sum left;
        Sum right;
    };
    using PairSums = std::array<EarSums, 2>; ///< Of a pair's first and second block.

    void pushInput(SampleSpan input) noexcept ORVANE_REALTIME;
    EarSums& sumOfNextBlock(SampleSpan input) noexcept ORVANE_REALTIME;
    void replaceAndDeliver(const SampleBuffer& impulseResponse,
                           SampleBuffer& output) noexcept ORVANE_REALTIME;
    void replace(const SampleBuffer& impulseResponse) noexcept ORVANE_REALTIME;
    void beginPair(bool firstIsNext) noexcept ORVANE_REALTIME;
    std::uint64_t pairTermsDue() const noexcept ORVANE_REALTIME;
    void addPairTermsUpTo(std::uint64_t end) noexcept ORVANE_REALTIME;
    void addTerms(EarSums& sums, std::uint64_t firstTerm) noexcept ORVANE_REALTIME;
    void addLastBin(EarSums& sums, const SpectrumTerm& term) noexcept ORVANE_REALTIME;
    void deliver(const EarSums& sums, SampleBuffer& output,
                 SampleBuffer* copy = nullptr) noexcept ORVANE_REALTIME;
    void clear(EarSums& sums) noexcept ORVANE_REALTIME;
    const fft::Complex* inputBack(std::uint64_t blocks) const noexcept ORVANE_REALTIME;
    EarSums makeSums() const;

    std::uint64_t blockSize;
    std::uint64_t partitionCount;
    BandLimit bandLimit;
    std::uint64_t limitedBins; ///< That are added of a limited partition, if not all, besides the last one.
    float inverseScale;        ///< Undoes the transforms' common factor of 2 * blockSize.
    float gain;                ///< See convolutionGain().
    std::uint64_t newestSlot = 0; ///< Of the last block's spectrum.
    const MultiplyAddKernel& kernel;
    PartitionedSpectrum inputSpectra;
    PartitionedSpectrum leftSpectra;       ///< By partition.
    PartitionedSpectrum rightSpectra;      ///< By partition.
    std::vector<std::uint64_t> partitions; ///< Those that are not all zeros, last one first.
    std::uint64_t unlimitedCount = 0;      ///< Leading ones of `partitions` that keep all bins.
    std::uint64_t pairTermCount = 0;       ///< Leading ones of `partitions` from the third one on.
    std::vector<SpectrumTerm> terms;
    std::vector<TwoBlockTerm> pairTerms;
    PairSums present; ///< Of the pair that is being delivered.
    PairSums next;    ///< Of the pair behind it, growing.
    bool firstBlockIsNext = true;
    std::uint64_t pairTermsDone = 0;
    std::uint64_t pairTermsAtBlock = 0;   ///< Those done when the last block was delivered.
    fft::AlignedArray<float> inputWindow; ///< [2 * blockSize], the last two input blocks.
    fft::AlignedArray<float> padded;      ///< [2 * blockSize], a partition and zeros.
    fft::AlignedArray<float> timeResult;  ///< [2 * blockSize]
    fft::RealTransform transform;         ///< Length 2 * blockSize.
};

} // namespace orvane
