// SPDX-License-Identifier: GPL-3.0-or-later
// Null tests: every instruction set gives the bits of the plain loop over complexMultiplyAdd().
#include "binaural/MultiplyAdd.h"

#include "base/InstructionSet.h"
#include "binaural/ComplexBlock.h"
#include "binaural/ComplexMultiplyAdd.h"
#include "binaural/PartitionedSpectrum.h"
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using orvane::InstructionSet;
using orvane::PartitionedSpectrum;
using orvane::SpectrumTerm;
using orvane::TwoBlockTerm;
using orvane::fft::Complex;

using Numbers = std::function<float(std::mt19937&)>;

float ordinary(std::mt19937& random) { return static_cast<float>(random() >> 8) / 8388608.0f - 1.0f; }

/// Products and sums that underflow, vanish or cancel: denormals, signed zeros, halves of a last place.
float awkward(std::mt19937& random) {
    constexpr float denormal = std::numeric_limits<float>::denorm_min();
    constexpr std::array<float, 14> values{0.0f,           -0.0f,     denormal,  -denormal,   9 * denormal,
                                           0x1p-126f,      -0x1p-75f, 0x1p-74f,  1.0f,        -1.0f,
                                           1.0f + 0x1p-23, 0x1p-24f,  -0x1p-12f, 1 + 0x1p-12f};
    return values[random() % values.size()];
}

/// Spectra of one kind of sums or terms, with zeros behind their bins.
class Spectra {
public:
    Spectra(std::uint64_t count, std::uint64_t bins, const Numbers& numbers, std::mt19937& random)
        : values(count, std::max<std::uint64_t>(bins, 1) - 1) {
        for (std::uint64_t index = 0; index < count; ++index)
            for (std::uint64_t k = 0; k < bins; ++k)
                (*this)[index][k] = {numbers(random), numbers(random)};
    }

    Complex* operator[](std::uint64_t index) { return values.slot(index).data; }

    /// The bits of all bins and of the zeros up to the next spectrum.
    std::vector<std::uint64_t> bits(std::uint64_t index) {
        std::vector<std::uint64_t> all(PartitionedSpectrum::slotStride(values.slot(index).count - 1));
        for (std::uint64_t k = 0; k < all.size(); ++k)
            all[k] = std::bit_cast<std::uint64_t>((*this)[index][k]);
        return all;
    }

private:
    PartitionedSpectrum values;
};

class EveryInstructionSet : public ::testing::TestWithParam<InstructionSet> {
protected:
    const orvane::MultiplyAddKernel& kernel = orvane::multiplyAddKernel(GetParam());

    void expectTheBitsOfThePlainLoop(std::uint64_t termCount, std::uint64_t bins, const Numbers& numbers);
    void expectTheBitsOfTwoPlainLoops(std::uint64_t termCount, std::uint64_t bins, const Numbers& numbers);
};

constexpr std::uint32_t seedOf(std::uint64_t termCount, std::uint64_t bins) {
    return static_cast<std::uint32_t>(100 * bins + termCount);
}

void EveryInstructionSet::expectTheBitsOfThePlainLoop(std::uint64_t termCount, std::uint64_t bins,
                                                      const Numbers& numbers) {
    std::mt19937 random(seedOf(termCount, bins));
    Spectra inputs(termCount + 1, bins, numbers, random);
    Spectra responses(2 * termCount + 1, bins, numbers, random);
    std::mt19937 again = random;
    Spectra sums(3, bins, numbers, random); // left, right, and one behind that must not change
    Spectra expected(3, bins, numbers, again);
    std::vector<SpectrumTerm> terms(termCount);
    for (std::uint64_t i = 0; i < termCount; ++i) {
        terms[i] = {inputs[i], responses[2 * i], responses[2 * i + 1]};
        orvane::complexMultiplyAdd(expected[0], inputs[i], responses[2 * i], bins);
        orvane::complexMultiplyAdd(expected[1], inputs[i], responses[2 * i + 1], bins);
    }
    kernel.addTerms(sums[0], sums[1], terms.data(), termCount, bins);
    for (std::uint64_t index = 0; index < 3; ++index)
        ASSERT_EQ(sums.bits(index), expected.bits(index)) << termCount << " terms of " << bins << " bins";
}

void EveryInstructionSet::expectTheBitsOfTwoPlainLoops(std::uint64_t termCount, std::uint64_t bins,
                                                       const Numbers& numbers) {
    std::mt19937 random(seedOf(termCount, bins));
    Spectra inputs(termCount + 1, bins, numbers, random);
    Spectra responses(2 * termCount + 1, bins, numbers, random);
    std::mt19937 again = random;
    Spectra sums(5, bins, numbers, random);
    Spectra expected(5, bins, numbers, again);
    std::vector<TwoBlockTerm> terms(termCount);
    for (std::uint64_t i = 0; i < termCount; ++i) {
        // The second block meets the same partition with the next input.
        terms[i] = {inputs[i], inputs[i + 1], responses[2 * i], responses[2 * i + 1]};
        for (std::uint64_t block = 0; block < 2; ++block)
            for (std::uint64_t ear = 0; ear < 2; ++ear)
                orvane::complexMultiplyAdd(expected[2 * block + ear], inputs[i + block],
                                           responses[2 * i + ear], bins);
    }
    kernel.addTermsOfTwoBlocks(sums[0], sums[1], sums[2], sums[3], terms.data(), termCount, bins);
    for (std::uint64_t index = 0; index < 5; ++index)
        ASSERT_EQ(sums.bits(index), expected.bits(index)) << termCount << " terms of " << bins << " bins";
}

TEST_P(EveryInstructionSet, AddsTermsWithTheBitsOfThePlainLoopAndLeavesZerosBehindTheBins) {
    for (std::uint64_t bins = 0; bins <= 67; ++bins)
        for (std::uint64_t termCount = 0; termCount <= 9; ++termCount)
            expectTheBitsOfThePlainLoop(termCount, bins, ordinary);
}

TEST_P(EveryInstructionSet, AddsTermsOfTwoBlocksWithTheBitsOfTwoPlainLoops) {
    for (std::uint64_t bins = 0; bins <= 67; ++bins)
        for (std::uint64_t termCount = 0; termCount <= 9; ++termCount)
            expectTheBitsOfTwoPlainLoops(termCount, bins, ordinary);
}

TEST_P(EveryInstructionSet, TreatsDenormalsSignedZerosAndHalvesOfTheLastPlaceAsThePlainLoop) {
    for (std::uint64_t bins = 0; bins <= 67; ++bins)
        for (std::uint64_t termCount = 0; termCount <= 9; ++termCount) {
            expectTheBitsOfThePlainLoop(termCount, bins, awkward);
            expectTheBitsOfTwoPlainLoops(termCount, bins, awkward);
        }
}

TEST_P(EveryInstructionSet, KeepsTheBitsOverTheTermsOfALongReverb) {
    expectTheBitsOfThePlainLoop(431, 513, ordinary);
    expectTheBitsOfTwoPlainLoops(431, 513, ordinary);
}

TEST_P(EveryInstructionSet, NeitherAllocatesNorLocks) {
    orvane::ComplexBlock sums[4]{orvane::ComplexBlock(65), orvane::ComplexBlock(65), orvane::ComplexBlock(65),
                                 orvane::ComplexBlock(65)};
    const orvane::ComplexBlock read(65);
    const SpectrumTerm term{read.data, read.data, read.data};
    const TwoBlockTerm twoBlockTerm{read.data, read.data, read.data, read.data};
    const test::RealtimeScope scope;
    kernel.addTerms(sums[0].data, sums[1].data, &term, 1, 65);
    kernel.addTermsOfTwoBlocks(sums[0].data, sums[1].data, sums[2].data, sums[3].data, &twoBlockTerm, 1, 65);
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
}

std::string nameOf(const ::testing::TestParamInfo<InstructionSet>& info) {
    constexpr std::array<const char*, 4> names{"Scalar", "Sse2", "Avx", "Avx512"};
    return names.at(static_cast<std::size_t>(info.param));
}

INSTANTIATE_TEST_SUITE_P(ThatTheProcessorHas, EveryInstructionSet,
                         ::testing::ValuesIn(orvane::supportedInstructionSets().begin(),
                                             orvane::supportedInstructionSets().end()),
                         nameOf);

TEST(InstructionSets, RiseFromTheScalarOneToTheBest) {
    const auto sets = orvane::supportedInstructionSets();
    ASSERT_GE(sets.size(), 2u) << "SSE2 belongs to every 64-bit processor";
    EXPECT_EQ(sets.front(), InstructionSet::scalar);
    EXPECT_TRUE(std::is_sorted(sets.begin(), sets.end()));
    EXPECT_EQ(sets.back(), orvane::bestInstructionSet());
}

} // namespace
