// SPDX-License-Identifier: GPL-3.0-or-later
// The vector loops; that they are right is seen in the whole transform.
#include "binaural/fft/HalfLength.h"

#include "base/InstructionSet.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

using orvane::InstructionSet;
using orvane::fft::Complex;
using orvane::fft::HalfLength;

constexpr float untouched = 7.0f;

/// Noise in the first `count` values and something known behind them.
std::vector<Complex> noiseValues(std::size_t count, std::uint32_t seed) {
    const test::Signal parts = test::noise(2 * count, test::Seed{seed});
    std::vector<Complex> values(count + 8, Complex{untouched, untouched});
    for (std::size_t k = 0; k < count; ++k)
        values[k] = {parts[2 * k], parts[2 * k + 1]};
    return values;
}

std::vector<std::uint64_t> bitsOf(const std::vector<Complex>& values) {
    std::vector<std::uint64_t> bits;
    bits.reserve(values.size());
    for (const Complex value : values)
        bits.push_back(std::bit_cast<std::uint64_t>(value));
    return bits;
}

/// Every half length with all remainders of the vectors, and those that are in use.
std::vector<std::size_t> halves() {
    std::vector<std::size_t> all{128, 139, 441, 512, 513, 1009, 2048};
    for (std::size_t half = 1; half <= 67; ++half)
        all.push_back(half);
    return all;
}

class InstructionSets : public ::testing::TestWithParam<InstructionSet> {};

/// Null test against the scalar set.
TEST_P(InstructionSets, GiveEqualBitsAndTouchNothingBehind) {
    for (const std::size_t half : halves()) {
        SCOPED_TRACE(half);
        const HalfLength plain(half, InstructionSet::scalar);
        const HalfLength tried(half, GetParam());
        const std::vector<Complex> input = noiseValues(half + 1, 1);
        std::vector<Complex> expected(half + 9, Complex{untouched, untouched});
        std::vector<Complex> output = expected;
        plain.takeApart(input.data(), expected.data());
        tried.takeApart(input.data(), output.data());
        ASSERT_EQ(bitsOf(output), bitsOf(expected));
        ASSERT_EQ(output[half + 1].re, untouched);
        plain.putTogether(input.data(), expected.data());
        tried.putTogether(input.data(), output.data());
        ASSERT_EQ(bitsOf(output), bitsOf(expected));
    }
}

TEST_P(InstructionSets, TakeASpectrumApartInPlace) {
    for (const std::size_t half : halves()) {
        SCOPED_TRACE(half);
        const HalfLength tried(half, GetParam());
        std::vector<Complex> values = noiseValues(half, 2);
        std::vector<Complex> expected = values;
        tried.takeApart(values.data(), expected.data());
        tried.takeApart(values.data(), values.data());
        ASSERT_EQ(bitsOf(values), bitsOf(expected));
    }
}

/// Property: the spectrum of what was put together is the one that was there, twice, within rounding.
TEST_P(InstructionSets, PutTogetherWhatTheyTakeApart) {
    for (const std::size_t half : halves()) {
        SCOPED_TRACE(half);
        const HalfLength tried(half, GetParam());
        std::vector<Complex> values = noiseValues(half, 3);
        std::vector<Complex> spectrum(half + 1);
        std::vector<Complex> back(half);
        tried.takeApart(values.data(), spectrum.data());
        tried.putTogether(spectrum.data(), back.data());
        for (std::size_t k = 0; k < half; ++k) {
            ASSERT_NEAR(back[k].re, 2.0f * values[k].re, 4e-6f) << k;
            ASSERT_NEAR(back[k].im, 2.0f * values[k].im, 4e-6f) << k;
        }
    }
}
INSTANTIATE_TEST_SUITE_P(ThatTheProcessorHas, InstructionSets,
                         ::testing::ValuesIn(orvane::supportedInstructionSets().begin(),
                                             orvane::supportedInstructionSets().end()));

} // namespace
