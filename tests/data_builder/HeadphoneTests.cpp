// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/headphones/HeadphoneFold.h"
#include "data/headphones/HeadphoneReport.h"
#include "data/headphones/ParametricEq.h"
#include "data/measures/Figures.h"

#include "CompleteFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

HeadphoneCurve curveOf(const std::string& text) {
    const ParametricEq eq = parseParametricEq(text);
    std::vector<double> points(HeadphoneCurve::pointCount);
    for (std::size_t point = 0; point < points.size(); ++point)
        points[point] = gainDb(eq, std::min(HeadphoneCurve::pointHz(point), 20000.0));
    return HeadphoneCurve(std::move(points));
}

constexpr const char* typicalText = "Preamp: -6.2 dB\n"
                                    "Filter 1: ON LSC Fc 105 Hz Gain 5.5 dB Q 0.70\n"
                                    "Filter 2: ON PK Fc 2100 Hz Gain -2.4 dB Q 1.83\n"
                                    "Filter 3: ON PK Fc 5800 Hz Gain 4.1 dB Q 3.00\n"
                                    "Filter 4: ON HSC Fc 10000 Hz Gain -3.0 dB Q 0.70\n";

/// Slow reference: one peak of an equaliser at 48 kHz, as a recursion in the time domain.
Samples peakInTime(const Samples& input, double hertz, double gain, double q) {
    const double amplitude = std::pow(10.0, gain / 40);
    const double omega = 2 * std::numbers::pi * hertz / 48000;
    const double alpha = std::sin(omega) / (2 * q);
    const double b0 = 1 + alpha * amplitude;
    const double b2 = 1 - alpha * amplitude;
    const double middle = -2 * std::cos(omega);
    const double a0 = 1 + alpha / amplitude;
    const double a2 = 1 - alpha / amplitude;
    Samples output(input.size());
    const auto at = [](const Samples& samples, std::size_t index, std::size_t back) {
        return index >= back ? samples[index - back] : 0.0;
    };
    for (std::size_t index = 0; index < input.size(); ++index)
        output[index] = (b0 * input[index] + middle * at(input, index, 1) + b2 * at(input, index, 2) -
                         middle * at(output, index, 1) - a2 * at(output, index, 2)) /
                        a0;
    return output;
}

/// Reference: an equaliser's filter is of minimum phase itself, so its impulse response is the answer. The tolerance is
/// what the curve is held still for above 20 kHz.
TEST(HeadphoneCurves, BecomeTheImpulseResponseOfTheirEqualiser) {
    Samples impulse(256);
    impulse[0] = 1;
    const Samples expected = peakInTime(impulse, 2000, 6, 1.5);
    const Samples made = curveOf("Filter 1: ON PK Fc 2000 Hz Gain 6 dB Q 1.5").minimumPhase(48000, 256);
    for (std::size_t tap = 0; tap < made.size(); ++tap)
        EXPECT_NEAR(made[tap], expected[tap], 2e-3) << tap;
}

TEST(HeadphoneCurves, KeepWithinTheirLimitsRoundTheirMean) {
    const HeadphoneCurve curve =
        curveOf("Filter 1: ON PK Fc 60 Hz Gain 20 dB Q 1\nFilter 2: ON PK Fc 18000 Hz Gain -40 dB Q 8");
    EXPECT_TRUE(curve.bounded());
    EXPECT_NEAR(curve.askedDb(60), 20, 0.5);
    EXPECT_NEAR(curve.mostDb(), curve.levelDb() + 12, 0.5);
    EXPECT_NEAR(curve.leastDb(), curve.levelDb() - 24, 0.5);
    EXPECT_FALSE(curveOf(typicalText).bounded());
}

TEST(HeadphoneCurves, OfAnotherLevelAltogetherAreRefused) {
    EXPECT_THROW(curveOf("Preamp: -35 dB"), DataError);
    EXPECT_THROW(curveOf("Preamp: 20 dB"), DataError);
    EXPECT_NEAR(curveOf("Preamp: -11 dB").levelDb(), -11, 1e-9);
}

/// Analytic: what the headphones have too much of is taken away; what they lack is given, smoothed by a sixth of an octave.
TEST(MeasuredHeadphones, AreInverted) {
    Samples impulse(8192);
    impulse[0] = 0.01; // their own level does not count
    const auto flat = inverseOfResponse({impulse}, 48000);
    EXPECT_NEAR(*std::ranges::max_element(flat), 0, 1e-6);
    EXPECT_NEAR(*std::ranges::min_element(flat), 0, 1e-6);
    const HeadphoneCurve curve(inverseOfResponse({peakInTime(impulse, 3000, 6, 1)}, 48000));
    const double elsewhere = curve.gainDb(60);
    EXPECT_NEAR(curve.gainDb(3000) - elsewhere, -6, 0.1);
    EXPECT_NEAR(curve.gainDb(15000) - elsewhere, 0, 0.3);
}

/// Property: both ears' mean power counts, so a pair is what its mean is.
TEST(MeasuredHeadphones, OfTwoEarsCountByTheirMeanPower) {
    Samples loud(4096);
    Samples soft(4096);
    loud[0] = 1;
    soft[1] = 0.5;
    const auto curve = inverseOfResponse({peakInTime(loud, 3000, 6, 1), peakInTime(soft, 3000, 6, 1)}, 48000);
    const auto alone = inverseOfResponse({peakInTime(loud, 3000, 6, 1)}, 48000);
    for (std::size_t point = 0; point < curve.size(); ++point)
        EXPECT_NEAR(curve[point], alone[point], 1e-6);
}

class HeadphoneFiles : public ::testing::Test {
protected:
    std::string refusalOf(const std::string& content) const {
        std::ofstream(folder.file("file"), std::ios::binary) << content;
        return refusalOfFile(folder.file("file"));
    }
    static std::string refusalOfFile(const std::string& file) {
        try {
            readHeadphones(file);
        } catch (const DataError& error) {
            return error.what();
        }
        return "accepted";
    }
    static std::string wave(const std::vector<float>& samples, const test::WaveHeader& header) {
        return test::waveBytes(header, samples);
    }
    test::TemporaryFolder folder;
};

TEST_F(HeadphoneFiles, OfNoUseAreRefusedByNameWithTheReason) {
    EXPECT_THAT(refusalOf("Filter 1: ON PK Fc 1 kHz Gain much Q 1"),
                AllOf(HasSubstr(folder.file("file")), HasSubstr("line 1"), HasSubstr("no number behind")));
    EXPECT_THAT(refusalOf(std::string("\x7f"
                                      "ELF\0\0\0",
                                      7)),
                HasSubstr("neither a WAVE file nor a text"));
    EXPECT_THAT(refusalOf(std::string(2000000, 'x')), HasSubstr("neither a WAVE file nor a text"));
    EXPECT_THAT(refusalOf("RIFF but no more"), HasSubstr("cannot be read as a sound file"));
    const std::vector<float> impulse{1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_THAT(refusalOf(wave(impulse, {.channels = 3})), HasSubstr("has 3 channels"));
    EXPECT_THAT(refusalOf(wave(impulse, {.channels = 1, .sampleRate = 8000})), HasSubstr("44100 Hz or more"));
    EXPECT_THAT(refusalOf(wave({0, 0, 0, 0}, {.channels = 1})), HasSubstr("it is silent"));
    EXPECT_THAT(refusalOf(wave({1, std::numeric_limits<float>::quiet_NaN()}, {.channels = 1})),
                HasSubstr("samples that are no numbers"));
    EXPECT_THROW(readHeadphones("/none.txt"), DataError);
    EXPECT_THAT(refusalOfFile(folder.path()), HasSubstr("is no plain file"));
    EXPECT_THAT(refusalOfFile("/dev/null"), HasSubstr("is no plain file"));
    EXPECT_EQ(refusalOf(wave(impulse, {.channels = 1})), "accepted");
    EXPECT_EQ(refusalOf(typicalText), "accepted");
}

/// Reference: the same filter in the time domain, cut where the responses end. The last 12 samples are faded.
TEST(FoldedHeads, AreTheirResponsesFilteredAndCut) {
    ResponseSet set = test::syntheticHeadFor(responseFiles[1]);
    const ResponseSet before = set;
    foldIntoHead(set, curveOf("Filter 1: ON PK Fc 2000 Hz Gain 6 dB Q 1.5"));
    for (const std::size_t place : {0u, 700u, 2000u})
        for (std::size_t ear = 0; ear < 2; ++ear) {
            const Samples expected = peakInTime(before.responses[place][ear], 2000, 6, 1.5);
            for (std::size_t frame = 0; frame + 12 < set.file.length; ++frame)
                EXPECT_NEAR(set.responses[place][ear][frame], expected[frame], 3e-3);
        }
}

/// Property: alike at both ears, so levels and times between them stay. The far ear hears later and has fewer samples left to
/// follow in, which takes up to half a decibel at 500 Hz.
TEST(FoldedHeads, KeepWhatLiesBetweenTheEars) {
    ResponseSet set = test::syntheticHeadFor(responseFiles[0]);
    const ResponseSet before = set;
    foldIntoHead(set, curveOf(typicalText));
    for (const int azimuth : {0, 30, 90, 200, 300}) {
        const std::size_t place = gridIndex(azimuth, 0);
        const auto& now = set.responses[place];
        const auto& then = before.responses[place];
        EXPECT_NEAR(interauralDelaySeconds(now[0], now[1], 44100) * 1e6,
                    interauralDelaySeconds(then[0], then[1], 44100) * 1e6, 2);
        const auto levels = interauralLevelsDb(now, 44100, 11000);
        const auto levelsBefore = interauralLevelsDb(then, 44100, 11000);
        for (std::size_t octave = 0; octave < levels.size(); ++octave)
            EXPECT_NEAR(levels[octave], levelsBefore[octave], octave == 0 ? 0.5 : 0.2)
                << octaveCentresHz[octave];
    }
}

/// Known: 3 ms hold a period of 340 Hz. Above it a correction is followed, a narrow one far below it is not.
TEST(FoldedHeads, FollowAsFarAsTheirLengthReachesAndSaySo) {
    ResponseSet set = test::syntheticHeadFor(responseFiles[0]);
    const auto smooth = foldIntoHead(set, curveOf("Filter 1: ON PK Fc 4000 Hz Gain 6 dB Q 1"));
    EXPECT_EQ(followsFromHz(smooth), smooth.front().centreHz);
    EXPECT_NEAR(smooth.front().centreHz, 31.25, 0.1);
    set = test::syntheticHeadFor(responseFiles[0]);
    const auto narrow = foldIntoHead(set, curveOf("Filter 1: ON PK Fc 40 Hz Gain 8 dB Q 3"));
    EXPECT_LT(narrow[1].missedDb(), -3); // round 40 Hz
    EXPECT_GT(followsFromHz(narrow), 40);
    EXPECT_LT(followsFromHz(narrow), 200);
}

/// Known of such heads: a lot of bass asked for in a narrow range leaves traces above it. Where a head follows from depends on
/// what is asked.
TEST(FoldedHeads, FollowLessFarDownTheMoreIsAskedForInTheBass) {
    const auto followsFrom = [](const std::string& text) {
        ResponseSet set = test::syntheticHeadFor(responseFiles[0]);
        return followsFromHz(foldIntoHead(set, curveOf(text)));
    };
    const double flat = followsFrom("Preamp: -3 dB");
    const double boosted = followsFrom("Filter 1: ON LSC Fc 90 Hz Gain 9 dB Q 0.7\n"
                                       "Filter 2: ON PK Fc 50 Hz Gain 3 dB Q 1.5\n");
    EXPECT_NEAR(flat, 31.25, 0.1);
    EXPECT_GT(boosted, 200);
    EXPECT_LT(boosted, 1000);
}

class FoldAccounts : public ::testing::Test {
protected:
    static std::string told(const std::string& text, const FoldReport& report) {
        std::ostringstream out;
        tellFold({curveOf(text), "mine.txt", {}, "headphones.txt", "a text"}, report, out);
        return out.str();
    }
    /// Bands of all three files, the lowest of them missed by so much.
    static FoldReport reportOf(double missedDb) {
        FoldReport report;
        for (std::vector<FollowedBand>& bands : report.heads)
            bands = {{31.25, -3, -3 + missedDb, 0.1}, {39.4, -3, -3, 0.1}};
        return report;
    }
};

TEST_F(FoldAccounts, SpeakOfShortResponsesOnlyWhereABandIsMissed) {
    EXPECT_THAT(told("Preamp: -3 dB", reportOf(0)),
                AllOf(HasSubstr("follows to 1 dB in every band"), Not(HasSubstr("too short"))));
    EXPECT_THAT(told("Preamp: -3 dB", reportOf(2)),
                AllOf(HasSubstr("follows to 1 dB from 39 Hz up at 44.1 kHz"), HasSubstr("too short")));
}

/// A narrow dip between the middles of two third octaves, 63 and 79 Hz.
TEST_F(FoldAccounts, TellOfLimitsThatAreReachedBetweenThirdOctaves) {
    const std::string narrow = "Filter 1: ON PK Fc 70 Hz Gain 16 dB Q 20";
    ASSERT_TRUE(curveOf(narrow).bounded());
    EXPECT_THAT(told(narrow, reportOf(0)),
                AllOf(HasSubstr("Limited to +12 dB"), HasSubstr("70 Hz (+15.5 asked")));
    EXPECT_THAT(told(typicalText, reportOf(0)), Not(HasSubstr("Limited")));
}

/// Property: even the shortest room, a car's tenth of a second, is long enough for what is usually asked in the bass.
TEST(FoldedRooms, FollowEverywhere) {
    const HeadphoneCurve curve = curveOf(typicalText);
    FollowMeter meter(curve, 48000);
    std::mt19937 random(1);
    std::normal_distribution<double> normal;
    for (int trial = 0; trial < 40; ++trial) {
        ReverbEntry car{24, {Samples(4800), Samples(4800)}};
        for (Samples& ear : car.ears)
            for (std::size_t frame = 0; frame < ear.size(); ++frame)
                ear[frame] =
                    normal(random) * std::pow(10.0, -3 * static_cast<double>(frame) / (0.08 * 48000));
        const ReverbEntry before = car;
        foldIntoRoom(car, curve, 48000);
        for (std::size_t ear = 0; ear < 2; ++ear)
            meter.add(before.ears[ear], car.ears[ear], 1);
    }
    for (const FollowedBand& band : meter.bands())
        EXPECT_NEAR(band.missedDb(), 0, 0.3) << band.centreHz;
}

/// Analytic: an impulse becomes the filter, and a response keeps its length.
TEST(FoldedRooms, AreFilteredWhole) {
    const HeadphoneCurve curve = curveOf(typicalText);
    ReverbEntry entry{2, {Samples(30000), Samples(30000)}};
    entry.ears[0][100] = 1;
    foldIntoRoom(entry, curve, 48000);
    ASSERT_EQ(entry.ears[0].size(), 30000u);
    const Samples filter = curve.minimumPhase(48000, 16384);
    for (std::size_t tap = 0; tap < 4000; ++tap)
        ASSERT_NEAR(entry.ears[0][100 + tap], filter[tap], 1e-9);
    EXPECT_NEAR(*std::ranges::max_element(entry.ears[1]), 0, 1e-12);
}

} // namespace
