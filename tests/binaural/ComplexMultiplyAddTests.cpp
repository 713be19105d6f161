// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/ComplexMultiplyAdd.h"

#include "binaural/ComplexBlock.h"
#include "binaural/PartitionedSpectrum.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <bit>
#include <complex>
#include <cstdint>
#include <vector>

namespace {

using orvane::fft::Complex;

std::vector<Complex> complexNoise(std::size_t count, test::Seed seed) {
    const test::Signal parts = test::noise(2 * count, seed);
    std::vector<Complex> values(count);
    for (std::size_t k = 0; k < count; ++k)
        values[k] = {parts[2 * k], parts[2 * k + 1]};
    return values;
}

/// Reference: the standard library's complex product in double precision.
TEST(ComplexMultiplyAdd, AddsThePlainProductForEveryLengthAndAlignmentAndNothingBehindTheEnd) {
    for (std::size_t count = 0; count <= 67; ++count)
        for (std::size_t offset = 0; offset < 4; ++offset) {
            const auto a = complexNoise(count + offset + 1, test::Seed{1});
            const auto b = complexNoise(count + offset + 1, test::Seed{2});
            const auto before = complexNoise(count + offset + 1, test::Seed{3});
            auto sum = before;
            orvane::complexMultiplyAdd(sum.data() + offset, a.data() + offset, b.data() + offset, count);
            for (std::size_t k = 0; k < sum.size(); ++k) {
                const auto wide = [k](const std::vector<Complex>& values) {
                    return std::complex<double>(static_cast<double>(values[k].re),
                                                static_cast<double>(values[k].im));
                };
                const bool touched = k >= offset && k < offset + count;
                const auto expected = wide(before) + (touched ? wide(a) * wide(b) : 0.0);
                // Three roundings of values below 3.
                ASSERT_NEAR(sum[k].re, expected.real(), touched ? 5e-7 : 0.0)
                    << count << " " << offset << " " << k;
                ASSERT_NEAR(sum[k].im, expected.imag(), touched ? 5e-7 : 0.0)
                    << count << " " << offset << " " << k;
            }
        }
}

TEST(ComplexMultiplyAdd, RoundsEveryOperationOnItsOwn) {
    // (1 + e)^2 = 1 + 2 e + e^2 loses e^2 when the product is rounded before the difference is taken; a fused
    // operation would keep it. e = 2^-12: e^2 = 2^-24 is half a unit in the last place of 1.
    constexpr float e = 0x1p-12f;
    Complex sum{0, 0};
    const Complex a{1 + e, 1 + 2 * e};
    const Complex b{1 + e, 1};
    orvane::complexMultiplyAdd(&sum, &a, &b, 1);
    EXPECT_EQ(sum.re, 0.0f); // fl((1 + e)^2) = 1 + 2 e, minus 1 + 2 e
}

TEST(ComplexBlock, OwnsZeroedAlignedValuesUnlessItIsAView) {
    orvane::ComplexBlock owner(33);
    EXPECT_TRUE(owner.ownsData());
    EXPECT_EQ(owner.count, 33u);
    EXPECT_EQ(std::bit_cast<std::uintptr_t>(owner.data) % 64, 0u);
    for (std::uint64_t k = 0; k < owner.count; ++k) {
        EXPECT_EQ(owner.data[k].re, 0.0f);
        EXPECT_EQ(owner.data[k].im, 0.0f);
    }
    orvane::ComplexBlock view(owner.data + 1, 2);
    EXPECT_FALSE(view.ownsData());
    view.data[1] = {3, 4};
    EXPECT_EQ(owner.data[2].im, 4.0f);
    view.clear();
    EXPECT_EQ(owner.data[2].im, 0.0f);
}

TEST(PartitionedSpectrum, LaysZeroedAlignedSlotsOfOneMoreBinThanTheBlockBehindEachOther) {
    orvane::PartitionedSpectrum spectrum(3, 10);
    ASSERT_EQ(spectrum.slotCount(), 3u);
    for (std::uint64_t slot = 0; slot < 3; ++slot) {
        EXPECT_EQ(spectrum.slot(slot).count, 11u);
        EXPECT_FALSE(spectrum.slot(slot).ownsData());
        EXPECT_EQ(spectrum.slot(slot).data, spectrum.slot(0).data + slot * 16); // 11, in whole cache lines
        EXPECT_EQ(std::bit_cast<std::uintptr_t>(spectrum.slot(slot).data) % 64, 0u);
        for (std::uint64_t k = 0; k < 11; ++k)
            EXPECT_EQ(spectrum.slot(slot).data[k].re, 0.0f);
    }
}

} // namespace
