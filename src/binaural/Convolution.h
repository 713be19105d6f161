// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/SampleBuffer.h"
#include "binaural/ComplexBlock.h"
#include "binaural/IConvolution.h"
#include "binaural/PartitionedSpectrum.h"
#include "binaural/fft/RealTransform.h"

#include <cstdint>

namespace orvane {

/// Uniformly partitioned overlap-save convolution with a frequency-domain delay line. One partition is one
/// block, so the convolver adds no latency.
///
///     input block --> inputWindow (last two blocks) --FFT--> slot writeIndex of inputSpectra
///     accumulator = sum over k of inputSpectra[writeIndex + k] * response slot k
///     accumulator --inverse FFT--> timeResult, of which the second half is the block's output
///
/// Response slots run from the last partition to the first, so the oldest input meets the last one.
/// A replacement leaves the input history alone, so the new response at once acts on all past blocks;
/// continuity is the owner's crossfade.
///
/// Source  overlap-save with a frequency-domain delay line: G. Garcia, "Optimal filter partition for
///         efficient convolution with short input/output delay", AES Convention 113, 2002.
class Convolution final : public IConvolution {
public:
    Convolution(double sampleRate, std::uint64_t blockSize, std::uint64_t partitionCount,
                std::int32_t bandLimitFactor);

    void process(SampleSpan input, SampleBuffer& output, const SampleBuffer& impulseResponse,
                 bool updateResponse) ORVANE_REALTIME override;
    void processCrossfaded(SampleSpan input, SampleBuffer& oldOutput, SampleBuffer& newOutput,
                           const SampleBuffer& impulseResponse, bool updateResponse) ORVANE_REALTIME override;

    void prepare(const SampleBuffer& impulseResponse) override;
    void workAhead(std::uint64_t /*pendingSamples*/) ORVANE_REALTIME override {}

    float outputGain() const noexcept ORVANE_REALTIME override { return gain; }

private:
    void pushInput(SampleSpan input) noexcept ORVANE_REALTIME;
    SampleSpan convolve(const PartitionedSpectrum& response) noexcept ORVANE_REALTIME;
    void prepareSpectra(PartitionedSpectrum& response, const float* samples) noexcept ORVANE_REALTIME;

    std::uint64_t blockSize;
    std::uint64_t partitionCount;
    std::uint64_t keptBins;       ///< Low bins of a partition that the band limit leaves.
    float inverseScale;           ///< Undoes the transforms' common factor of 2 * blockSize.
    float gain;                   ///< See convolutionGain().
    std::uint64_t writeIndex = 0; ///< Slot of the next input spectrum; afterwards that of the oldest.
    PartitionedSpectrum inputSpectra;
    PartitionedSpectrum leftSpectra;  ///< Partition j of the response lies in slot partitionCount - 1 - j.
    PartitionedSpectrum rightSpectra; ///< As the left one.
    SampleBuffer partitionScratch; ///< [1][2 * blockSize], upper half always zero: the transform's padding.
    SampleBuffer inputWindow;      ///< [1][2 * blockSize], the last two input blocks.
    SampleBuffer timeResult;       ///< [1][2 * blockSize]
    SampleSpan partition;          ///< All of `partitionScratch`.
    SampleSpan window;             ///< All of `inputWindow`.
    SampleSpan result;             ///< All of `timeResult`.
    SampleSpan validResult;        ///< The half of `timeResult` that no circular wrap has reached.
    ComplexBlock accumulator;      ///< [blockSize + 1]
    fft::RealTransform transform;  ///< Length 2 * blockSize.
};

} // namespace orvane
