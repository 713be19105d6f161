// SPDX-License-Identifier: GPL-3.0-or-later
// Expected values come from the definition of the transform, summed in double precision.
#include "binaural/fft/AlignedArray.h"
#include "binaural/fft/RealTransform.h"
#include "reference/Dft.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numbers>
#include <thread>
#include <vector>

namespace {

using orvane::fft::Complex;
using orvane::fft::RealTransform;

std::vector<Complex> spectrumOf(RealTransform& transform, const test::Signal& time) {
    std::vector<Complex> spectrum(time.size() / 2 + 1);
    transform.forward(time.data(), spectrum.data());
    return spectrum;
}

/// Rounding error of a fast transform grows with the logarithm of its length; the chirp transform runs two
/// longer ones and two products. 2e-7 is about three units in the last place per stage.
double relativeTolerance(std::size_t length) { return 2e-7 * (2.0 + std::log2(static_cast<double>(length))); }

/// Lengths of both methods; 278, 556 and 1112 are the clarity lengths at 48, 96 and 192 kHz.
class TransformLengths : public ::testing::TestWithParam<std::size_t> {};

INSTANTIATE_TEST_SUITE_P(EvenSmoothOnes, TransformLengths,
                         ::testing::Values(2, 4, 8, 26, 64, 120, 126, 128, 140, 256, 312, 882, 960, 1024,
                                           2002, 4096));
INSTANTIATE_TEST_SUITE_P(OddOnes, TransformLengths, ::testing::Values(1, 3, 5, 13, 21, 45, 143, 997, 4095));
INSTANTIATE_TEST_SUITE_P(OnesWithALargePrimeFactor, TransformLengths,
                         ::testing::Values(34, 38, 254, 278, 556, 1018, 1026, 1112, 2018, 2224, 4054));

TEST_P(TransformLengths, ForwardAgreesWithTheDefinition) {
    const std::size_t length = GetParam();
    const test::Signal time = test::noise(length, test::Seed{11});
    const auto expected = test::reference::dft(time);
    RealTransform transform(length);
    const auto spectrum = spectrumOf(transform, time);
    const double scale = std::sqrt(static_cast<double>(length)); // of a bin of white noise
    for (std::size_t k = 0; k < expected.size(); ++k) {
        const std::complex<double> bin(static_cast<double>(spectrum[k].re),
                                       static_cast<double>(spectrum[k].im));
        ASSERT_LE(std::abs(bin - expected[k]), scale * relativeTolerance(length)) << "bin " << k;
    }
}

TEST_P(TransformLengths, BackwardAgreesWithTheUnscaledDefinition) {
    const std::size_t length = GetParam();
    const test::Signal parts = test::noise(2 * (length / 2 + 1), test::Seed{12});
    std::vector<Complex> spectrum(length / 2 + 1);
    std::vector<std::complex<double>> bins(spectrum.size());
    for (std::size_t k = 0; k < spectrum.size(); ++k) {
        spectrum[k] = {parts[2 * k], parts[2 * k + 1]};
        bins[k] = {static_cast<double>(parts[2 * k]), static_cast<double>(parts[2 * k + 1])};
    }
    const auto expected = test::reference::inverseDft(bins, length);
    RealTransform transform(length);
    test::Signal time(length);
    transform.backward(spectrum.data(), time.data());
    const double scale = std::sqrt(static_cast<double>(length));
    for (std::size_t n = 0; n < length; ++n)
        ASSERT_NEAR(time[n], expected[n], 2.0 * scale * relativeTolerance(length)) << "sample " << n;
}

/// Over all values the errors average out: a rounding of 6e-8 for each of three transforms and products, and
/// little growth with the length.
TEST_P(TransformLengths, TheErrorOfEitherDirectionLies130DecibelsBelowItsResult) {
    const std::size_t length = GetParam();
    const test::Signal input = test::noise(length, test::Seed{19});
    const auto expectedBins = test::reference::dft(input);
    RealTransform transform(length);
    const auto spectrum = spectrumOf(transform, input);
    double error = 0;
    double power = 0;
    std::vector<std::complex<double>> bins(spectrum.size());
    for (std::size_t k = 0; k < spectrum.size(); ++k) {
        bins[k] = {static_cast<double>(spectrum[k].re), static_cast<double>(spectrum[k].im)};
        error += std::norm(bins[k] - expectedBins[k]);
        power += std::norm(expectedBins[k]);
    }
    EXPECT_LE(std::sqrt(error / power), 3e-7) << "forward";

    const auto expectedTime = test::reference::inverseDft(bins, length);
    test::Signal time(length);
    transform.backward(spectrum.data(), time.data());
    error = power = 0;
    for (std::size_t n = 0; n < length; ++n) {
        error += std::pow(static_cast<double>(time[n]) - expectedTime[n], 2);
        power += std::pow(expectedTime[n], 2);
    }
    EXPECT_LE(std::sqrt(error / power), 3e-7) << "backward";
}

TEST_P(TransformLengths, ThereAndBackMultipliesByTheLength) {
    const std::size_t length = GetParam();
    const test::Signal time = test::noise(length, test::Seed{13});
    RealTransform transform(length);
    const auto spectrum = spectrumOf(transform, time);
    test::Signal back(length);
    transform.backward(spectrum.data(), back.data());
    for (float& sample : back)
        sample /= static_cast<float>(length);
    EXPECT_THAT(back,
                test::CloseTo(time, test::Tolerance{static_cast<float>(2.0 * relativeTolerance(length))}));
}

TEST_P(TransformLengths, ADelayedImpulseGivesUnitBinsWhosePhaseTurnsEvenly) {
    const std::size_t length = GetParam();
    const std::size_t delay = length / 3;
    RealTransform transform(length);
    const auto spectrum = spectrumOf(transform, test::impulse(length, test::Position{delay}));
    for (std::size_t k = 0; k < spectrum.size(); ++k) {
        const double turns = static_cast<double>(k * delay % length) / static_cast<double>(length);
        const auto expected = std::polar(1.0, -2.0 * std::numbers::pi * turns);
        ASSERT_NEAR(spectrum[k].re, expected.real(), relativeTolerance(length)) << "bin " << k;
        ASSERT_NEAR(spectrum[k].im, expected.imag(), relativeTolerance(length)) << "bin " << k;
    }
}

TEST_P(TransformLengths, BackwardLeavesItsInputAlone) {
    const std::size_t length = GetParam();
    RealTransform transform(length);
    const auto spectrum = spectrumOf(transform, test::noise(length, test::Seed{14}));
    const std::vector<Complex> before(spectrum.begin(), spectrum.end());
    test::Signal time(length);
    transform.backward(spectrum.data(), time.data());
    for (std::size_t k = 0; k < spectrum.size(); ++k) {
        ASSERT_EQ(spectrum[k].re, before[k].re);
        ASSERT_EQ(spectrum[k].im, before[k].im);
    }
}

TEST_P(TransformLengths, ForwardLeavesItsInputAlone) {
    // On aligned memory, from which the library reads by itself.
    const std::size_t length = GetParam();
    const test::Signal original = test::noise(length, test::Seed{18});
    const auto time = orvane::fft::makeAlignedArray<float>(length);
    const auto spectrum = orvane::fft::makeAlignedArray<Complex>(length / 2 + 1);
    std::copy(original.begin(), original.end(), time.get());
    RealTransform transform(length);
    transform.forward(time.get(), spectrum.get());
    EXPECT_TRUE(std::equal(original.begin(), original.end(), time.get()));
}

TEST_P(TransformLengths, NothingOfAnEarlierRunIsLeft) {
    const std::size_t length = GetParam();
    RealTransform used(length);
    RealTransform fresh(length);
    test::Signal time(length);
    auto spectrum = spectrumOf(used, test::Signal(length, 1e6f));
    used.backward(spectrum.data(), time.data());
    const test::Signal input = test::noise(length, test::Seed{15});
    const auto expected = spectrumOf(fresh, input);
    spectrum = spectrumOf(used, input);
    for (std::size_t k = 0; k < spectrum.size(); ++k) {
        ASSERT_EQ(spectrum[k].re, expected[k].re);
        ASSERT_EQ(spectrum[k].im, expected[k].im);
    }
}

/// Both directions on memory that starts some values behind a cache line.
class Placement {
public:
    Placement(std::size_t transformLength, std::size_t timeOffset, std::size_t spectrumOffset)
        : length(transformLength),
          timeMemory(orvane::fft::makeAlignedArray<float>(length + timeOffset)),
          spectrumMemory(orvane::fft::makeAlignedArray<Complex>(length / 2 + 1 + spectrumOffset)),
          time(timeMemory.get() + timeOffset),
          spectrum(spectrumMemory.get() + spectrumOffset) {}

    /// The bits of the spectrum, then those of the way back.
    std::vector<std::uint32_t> run(RealTransform& transform, const test::Signal& input) {
        std::vector<std::uint32_t> bits;
        std::copy(input.begin(), input.end(), time);
        transform.forward(time, spectrum);
        for (std::size_t k = 0; k < length / 2 + 1; ++k) {
            bits.push_back(std::bit_cast<std::uint32_t>(spectrum[k].re));
            bits.push_back(std::bit_cast<std::uint32_t>(spectrum[k].im));
        }
        transform.backward(spectrum, time);
        append(bits);
        return bits;
    }

private:
    void append(std::vector<std::uint32_t>& bits) const {
        for (std::size_t n = 0; n < length; ++n)
            bits.push_back(std::bit_cast<std::uint32_t>(time[n]));
    }

    std::size_t length;
    orvane::fft::AlignedArray<float> timeMemory;
    orvane::fft::AlignedArray<Complex> spectrumMemory;
    float* time;
    Complex* spectrum;
};

TEST_P(TransformLengths, TheAlignmentOfTheCallersMemoryChangesNoBit) {
    const std::size_t length = GetParam();
    RealTransform transform(length);
    const test::Signal input = test::noise(length, test::Seed{16});
    const auto expected = Placement(length, 0, 0).run(transform, input);
    for (const std::size_t timeOffset : {0u, 1u, 2u, 4u, 8u})
        for (const std::size_t spectrumOffset : {0u, 1u, 2u, 4u})
            ASSERT_EQ(Placement(length, timeOffset, spectrumOffset).run(transform, input), expected)
                << timeOffset << " " << spectrumOffset;
}

/// Runs both directions of one length.
test::RealtimeViolations violationsOf(std::size_t length) {
    RealTransform transform(length);
    test::Signal time(length, 0.5f);
    std::vector<Complex> spectrum(length / 2 + 1);
    const test::RealtimeScope scope;
    transform.forward(time.data(), spectrum.data());
    transform.backward(spectrum.data(), time.data());
    return scope.violations();
}

TEST_P(TransformLengths, RunsWithoutAllocationOrLock) {
    EXPECT_EQ(violationsOf(GetParam()), test::RealtimeViolations{});
}

TEST(RealTransform, RunsEveryShortLengthWithoutAllocationOrLock) {
    for (std::size_t length = 1; length <= 600; ++length)
        ASSERT_EQ(violationsOf(length), test::RealtimeViolations{}) << length;
}

TEST(RealTransform, RunsEveryEvenLengthThatAHostMightAskForWithoutAllocationOrLock) {
    // Transforms are twice a block: all blocks up to 1024, then the usual long ones.
    for (std::size_t block = 1; block <= 1024; ++block)
        ASSERT_EQ(violationsOf(2 * block), test::RealtimeViolations{}) << block;
    for (const std::size_t block :
         {1920u, 2048u, 3000u, 4096u, 4410u, 4800u, 8192u, 16384u, 32768u, 65536u, 8191u, 65521u})
        ASSERT_EQ(violationsOf(2 * block), test::RealtimeViolations{}) << block;
}

TEST(RealTransform, GivesEqualBitsFromObjectToObject) {
    for (const std::size_t length : {278u, 1024u}) {
        const test::Signal input = test::noise(length, test::Seed{17});
        auto first = std::make_unique<RealTransform>(length);
        const auto expected = spectrumOf(*first, input);
        first.reset();
        RealTransform second(length);
        const auto spectrum = spectrumOf(second, input);
        for (std::size_t k = 0; k < spectrum.size(); ++k) {
            ASSERT_EQ(spectrum[k].re, expected[k].re);
            ASSERT_EQ(spectrum[k].im, expected[k].im);
        }
    }
}

TEST(RealTransform, IsMadeAndRunByManyThreadsAtOnce) {
    // Property: the same bits as alone. ThreadSanitizer looks on.
    constexpr std::size_t lengths[]{64, 278, 480, 1018, 1024};
    std::vector<std::vector<Complex>> expected;
    for (const std::size_t length : lengths) {
        RealTransform transform(length);
        expected.push_back(spectrumOf(transform, test::noise(length, test::Seed{18})));
    }
    std::vector<int> differences(4, 0);
    std::vector<std::thread> threads;
    threads.reserve(differences.size());
    for (int& count : differences)
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round)
                for (std::size_t i = 0; i < std::size(lengths); ++i) {
                    RealTransform transform(lengths[i]);
                    const auto spectrum = spectrumOf(transform, test::noise(lengths[i], test::Seed{18}));
                    for (std::size_t k = 0; k < spectrum.size(); ++k)
                        count += spectrum[k].re != expected[i][k].re || spectrum[k].im != expected[i][k].im;
                }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(differences, std::vector<int>(4, 0));
}

TEST(AlignedArray, IsZeroedAndStartsAtACacheLine) {
    for (const std::size_t count : {0u, 1u, 15u, 16u, 17u, 4097u}) {
        const auto array = orvane::fft::makeAlignedArray<float>(count);
        EXPECT_EQ(std::bit_cast<std::uintptr_t>(array.get()) % 64, 0u) << count;
        EXPECT_TRUE(std::all_of(array.get(), array.get() + count, [](float value) { return value == 0.0f; }));
    }
}

} // namespace
