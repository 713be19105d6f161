// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/MultiplyAdd.h"

#include <cstdint>

namespace orvane {

/// The loops that the vector kernels share; each kernel's file brings the vectors.
///
/// Both ears are added while the input's parts are at hand, and `group` terms while the sums are: what
/// remains is bound by the loads of the terms. Per bin the order of terms and of roundings is the plain one.
///
/// Vector must be a type of the including file's unnamed namespace. So are then all functions made from these
/// templates, and the linker cannot put a copy compiled for one processor where another runs it; for the same
/// reason nothing of the standard library is used here but integers.
///
///     Vector::binCount                       complex values of one vector
///     Vector::load(values), store(values, v) aligned to the vector
///     Vector::partsOf(values)                the real parts, twice each, and the imaginary ones, with the
///                                            signs that product() wants
///     Vector::product(parts, v)              complex product, each real operation rounded on its own
///     Vector::sum(v, w)
template <typename Vector>
class MultiplyAddLoops {
public:
    template <std::uint64_t group>
    static void addTerms(fft::Complex* left, fft::Complex* right, const SpectrumTerm* terms,
                         std::uint64_t termCount, std::uint64_t binCount) noexcept {
        std::uint64_t i = 0;
        for (; i + group <= termCount; i += group)
            addGroup<group>(left, right, terms + i, binCount);
        for (; i < termCount; ++i)
            addGroup<1>(left, right, terms + i, binCount);
    }

    template <std::uint64_t group>
    static void addTermsOfTwoBlocks(fft::Complex* firstLeft, fft::Complex* firstRight,
                                    fft::Complex* secondLeft, fft::Complex* secondRight,
                                    const TwoBlockTerm* terms, std::uint64_t termCount,
                                    std::uint64_t binCount) noexcept {
        const Sums first{firstLeft, firstRight};
        const Sums second{secondLeft, secondRight};
        std::uint64_t i = 0;
        for (; i + group <= termCount; i += group)
            addTwoBlockGroup<group>(first, second, terms + i, binCount);
        for (; i < termCount; ++i)
            addTwoBlockGroup<1>(first, second, terms + i, binCount);
    }

private:
    struct Sums {
        fft::Complex* left;
        fft::Complex* right;
    };

    template <std::uint64_t group>
    static void addGroup(fft::Complex* left, fft::Complex* right, const SpectrumTerm* terms,
                         std::uint64_t binCount) noexcept {
        SpectrumTerm own[group]; // the sums' stores might alias the caller's terms, which would be read anew
        for (std::uint64_t t = 0; t < group; ++t)
            own[t] = terms[t];
        for (std::uint64_t k = 0; k < binCount; k += Vector::binCount) {
            auto leftSum = Vector::load(left + k);
            auto rightSum = Vector::load(right + k);
            for (std::uint64_t t = 0; t < group; ++t) {
                const auto input = Vector::partsOf(own[t].input + k);
                leftSum = Vector::sum(leftSum, Vector::product(input, Vector::load(own[t].left + k)));
                rightSum = Vector::sum(rightSum, Vector::product(input, Vector::load(own[t].right + k)));
            }
            Vector::store(left + k, leftSum);
            Vector::store(right + k, rightSum);
        }
    }

    template <std::uint64_t group>
    static void addTwoBlockGroup(Sums first, Sums second, const TwoBlockTerm* terms,
                                 std::uint64_t binCount) noexcept {
        TwoBlockTerm own[group];
        for (std::uint64_t t = 0; t < group; ++t)
            own[t] = terms[t];
        for (std::uint64_t k = 0; k < binCount; k += Vector::binCount) {
            auto firstLeft = Vector::load(first.left + k);
            auto firstRight = Vector::load(first.right + k);
            auto secondLeft = Vector::load(second.left + k);
            auto secondRight = Vector::load(second.right + k);
            for (std::uint64_t t = 0; t < group; ++t) {
                const auto firstInput = Vector::partsOf(own[t].firstInput + k);
                const auto secondInput = Vector::partsOf(own[t].secondInput + k);
                const auto left = Vector::load(own[t].left + k);
                const auto right = Vector::load(own[t].right + k);
                firstLeft = Vector::sum(firstLeft, Vector::product(firstInput, left));
                firstRight = Vector::sum(firstRight, Vector::product(firstInput, right));
                secondLeft = Vector::sum(secondLeft, Vector::product(secondInput, left));
                secondRight = Vector::sum(secondRight, Vector::product(secondInput, right));
            }
            Vector::store(first.left + k, firstLeft);
            Vector::store(first.right + k, firstRight);
            Vector::store(second.left + k, secondLeft);
            Vector::store(second.right + k, secondRight);
        }
    }
};

} // namespace orvane
