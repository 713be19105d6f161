// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/ComplexMultiplyAdd.h"
#include "binaural/MultiplyAddKernels.h"

namespace orvane {

namespace {

void addTerms(fft::Complex* left, fft::Complex* right, const SpectrumTerm* terms, std::uint64_t termCount,
              std::uint64_t binCount) noexcept {
    for (std::uint64_t i = 0; i < termCount; ++i) {
        complexMultiplyAdd(left, terms[i].input, terms[i].left, binCount);
        complexMultiplyAdd(right, terms[i].input, terms[i].right, binCount);
    }
}

void addTermsOfTwoBlocks(fft::Complex* firstLeft, fft::Complex* firstRight, fft::Complex* secondLeft,
                         fft::Complex* secondRight, const TwoBlockTerm* terms, std::uint64_t termCount,
                         std::uint64_t binCount) noexcept {
    for (std::uint64_t i = 0; i < termCount; ++i) {
        complexMultiplyAdd(firstLeft, terms[i].firstInput, terms[i].left, binCount);
        complexMultiplyAdd(firstRight, terms[i].firstInput, terms[i].right, binCount);
        complexMultiplyAdd(secondLeft, terms[i].secondInput, terms[i].left, binCount);
        complexMultiplyAdd(secondRight, terms[i].secondInput, terms[i].right, binCount);
    }
}

} // namespace

const MultiplyAddKernel scalarMultiplyAdd{addTerms, addTermsOfTwoBlocks};

} // namespace orvane
