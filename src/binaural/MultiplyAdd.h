// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/InstructionSet.h"
#include "base/Realtime.h"
#include "binaural/fft/Complex.h"

#include <cstdint>

namespace orvane {

/// One term of a convolution's sum: an input spectrum and the partition of either ear's response that it meets.
///
/// Shape   each [bins], 64-byte aligned, as far as the end of the last cache line (see MultiplyAddKernel).
struct SpectrumTerm {
    const fft::Complex* input;
    const fft::Complex* left;
    const fft::Complex* right;
};

/// As a term, for the sums of two successive blocks: the response is read once for both.
struct TwoBlockTerm {
    const fft::Complex* firstInput;
    const fft::Complex* secondInput;
    const fft::Complex* left;
    const fft::Complex* right;
};

/// The inner loops of convolution for one instruction set. Per bin they add the terms in their order, each
/// product and sum rounded as complexMultiplyAdd() does: all sets give the same bits.
///
/// Shape   left, right and their like [binCount], 64-byte aligned, added to; terms [termCount]. Sums overlap
///         nothing that is read. All memory reaches to the end of the cache line that holds the last bin, as
///         blocks and slots do: what lies behind the bins may be read, and in the sums be added to. Zeros, as
///         made, stay zeros there.
struct MultiplyAddKernel {
    void (*addTerms)(fft::Complex* left, fft::Complex* right, const SpectrumTerm* terms,
                     std::uint64_t termCount, std::uint64_t binCount) noexcept;
    void (*addTermsOfTwoBlocks)(fft::Complex* firstLeft, fft::Complex* firstRight, fft::Complex* secondLeft,
                                fft::Complex* secondRight, const TwoBlockTerm* terms, std::uint64_t termCount,
                                std::uint64_t binCount) noexcept;
};

/// @param set one of supportedInstructionSets().
const MultiplyAddKernel& multiplyAddKernel(InstructionSet set) noexcept;

} // namespace orvane
