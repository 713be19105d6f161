// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/head/AlignedSet.h"
#include "data/head/ArrivalRefinement.h"
#include "data/head/Arrivals.h"
#include "data/head/Ears.h"

#include "SyntheticHead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <utility>

using namespace orvane::kestrum::tools;

namespace {

/// Analytic: a decaying response is minimum-phase from its first sample on, so its arrival is its delay.
TEST(Arrivals, OfADecayingResponseAreItsDelay) {
    ArrivalFinder finder(256);
    RealTransform transform(512);
    for (const double delay : {0.0, 10.0, 10.25, 33.5}) {
        Spectrum spectrum = transform.forward({1, 0.8, 0.5, 0.2, 0.1});
        delaySpectrum(spectrum, delay);
        Samples response = transform.inverse(spectrum);
        response.resize(256);
        EXPECT_NEAR(finder.find(response), delay, 0.05); // a twentieth of a sample, 1 us
    }
    EXPECT_EQ(finder.find(Samples(256)), 0);
}

TEST(Peaks, LieBetweenSamplesOnTheParabola) {
    EXPECT_DOUBLE_EQ(peakPosition({0, 3, 4, 3, 0}), 2);
    EXPECT_NEAR(peakPosition({-2.25, -0.25, -0.25, -2.25}), 1.5,
                1e-12); // minus a square, with its top at 1.5
}

/// Analytic: the synthetic head is louder and earlier on the source's side; labels are what the test makes of
/// them.
TEST(Ears, AreToldByPhysicsWhicheverReceiverComesFirst) {
    const test::SyntheticHead head;
    MeasuredSet right = head.measure(test::rings(15, -45));
    MeasuredSet wrong = right;
    for (Measurement& measurement : wrong.measurements)
        std::swap(measurement.ears[0], measurement.ears[1]);
    const EarDecision kept = assignEars(right);
    const EarDecision turned = assignEars(wrong);
    EXPECT_FALSE(kept.swapped);
    EXPECT_TRUE(turned.swapped);
    EXPECT_NEAR(kept.levelDifferenceDb, turned.levelDifferenceDb, 1e-9);
    EXPECT_GT(kept.levelDifferenceDb, 10); // 12 dB at the very side
    EXPECT_NEAR(kept.arrivalLeadSeconds, 24 / 44100.0, 3 / 44100.0);
    for (std::size_t index = 0; index < right.measurements.size(); ++index)
        EXPECT_EQ(right.measurements[index].ears, wrong.measurements[index].ears);
}

TEST(Ears, OfAContradictorySetAreRefused) {
    test::SyntheticHead head;
    head.sideGainDb = -6; // earlier but softer on the source's side
    MeasuredSet set = head.measure(test::rings(15, -45));
    EXPECT_THROW(assignEars(set), DataError);
}

TEST(Ears, CannotBeToldWithoutSourcesAtTheSides) {
    MeasuredSet set = test::SyntheticHead().measure({directionFrom(0, 0), directionFrom(20, 0)});
    EXPECT_THROW(assignEars(set), DataError);
}

TEST(Ears, OfASilentSetAreRefused) {
    MeasuredSet set = test::SyntheticHead().measure(test::rings(30, -30));
    for (Measurement& measurement : set.measurements)
        measurement.ears[1].assign(set.tapCount, 0.0);
    EXPECT_THROW(assignEars(set), DataError);
}

/// Null test: taking apart and putting together again cancel, but for the bin at the Nyquist frequency, which
/// a broken delay cannot keep: the pulses have some 1e-4 there.
TEST(AlignedSets, GiveTheMeasuredResponsesBack) {
    const MeasuredSet set = test::SyntheticHead().measure(test::rings(30, -30));
    const AlignedSet aligned = alignResponses(set);
    RealTransform transform(aligned.transformSize);
    for (std::size_t index = 0; index < set.measurements.size(); ++index)
        for (std::size_t ear = 0; ear < 2; ++ear) {
            const Samples back =
                assembleResponse(aligned.responses[index], ear, set.sampleRate, 0, transform);
            for (std::size_t sample = 0; sample < set.tapCount; ++sample)
                ASSERT_NEAR(back[sample], set.measurements[index].ears[ear][sample], 1e-4);
        }
}

/// Analytic: half way between arrivals of 50 and 60 samples stands one pulse at 55, not two of half the
/// height.
TEST(MixedResponses, KeepOnePulseBetweenTwoArrivals) {
    test::SyntheticHead head;
    head.sideGainDb = 0;
    head.halfDelay = 10;
    // At azimuth 30 the right ear hears 5 samples early, at -30 it hears 5 samples late.
    const AlignedSet set = alignResponses(head.measure({directionFrom(30, 0), directionFrom(-30, 0)}));
    const std::vector<SiteWeight> halves{{0, 0.5}, {1, 0.5}};
    const AlignedResponse mixed = mixResponses(set, halves, directionFrom(0, 0));
    RealTransform transform(set.transformSize);
    const Samples response = assembleResponse(mixed, rightEar, set.sampleRate, 0, transform);
    EXPECT_NEAR(peakPosition(response), 60, 0.02);
    EXPECT_NEAR(response[60], 1, 0.01); // the pulses' own sampling differs by less
    EXPECT_NEAR(response[55], 0, 0.01);
    EXPECT_NEAR(response[65], 0, 0.01);
}

/// Repeats and the pole's many azimuths become one; arrivals of 60 and 62 samples become 61.
TEST(Repeats, OfADirectionAreMergedWithArrivalsAveraged) {
    test::SyntheticHead head;
    MeasuredSet set = head.measure(
        {directionFrom(0, 90), directionFrom(90, 90), directionFrom(180, 90), directionFrom(0, 0)});
    head.commonDelay = 62;
    set.measurements.push_back(
        {directionFrom(0, 0), {head.response(-1, {0, 0, 1}), head.response(1, {0, 0, 1})}});
    AlignedSet aligned = alignResponses(set);
    EXPECT_EQ(mergeRepeats(aligned), 3u);
    ASSERT_EQ(aligned.responses.size(), 2u);
    RealTransform transform(aligned.transformSize);
    const Samples ahead = assembleResponse(aligned.responses[1], leftEar, set.sampleRate, 0, transform);
    EXPECT_NEAR(peakPosition(ahead), 61, 0.02);
    EXPECT_NEAR(ahead[61], 1, 0.01);
}

/// Analytic: on a ring of four whose differences agree, every value comes back; the mean stays that of the
/// start.
TEST(Differences, ThatAgreeAreSolvedExactly) {
    const std::vector<double> truth{1, 4, -2, 0.5};
    std::vector<DifferenceEquation> equations;
    for (std::size_t first = 0; first < truth.size(); ++first) {
        const std::size_t second = (first + 1) % truth.size();
        equations.push_back({first, second, truth[second] - truth[first], 1.0 + static_cast<double>(first)});
    }
    const auto solved = solveDifferences(equations, {3.5, 0, 0, 0});
    for (std::size_t index = 0; index < truth.size(); ++index)
        EXPECT_NEAR(solved[index], truth[index], 1e-9);
}

/// Analytic: with differences 1, 1 and 1 round a triangle the least-squares answer is no difference at all.
TEST(Differences, ThatContradictAreShared) {
    const std::vector<DifferenceEquation> equations{{0, 1, 1, 1}, {1, 2, 1, 1}, {2, 0, 1, 1}};
    for (const double value : solveDifferences(equations, {0, 0, 0}))
        EXPECT_NEAR(value, 0, 1e-12);
}

TEST(Differences, LeaveUnjoinedValuesAlone) {
    const auto solved = solveDifferences(std::vector<DifferenceEquation>{{0, 1, 2, 1}}, {0, 0, 7});
    EXPECT_NEAR(solved[1] - solved[0], 2, 1e-12);
    EXPECT_EQ(solved[2], 7);
}

/// Analytic: the arrivals of the synthetic head are known; single ones are spoilt by two samples as a
/// misjudged edge would, and the neighbours put them right.
TEST(RefinedArrivals, MendSingleMisjudgedEdges) {
    const test::SyntheticHead head;
    const MeasuredSet measured = head.measure(test::rings(15, -90));
    AlignedSet set = alignResponses(measured);
    for (std::size_t index = 3; index < set.responses.size(); index += 40) {
        set.responses[index].arrivalSeconds[leftEar] += 2 / set.sampleRate;
        delaySpectrum(set.responses[index].ears[leftEar], -2);
    }
    refineArrivals(set);
    double offset = 0;
    for (const AlignedResponse& response : set.responses)
        offset += (response.arrivalSeconds[leftEar] * set.sampleRate - head.delay(-1, response.direction)) /
                  static_cast<double>(set.responses.size());
    for (const AlignedResponse& response : set.responses)
        EXPECT_NEAR(response.arrivalSeconds[leftEar] * set.sampleRate - head.delay(-1, response.direction),
                    offset, 0.05);
}

} // namespace
