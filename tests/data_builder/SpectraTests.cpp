// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/Spectra.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace orvane::kestrum::tools;

namespace {

constexpr double rounding = 1e-12; ///< Double-precision transforms of a few thousand points.

/// Property: the inverse of the transform is the signal, filled up with zeros.
TEST(RealTransforms, GiveBackWhatTheyTook) {
    RealTransform transform(64);
    const Samples signal{1, -2, 0.5, 3};
    const Samples back = transform.inverse(transform.forward(signal));
    ASSERT_EQ(back.size(), 64u);
    for (std::size_t index = 0; index < back.size(); ++index)
        EXPECT_NEAR(back[index], index < signal.size() ? signal[index] : 0.0, rounding);
}

/// Analytic: 1 + z/2 has its zero inside the circle, so it is its own minimum-phase version; its mirror has
/// the same magnitudes.
TEST(MinimumPhase, TurnsAMaximumPhaseResponseIntoItsMirror) {
    RealTransform transform(1024);
    const Samples result =
        transform.inverse(transform.minimumPhase(magnitudesOf(transform.forward({0.5, 1}))));
    EXPECT_NEAR(result[0], 1, 1e-9);
    EXPECT_NEAR(result[1], 0.5, 1e-9);
    for (std::size_t index = 2; index < result.size(); ++index)
        ASSERT_NEAR(result[index], 0, 1e-9); // the cepstrum folds over beyond half a thousand samples only
}

TEST(MinimumPhase, StaysFiniteWhereMagnitudesVanish) {
    RealTransform transform(64);
    Samples magnitudes(transform.binCount(), 1.0);
    magnitudes[5] = 0;
    for (const auto& bin : transform.minimumPhase(magnitudes))
        EXPECT_TRUE(std::isfinite(bin.real()) && std::isfinite(bin.imag()));
}

/// Analytic: a whole delay moves samples; two halves make a whole one.
TEST(DelayedSpectra, MoveTheSignalRoundTheCircle) {
    RealTransform transform(32);
    Spectrum spectrum = transform.forward({1, 2, 3});
    delaySpectrum(spectrum, 4);
    Samples moved = transform.inverse(spectrum);
    EXPECT_NEAR(moved[4], 1, rounding);
    EXPECT_NEAR(moved[6], 3, rounding);
    delaySpectrum(spectrum, -5);
    moved = transform.inverse(spectrum);
    EXPECT_NEAR(moved[31], 1, rounding);
    EXPECT_NEAR(moved[0], 2, rounding);
}

/// Property: smoothing leaves a flat line flat, and keeps the power of a single peak within its window.
TEST(SmoothedMagnitudes, LeaveAFlatSpectrumFlat) {
    for (const double value : smoothed(Samples(513, 0.7), 1.0 / 3))
        EXPECT_NEAR(value, 0.7, rounding);
    Samples peak(513, 0.0);
    peak[100] = 1;
    const Samples broad = smoothed(peak, 1.0 / 3);
    EXPECT_GT(broad[95], 0.1);
    EXPECT_LT(broad[100], 0.5);
    EXPECT_EQ(broad[50], 0);
}

/// Analytic: half the magnitude everywhere is doubled; what has its power is not touched.
TEST(RestoredPower, GivesBackWhatAMixLost) {
    Spectrum mixed(257, {0.25, 0.0});
    restorePower(mixed, Samples(257, 0.5));
    for (const auto& bin : mixed)
        EXPECT_NEAR(std::abs(bin), 0.5, rounding);
    restorePower(mixed, Samples(257, 0.5));
    EXPECT_NEAR(std::abs(mixed[100]), 0.5, rounding);
}

TEST(PowersOfTwo, AreNeverBelowTheValue) {
    EXPECT_EQ(powerOfTwoFrom(1), 1u);
    EXPECT_EQ(powerOfTwoFrom(512), 512u);
    EXPECT_EQ(powerOfTwoFrom(513), 1024u);
}

} // namespace
