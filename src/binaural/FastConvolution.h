// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/IConvolution.h"
#include "binaural/MultiplyAdd.h"
#include "binaural/PartitionedResponse.h"
#include "binaural/fft/AlignedArray.h"
#include "binaural/fft/Complex.h"
#include "binaural/fft/RealTransform.h"

#include <cstdint>
#include <vector>

namespace orvane {

/// The same as Convolution, bit for bit as long as the spectra stay finite, without the work whose result is
/// known:
///
/// - A replacement transforms only the partitions that differ from those in place. If none does, there is no
///   second pass.
/// - Both ears are summed in one walk over the input's spectra, past the partitions that are silent in both.
/// - Sums run from the oldest input on, so those of an old and a new response are one up to the first slot that
///   differs.
///
/// Leaving out silent partitions changes no bit: their products are zeros of either sign, and a sum that starts
/// at +0 never becomes -0 (in rounding to nearest, only -0 + -0 does), so each of them adds nothing. A thread
/// that flushes denormals can make -0 of a sum below 1.2e-38; there the sign of a zero may differ.
///
/// Input that is not finite is heard for as many blocks as without all this, or fewer, where it meets silent
/// partitions only. Without flushing, denormal input costs what denormal arithmetic costs the processor.
///
/// Thread  as IConvolution.
class FastConvolution final : public IConvolution {
public:
    FastConvolution(double sampleRate, std::uint64_t blockSize, std::uint64_t partitionCount,
                    std::int32_t bandLimitFactor, InstructionSet instructionSet);

    void process(SampleSpan input, SampleBuffer& output, const SampleBuffer& impulseResponse,
                 bool updateResponse) ORVANE_REALTIME override;
    void processCrossfaded(SampleSpan input, SampleBuffer& oldOutput, SampleBuffer& newOutput,
                           const SampleBuffer& impulseResponse, bool updateResponse) ORVANE_REALTIME override;

    void prepare(const SampleBuffer& impulseResponse) override;
    void workAhead(std::uint64_t /*pendingSamples*/) ORVANE_REALTIME override {}
    float outputGain() const noexcept ORVANE_REALTIME override { return gain; }

private:
    using Sums = fft::AlignedArray<fft::Complex>; ///< [2][slotStride], left and right.

    void pushInput(SampleSpan input) noexcept ORVANE_REALTIME;
    void replaceFrom(std::uint64_t firstSlot, const SampleBuffer& impulseResponse) noexcept ORVANE_REALTIME;
    void aimTerms() noexcept ORVANE_REALTIME;
    std::uint64_t termsBefore(std::uint64_t slot) const noexcept ORVANE_REALTIME;
    void addTerms(Sums& sums, std::uint64_t first, std::uint64_t last) noexcept ORVANE_REALTIME;
    SampleSpan transformBack(Sums& sums, std::uint64_t ear) noexcept ORVANE_REALTIME;

    std::uint64_t blockSize;
    std::uint64_t partitionCount;
    std::uint64_t slotStride;     ///< Complex values from one spectrum to the next.
    float inverseScale;           ///< Undoes the transforms' common factor of 2 * blockSize.
    float gain;                   ///< See convolutionGain().
    std::uint64_t writeIndex = 0; ///< Slot of the next input spectrum; afterwards that of the oldest.
    std::uint64_t termCount = 0;  ///< Slots of the response that are not silent.
    MultiplyAddKernel kernel;
    PartitionedResponse response;
    fft::AlignedArray<fft::Complex> inputSpectra; ///< [partitionCount][slotStride]
    std::vector<SpectrumTerm> terms;      ///< [partitionCount], termCount of them in use, oldest first.
    std::vector<std::uint64_t> termSlots; ///< [partitionCount] Response slot of each term.
    fft::AlignedArray<float> inputWindow; ///< [2 * blockSize], the last two input blocks.
    fft::AlignedArray<float> timeResult;  ///< [2 * blockSize]
    Sums presentSums;
    Sums nextSums;                ///< Of the response that replaces the present one.
    fft::RealTransform transform; ///< Length 2 * blockSize.
};

} // namespace orvane
