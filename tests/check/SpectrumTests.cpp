// SPDX-License-Identifier: GPL-3.0-or-later
// Expected levels are the mean power of the signals, by hand.
#include "check/Spectrum.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace {

using namespace orvane::kestrum::check;

std::vector<float> sine(double frequencyHz, double amplitude, double rate, std::size_t frames) {
    std::vector<float> stereo(2 * frames);
    for (std::size_t frame = 0; frame < frames; ++frame)
        stereo[2 * frame] = static_cast<float>(
            amplitude * std::sin(2 * std::numbers::pi * frequencyHz * static_cast<double>(frame) / rate));
    return stereo;
}

TEST(Spectrum, HasSixBandsPerOctaveFrom20HzOn) {
    const auto centres = bandCentresHz();
    EXPECT_DOUBLE_EQ(centres.front(), 20);
    EXPECT_NEAR(centres[6], 40, 1e-9);
    EXPECT_GT(centres.back(), 20000);
}

TEST(Spectrum, OfASineStandsInItsOwnBandAtItsPower) {
    for (const double rate : {44100.0, 48000.0, 96000.0}) {
        const std::size_t band = 30; // 640 Hz
        LongTermSpectrum spectrum(rate);
        spectrum.add(sine(bandCentresHz()[band], 0.5, rate, 100000));
        const auto levels = spectrum.bandLevelsDb();
        EXPECT_NEAR(levels[band], 20 * std::log10(0.5) - 3.01, 0.05) << rate; // the window's skirts
        EXPECT_LT(levels[band - 2], levels[band] - 60);
        EXPECT_LT(levels[band + 2], levels[band] - 60);
    }
}

/// White noise has equal power per hertz: 3.01 dB more in every octave.
TEST(Spectrum, OfWhiteNoiseRisesByTheWidthOfTheBands) {
    std::mt19937 random(3);
    std::vector<float> noise(2 * 480000);
    for (float& sample : noise)
        sample = static_cast<float>(random() % 20001) / 100000.0f - 0.1f;
    LongTermSpectrum spectrum(48000);
    spectrum.add(noise);
    const auto levels = spectrum.bandLevelsDb();
    for (std::size_t band = 24; band + 6 < 58; ++band) // from 320 Hz on enough bins lie in a band
        EXPECT_NEAR(levels[band + 6] - levels[band], 3.01, 1.0) << bandCentresHz()[band];
}

TEST(Spectrum, IsTheSameHoweverTheStreamIsCut) {
    const auto signal = sine(1000, 0.3, 48000, 50001);
    LongTermSpectrum whole(48000), cut(48000);
    whole.add(signal);
    for (std::size_t first = 0; first < signal.size(); first += 2 * 777)
        cut.add(std::span<const float>(signal).subspan(
            first, std::min<std::size_t>(2 * 777, signal.size() - first)));
    EXPECT_EQ(whole.bandLevelsDb(), cut.bandLevelsDb());
}

TEST(Spectrum, OfSilenceAndBeyondHalfTheRateIsTheFloor) {
    LongTermSpectrum silent(48000);
    silent.add(std::vector<float>(2 * 1000));
    for (const double level : silent.bandLevelsDb())
        EXPECT_EQ(level, -200);
    LongTermSpectrum narrow(24000);
    narrow.add(sine(1000, 1, 24000, 30000));
    EXPECT_EQ(narrow.bandLevelsDb().back(), -200);
}

} // namespace
