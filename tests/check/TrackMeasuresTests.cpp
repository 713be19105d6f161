// SPDX-License-Identifier: GPL-3.0-or-later
// Expected loudness: EBU Tech 3341, minimum requirements: a 1 kHz sine in both channels at -23 dBFS reads -23.0 LUFS.
#include "check/TrackMeasures.h"

#include "CheckSupport.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using namespace orvane::kestrum::check;

class Measures : public ::test::FolderTest {
protected:
    std::filesystem::path writeSine(double frequencyHz, double amplitude, double phase, std::size_t frames) {
        std::vector<float> stereo;
        for (std::size_t frame = 0; frame < frames; ++frame) {
            const auto value = static_cast<float>(
                amplitude *
                std::sin(2 * std::numbers::pi * frequencyHz * static_cast<double>(frame) / 48000 + phase));
            stereo.insert(stereo.end(), {value, value});
        }
        ::test::writeSound(folder / "sine.wav", stereo, 2);
        return folder / "sine.wav";
    }
};

TEST_F(Measures, OfTheStandardsSineAreTheStandards) {
    const auto measures = measureTrack(writeSine(1000, std::pow(10, -23.0 / 20), 0, 48000 * 20), 20);
    ASSERT_TRUE(measures.loudness);
    EXPECT_NEAR(*measures.loudness, -23.0, 0.1);
    EXPECT_NEAR(measures.loudnessRange, 0, 0.1);
    EXPECT_EQ(measures.shortTerm.size(), 200u);
    EXPECT_NEAR(measures.shortTerm.back(), -23.0, 0.1);
}

/// A quarter of the rate, sampled between its crests: samples at 0.7071, the wave itself at 1.
TEST_F(Measures, FindThePeakBetweenTheSamples) {
    const auto measures = measureTrack(writeSine(12000, 1, std::numbers::pi / 4, 48000), 1);
    EXPECT_NEAR(measures.truePeakDb, 0, 0.2); // what four-fold oversampling may miss
}

TEST_F(Measures, DrawTheWaveformAgainstTheCommonTime) {
    const auto measures = measureTrack(writeSine(100, 0.5, 0, 48000), 2); // fills the first half
    ASSERT_EQ(measures.highest.size(), waveformColumns);
    EXPECT_NEAR(*std::ranges::max_element(measures.highest), 0.5, 0.001);
    EXPECT_NEAR(*std::ranges::min_element(measures.lowest), -0.5, 0.001);
    EXPECT_GT(measures.highest[waveformColumns / 2 - 10], 0.01f);
    EXPECT_EQ(measures.highest[waveformColumns / 2 + 1], 0.0f);
}

TEST_F(Measures, OfSilenceHaveNoLoudness) {
    ::test::writeSound(folder / "silence.wav", std::vector<float>(2 * 48000), 2);
    const auto measures = measureTrack(folder / "silence.wav", 1);
    EXPECT_FALSE(measures.loudness);
    EXPECT_EQ(measures.truePeakDb, -200);
}

TEST_F(Measures, AreRefusedOfAFileThatIsNotStereo) {
    ::test::writeSound(folder / "mono.wav", std::vector<float>(100), 1);
    EXPECT_THROW(measureTrack(folder / "mono.wav", 1), CheckError);
}

} // namespace
