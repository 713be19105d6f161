// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/Arrivals.h"
#include "data/measures/Figures.h"
#include "data/measures/Rendering.h"

#include "SyntheticHead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

using namespace orvane::kestrum::tools;

namespace {

/// Analytic: a ramp to a peak of 1 reaches a tenth of it a tenth of the way.
TEST(Onsets, AreWhereATenthOfThePeakIsReached) {
    EXPECT_NEAR(onsetOf({0, 0, 1, 0.5}), 1.1, 1e-12);
    EXPECT_NEAR(onsetOf({0, 0, -1, 0.5}), 1.1, 1e-12);
    EXPECT_EQ(onsetOf({0, 0, 0}), 0);
}

TEST(Windows, AreOneInTheMiddleAndFadeAtBothEnds) {
    const WindowShape shape{0.0, 4.0, 8.0};
    const Samples window = windowOf(shape, 32, 1.0); // one sample a second: the fades are 4 and 8 samples
    EXPECT_LT(window.front(), 0.1);
    EXPECT_LT(window.back(), 0.1);
    for (std::size_t index = 4; index < 24; ++index)
        EXPECT_EQ(window[index], 1.0);
    EXPECT_TRUE(std::ranges::is_sorted(window.begin(), window.begin() + 5));
    EXPECT_TRUE(std::ranges::is_sorted(window.rbegin(), window.rbegin() + 9));
}

/// Analytic: the transfer function is the same at both rates; so are times.
TEST(ResponseResampling, KeepsLevelAndTime) {
    for (const double rate : {24000.0, 44100.0, 48000.0}) {
        const ResponseResampler resampler(44100, rate);
        // The same lead in as the caller's: a whole number of samples at both rates.
        const double ratio = rate / 44100;
        const double lead = std::round(static_cast<double>(resampler.leadIn()) * ratio) / ratio;
        Samples padded(1024);
        const double position = lead + 30;
        for (std::size_t index = 0; index < padded.size(); ++index) {
            const double from = (static_cast<double>(index) - position) / 6;
            padded[index] = std::exp(-from * from); // a bell without content above 8 kHz
        }
        const Samples made = resampler.resample(padded, 256);
        const double area = 6 * std::sqrt(std::numbers::pi); // its transfer function at 0 Hz
        double sum = 0;
        for (const double sample : made)
            sum += sample;
        EXPECT_NEAR(sum, area, area * 1e-4) << rate;
        EXPECT_NEAR(peakPosition(made) / rate, 30 / 44100.0, 0.5e-6) << rate;
    }
}

class RenderedSet : public ::testing::Test {
protected:
    RenderedSet() {
        grid = interpolateGrid(set);
        origin = commonOrigin(set, grid, window);
    }

    test::SyntheticHead head;
    AlignedSet set = alignResponses(head.measure(test::rings(10, -90)));
    WindowShape window;
    std::vector<AlignedResponse> grid;
    double origin = 0;
    std::vector<KeptEnergy> kept;
};

/// Property: over all directions and both ears the earliest onset lies the lead behind sample 0, at every
/// rate.
TEST_F(RenderedSet, BeginsWithTheEarliestArrivalOfAllAFewSamplesIn) {
    for (const ResponseFile& file : responseFiles) {
        const ResponseSet made = renderSet(file, set, grid, origin, window, kept);
        double earliest = std::numeric_limits<double>::infinity();
        for (const auto& response : made.responses)
            for (const Samples& ear : response)
                earliest = std::min(earliest, onsetOf(ear));
        EXPECT_NEAR(earliest / file.sampleRate, window.leadSeconds, 1.0 / file.sampleRate) << file.name;
    }
}

/// Analytic: between the ears stand 2 * 12 samples times the sine of the lateral angle, 12 dB times it.
/// Between sites 10 degrees apart the chord lies up to 1 - cos(5 degrees) of 544 us below the sine, on a
/// field of four sites twice that.
TEST_F(RenderedSet, KeepsTimeAndLevelBetweenTheEars) {
    const ResponseSet made = renderSet(responseFiles[0], set, grid, origin, window, kept);
    for (const int azimuth : {0, 15, 90, 135, 200, 270, 345})
        for (const int elevation : {-45, 0, 35}) {
            const auto& ears = made.responses[gridIndex(azimuth, elevation)];
            const double side = directionFrom(azimuth, elevation).x;
            EXPECT_NEAR(interauralDelaySeconds(ears[leftEar], ears[rightEar], 44100), 24 * side / 44100, 4e-6)
                << azimuth << ", " << elevation;
            // The level of a mix over 10 degrees lies a little off the sine's own value in between.
            EXPECT_NEAR(interauralLevelsDb(ears, 44100, 11000)[1], 12 * side, 0.15)
                << azimuth << ", " << elevation;
        }
}

/// The channel convention: the place k * 5 degrees in the file is a source to the right.
TEST_F(RenderedSet, HasTheSourceOnTheRightLouderAndEarlierAtTheRightEar) {
    const ResponseSet made = renderSet(responseFiles[1], set, grid, origin, window, kept);
    const auto& right = made.responses[gridIndex(90, 0)];
    EXPECT_GT(bandLevelDb(right[rightEar], 48000, 500, 4000),
              bandLevelDb(right[leftEar], 48000, 500, 4000) + 10);
    EXPECT_LT(onsetOf(right[rightEar]), onsetOf(right[leftEar]));
}

/// Analytic: the pulses are short, so the window takes nothing but what resampling rings.
TEST_F(RenderedSet, KeepsAllEnergyOfShortResponses) {
    renderSet(responseFiles[0], set, grid, origin, window, kept);
    ASSERT_EQ(kept.size(), 2522u);
    const KeptMedians medians = keptMedians(kept, gridPlaces());
    EXPECT_GT(medians.near, 0.999);
    EXPECT_GT(medians.far, 0.999);
    EXPECT_LE(medians.near, 1.0 + 1e-9);
}

/// Property: on a head that mirrors, the source on the other side swaps the ears.
TEST_F(RenderedSet, MirrorsWhereTheHeadMirrors) {
    const ResponseSet made = renderSet(responseFiles[0], set, grid, origin, window, kept);
    for (const int azimuth : {5, 45, 90, 160})
        for (const int elevation : {-60, 0, 25}) {
            const auto& right = made.responses[gridIndex(azimuth, elevation)];
            const auto& left = made.responses[gridIndex(-azimuth, elevation)];
            for (std::size_t frame = 0; frame < 128; ++frame)
                ASSERT_NEAR(right[rightEar][frame], left[leftEar][frame], 1e-4)
                    << azimuth << ", " << elevation;
        }
}

/// Analytic: delays of whole and broken samples between two pulses.
TEST(InterauralDelay, IsTheTimeBetweenTheEars) {
    const test::SyntheticHead head;
    for (const double azimuth : {-90.0, -30.0, 0.0, 12.0, 90.0}) {
        const Direction direction = directionFrom(azimuth, 0);
        EXPECT_NEAR(interauralDelaySeconds(head.response(-1, direction), head.response(1, direction), 44100),
                    24 * direction.x / 44100, 1e-6);
    }
}

/// Analytic: a unit impulse has 0 dB in every band; at a tenth, -20 dB.
TEST(BandLevels, OfAnImpulseAreItsLevel) {
    EXPECT_NEAR(bandLevelDb({0, 0, 1}, 44100, 500, 1000), 0, 1e-9);
    EXPECT_NEAR(bandLevelDb({0.1}, 44100, 4000, 8000), -20, 1e-9);
    const std::array<Samples, 2> ears{Samples{1.0}, Samples{0, 0.5}};
    for (const double level : interauralLevelsDb(ears, 44100, 20000))
        EXPECT_NEAR(level, -6.0206, 1e-3);
}

/// Analytic: impulses everywhere are a flat field, from 250 Hz up to the band that holds the limit.
TEST(DiffuseBands, OfImpulsesAreFlat) {
    const std::vector<std::array<Samples, 2>> responses(3, {Samples{1.0}, Samples{1.0}});
    const std::vector<double> weights{1, 2, 3};
    const auto bands = diffuseBands(responses, weights, 44100, 12000);
    ASSERT_GE(bands.size(), 17u);
    EXPECT_NEAR(bands.front().centreHz, 250, 1);
    EXPECT_NEAR(bands.back().centreHz, 12700, 100);
    for (const BandLevel& band : bands)
        EXPECT_NEAR(band.levelDb, 0, 1e-9);
    EXPECT_NEAR(meanLevelDb(bands), 0, 1e-9);
}

/// Analytic: a pair that differs by 3 dB and 2 samples at one direction, by nothing at the other.
TEST(InterauralComparisons, ReportWorstAndMean) {
    test::SyntheticHead head;
    test::SyntheticHead other = head;
    other.halfDelay = 13;
    other.sideGainDb = 7.5;
    InterauralComparison comparison(11000);
    for (const double azimuth : {0.0, 90.0}) {
        const Direction direction = directionFrom(azimuth, 0);
        comparison.add({{head.response(-1, direction), head.response(1, direction)},
                        44100,
                        {other.response(-1, direction), other.response(1, direction)},
                        44100});
    }
    const InterauralErrors errors = comparison.errors();
    EXPECT_EQ(errors.directionCount, 2u);
    EXPECT_NEAR(errors.worstDelaySeconds * 44100, 2, 0.05);
    EXPECT_NEAR(errors.worstLevelDb, 3, 0.05);
    EXPECT_NEAR(errors.meanLevelDb, 1.5, 0.05);
}

TEST(FiguresWithGoals, AreMetOnTheRightSideOfTheGoal) {
    EXPECT_TRUE((Figure{"", 1, 2, false, ""}.met()));
    EXPECT_FALSE((Figure{"", 3, 2, false, ""}.met()));
    EXPECT_TRUE((Figure{"", 98, 97, true, ""}.met()));
    EXPECT_FALSE((Figure{"", 96, 97, true, ""}.met()));
}

} // namespace
