// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"
#include "binaural/ClarityProcessor.h"
#include "binaural/PartitionedSpectrum.h"
#include "binaural/RmsSpectrumFactory.h"
#include "reference/Dft.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <tuple>
#include <vector>

namespace {

using orvane::ClarityProcessor;
using orvane::SampleBuffer;
using test::Signal;

constexpr double weightLimit = 17.782794100389228; // 25 dB
constexpr double outputLevel = 0.875;

/// One response drawn through the stage, and the spectra before and after over twice its length.
class Clarity {
public:
    explicit Clarity(std::uint64_t samples, std::uint64_t bufferLength)
        : length(samples), buffer(2, bufferLength), processor(samples, &amount, &factory) {}

    void process() {
        before.assign({spectrum(0, length), spectrum(1, length)});
        processor.process(buffer);
        after.assign({spectrum(0, 2 * length), spectrum(1, 2 * length)});
    }

    double weight(std::uint64_t bin) const {
        const double rms = std::sqrt((std::norm(before[0][bin]) + std::norm(before[1][bin])) / 2.0);
        return std::min(std::pow(rms, -static_cast<double>(amount)), weightLimit);
    }

    std::vector<std::complex<double>> spectrum(std::uint64_t channel, std::uint64_t count) const {
        Signal padded(2 * length, 0.0f);
        std::copy_n(buffer.channelPointers[channel], count, padded.begin());
        return test::reference::dft(padded);
    }

    std::uint64_t length;
    float amount = 0;
    SampleBuffer buffer;
    std::vector<std::vector<std::complex<double>>> before; ///< [ear][bin]
    std::vector<std::vector<std::complex<double>>> after;  ///< [ear][bin]

private:
    orvane::RmsSpectrumFactory factory;

public:
    ClarityProcessor processor;
};

void fillWithNoise(SampleBuffer& buffer, std::uint64_t length, std::uint32_t seed) {
    for (std::uint64_t channel = 0; channel < 2; ++channel) {
        const Signal signal = test::noise(length, test::Seed{seed + static_cast<std::uint32_t>(channel)});
        for (std::uint64_t i = 0; i < length; ++i)
            buffer.channelPointers[channel][i] =
                signal[i] * std::exp(-4.0f * static_cast<float>(i) / static_cast<float>(length));
    }
}

class ClarityAmounts : public ::testing::TestWithParam<std::tuple<float, std::uint64_t>> {};

/// Slow reference: the weighting in double precision on the spectrum by its definition.
TEST_P(ClarityAmounts, EveryBinOfBothEarsIsWeightedByThePowerOfTheirCommonMagnitude) {
    const auto [amount, length] = GetParam();
    Clarity clarity(length, 2 * length);
    clarity.amount = amount;
    fillWithNoise(clarity.buffer, length, 1);
    clarity.process();
    for (std::uint64_t ear = 0; ear < 2; ++ear) {
        for (std::uint64_t k = 0; k < length; ++k) {
            const auto expected = outputLevel * clarity.weight(k) * clarity.before[ear][k];
            // The transform's rounding, of bins around 4, amplified by the weight.
            ASSERT_NEAR(std::abs(clarity.after[ear][k] - expected), 0.0,
                        2e-5 * std::max(1.0, clarity.weight(k)))
                << "ear " << ear << " bin " << k;
        }
        EXPECT_NEAR(std::abs(clarity.after[ear][length]), 0.0, 2e-5)
            << "the bin at Nyquist is always removed";
    }
}
INSTANTIATE_TEST_SUITE_P(AmountsAtTheLengthsOfEachRate, ClarityAmounts,
                         ::testing::Combine(::testing::Values(0.0f, 0.3f, 1.0f),
                                            ::testing::Values(70, 128, 139, 278, 556)));

TEST(ClarityProcessor, BothEarsKeepTheirRatioInEveryBin) {
    // Property, without any weight computed: left * right' equals right * left' before and after.
    Clarity clarity(128, 256);
    clarity.amount = 0.7f;
    fillWithNoise(clarity.buffer, 128, 5);
    clarity.process();
    for (std::uint64_t k = 0; k < 128; ++k)
        EXPECT_NEAR(
            std::abs(clarity.before[0][k] * clarity.after[1][k] - clarity.before[1][k] * clarity.after[0][k]),
            0.0, 1e-4)
            << k; // rounding of products of bins around 4
}

TEST(ClarityProcessor, WithoutAnAmountAnImpulseComesBackLowerAndWithoutItsNyquistBin) {
    // Analytic: an impulse at sample d minus its Nyquist bin is 0.875 (delta[n - d] - (-1)^(n - d) / 2N).
    constexpr std::uint64_t length = 139;
    Clarity clarity(length, 2 * length);
    clarity.buffer.channelPointers[0][3] = 1.0f;
    clarity.process();
    for (std::uint64_t n = 0; n < 2 * length; ++n) {
        const double sign = n % 2 == 1 ? 1.0 : -1.0;
        const double expected = outputLevel * ((n == 3 ? 1.0 : 0.0) - sign / (2.0 * length));
        EXPECT_NEAR(clarity.buffer.channelPointers[0][n], expected, 1e-6) << n; // FFT rounding
    }
    EXPECT_THAT(Signal(clarity.buffer.channel(1).begin(), clarity.buffer.channel(1).end()), test::Silence());
}

TEST(ClarityProcessor, AnAllZeroResponseStaysAllZeroThoughEveryWeightIsTheLimit) {
    Clarity clarity(64, 128);
    clarity.amount = 1.0f;
    clarity.process();
    EXPECT_EQ(test::peak(Signal(clarity.buffer.channel(0).begin(), clarity.buffer.channel(0).end())), 0.0f);
    EXPECT_EQ(test::peak(Signal(clarity.buffer.channel(1).begin(), clarity.buffer.channel(1).end())), 0.0f);
}

TEST(ClarityProcessor, AFaintBinIsRaisedByTheLimitOf25DecibelsOnly) {
    // An impulse of 0.01 in both ears has the magnitude 0.01 in every bin: 17.78, not 100.
    Clarity clarity(64, 128);
    clarity.amount = 1.0f;
    clarity.buffer.channelPointers[0][0] = 0.01f;
    clarity.buffer.channelPointers[1][0] = 0.01f;
    clarity.process();
    for (std::uint64_t k = 0; k < 64; ++k)
        EXPECT_NEAR(std::abs(clarity.after[0][k]), outputLevel * weightLimit * 0.01, 1e-6);
}

TEST(ClarityProcessor, AFullAmountFlattensAnImpulseOfAnyModerateHeight) {
    // Analytic: h^-1 * h = 1.
    for (const float height : {0.1f, 0.5f, 1.0f, 4.0f}) {
        Clarity clarity(64, 128);
        clarity.amount = 1.0f;
        clarity.buffer.channelPointers[0][5] = height;
        clarity.buffer.channelPointers[1][9] = height;
        clarity.process();
        for (std::uint64_t k = 0; k < 64; ++k)
            EXPECT_NEAR(std::abs(clarity.after[1][k]), outputLevel, 1e-5) << height;
    }
}

TEST(ClarityProcessor, ReadsTheAmountAtEveryRun) {
    Clarity clarity(64, 128);
    for (const float amount : {0.0f, 1.0f, 0.0f}) {
        clarity.buffer.clear();
        clarity.buffer.channelPointers[0][0] = 0.5f;
        clarity.buffer.channelPointers[1][0] = 0.5f;
        clarity.amount = amount;
        clarity.process();
        EXPECT_NEAR(std::abs(clarity.after[0][10]), amount == 0.0f ? 0.5 * outputLevel : outputLevel, 1e-5);
    }
}

TEST(ClarityProcessor, AnalysesTheFirstSamplesOnlyAndZeroesWhatALongerBufferHoldsBehindTwiceTheLength) {
    Clarity longer(64, 200);
    Clarity exact(64, 128);
    longer.amount = exact.amount = 0.5f;
    fillWithNoise(exact.buffer, 64, 9);
    fillWithNoise(longer.buffer, 64, 9);
    std::fill_n(longer.buffer.channelPointers[0] + 64, 136, 5.0f);
    longer.process();
    exact.process();
    const orvane::SampleSpan left = longer.buffer.channel(0);
    EXPECT_TRUE(std::equal(left.begin(), left.begin() + 128, exact.buffer.channel(0).begin()));
    EXPECT_THAT(Signal(left.begin() + 128, left.end()), test::Silence());
}

TEST(ClarityProcessor, AShorterBufferTakesWhatFits) {
    float amount = 0.5f;
    orvane::RmsSpectrumFactory factory;
    ClarityProcessor processor(64, &amount, &factory);
    Clarity exact(64, 128);
    exact.amount = amount;
    fillWithNoise(exact.buffer, 64, 9);
    SampleBuffer shorter(2, 100);
    fillWithNoise(shorter, 64, 9);
    processor.process(shorter);
    exact.process();
    EXPECT_TRUE(
        std::equal(shorter.channel(1).begin(), shorter.channel(1).end(), exact.buffer.channel(1).begin()));
}

TEST(ClarityProcessor, NotANumberInAResponseDoesNotOutliveItsRun) {
    Clarity used(64, 128);
    Clarity fresh(64, 128);
    used.amount = fresh.amount = 0.5f;
    used.buffer.channelPointers[0][0] = std::numeric_limits<float>::quiet_NaN();
    used.processor.process(used.buffer);
    EXPECT_TRUE(std::isnan(used.buffer.channelPointers[0][0]));
    EXPECT_TRUE(std::isnan(used.buffer.channelPointers[1][0])) << "the weights are common to both ears";
    fillWithNoise(used.buffer, 64, 9);
    fillWithNoise(fresh.buffer, 64, 9);
    used.processor.process(used.buffer);
    fresh.processor.process(fresh.buffer);
    EXPECT_TRUE(std::equal(used.buffer.channel(0).begin(), used.buffer.channel(0).end(),
                           fresh.buffer.channel(0).begin()));
}

TEST(ClarityProcessor, NeitherAllocatesNorLocksAtTheLengthsOfEveryRate) {
    for (const std::uint64_t length : {70u, 128u, 139u, 256u, 278u, 512u, 556u}) {
        Clarity clarity(length, 2 * length);
        clarity.amount = 0.5f;
        fillWithNoise(clarity.buffer, length, 2);
        const test::RealtimeScope scope;
        clarity.processor.process(clarity.buffer);
        const auto seen = scope.violations();
        EXPECT_EQ(seen, test::RealtimeViolations{}) << length;
    }
}

TEST(RmsSpectrum, IsTheRootOfTheMeanPowerOfBothEarsWithoutTheLastBin) {
    // By hand: sqrt((3^2 + 4^2 + 5^2) / 2) = 5; the bin at Nyquist is not measured.
    orvane::PartitionedSpectrum spectra(2, 2);
    spectra.slot(0).data[0] = {3, 4};
    spectra.slot(1).data[0] = {0, 5};
    spectra.slot(0).data[1] = {1, 1};
    spectra.slot(1).data[1] = {-1, 1};
    spectra.slot(0).data[2] = {9, 9};
    std::vector<float> out(3, -1.0f);
    orvane::RmsSpectrumFactory().create(2)->compute(spectra, out.data());
    EXPECT_EQ(out, (std::vector<float>{5.0f, std::sqrt(2.0f), -1.0f}));
}

} // namespace
