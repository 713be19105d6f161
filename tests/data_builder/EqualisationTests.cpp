// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/head/DiffuseField.h"
#include "data/head/LowFrequencies.h"
#include "data/head/LowerCap.h"
#include "data/head/SphereGeometry.h"

#include "SyntheticHead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdlib>
#include <numbers>
#include <span>

using namespace orvane::kestrum::tools;

namespace {

std::size_t binAt(const AlignedSet& set, double frequencyHz) {
    return static_cast<std::size_t>(std::lround(frequencyHz / set.binWidthHz()));
}

double decibels(double ratio) { return 20 * std::log10(ratio); }

/// Two responses, magnitudes 3 and 1 at all frequencies at both ears.
AlignedSet twoFlatResponses() {
    AlignedSet set;
    set.sampleRate = 44100;
    set.distanceMetres = 1.4;
    set.transformSize = 2048;
    for (const double level : {3.0, 1.0}) {
        AlignedResponse response;
        response.direction = directionFrom(level * 30, 0);
        for (Spectrum& ear : response.ears)
            ear.assign(1025, level);
        set.responses.push_back(response);
    }
    return set;
}

/// Analytic: the power mean of 9 and 1, weighted one to three, is 3.
TEST(DiffuseField, IsThePowerMeanBySolidAngle) {
    const std::vector<double> weights{1, 3};
    for (const double value : diffuseField(twoFlatResponses(), weights))
        EXPECT_NEAR(value, std::sqrt(3.0), 1e-12);
}

/// Analytic: one smooth colour on all responses is taken away again, so the diffuse field comes out flat. The
/// colour, a resonance of 12 dB an octave wide, changes little within the smoothing of a sixth of an octave.
TEST(Equalisation, MakesTheDiffuseFieldFlatWithinTheBand) {
    AlignedSet set = twoFlatResponses();
    Samples colour(1025);
    for (std::size_t bin = 0; bin < colour.size(); ++bin) {
        const double octaves =
            std::log2(std::max<double>(static_cast<double>(bin), 1) * set.binWidthHz() / 3000);
        colour[bin] = std::pow(10.0, 12 * std::exp(-octaves * octaves) / 20);
    }
    RealTransform transform(2048);
    applyFilter(set, transform.minimumPhase(colour));
    const std::vector<double> weights{1, 1};
    applyFilter(set, inverseOf(diffuseField(set, weights), set.binWidthHz(), {}));
    const Samples field = diffuseField(set, weights);
    for (const double frequency : {250.0, 1000.0, 3000.0, 6000.0, 12000.0})
        EXPECT_NEAR(decibels(field[binAt(set, frequency)] / field[binAt(set, 500)]), 0, 0.3);
}

/// Analytic: a notch of 60 dB is not filled by more than the bound; the bound counts from the mean, which is
/// 0 dB but for the notch itself.
TEST(Equalisation, BoostsNoFurtherThanItsBound) {
    Samples field(1025, 1.0);
    for (std::size_t bin = 300; bin < 340; ++bin)
        field[bin] = 0.001;
    const Spectrum inverse = inverseOf(field, 44100.0 / 2048, {});
    EXPECT_NEAR(decibels(std::abs(inverse[320])), EqualisationLimits{}.largestBoostDb, 3.5);
    EXPECT_NEAR(decibels(std::abs(inverse[100])), 0, 0.1);
}

/// Property: what lies above the band is treated as the band's edge, not boosted into the noise.
TEST(Equalisation, HoldsStillAboveItsBand) {
    Samples field(1025, 1.0);
    for (std::size_t bin = 800; bin < field.size(); ++bin) // from 17.2 kHz on
        field[bin] = 1e-4;
    const Spectrum inverse = inverseOf(field, 44100.0 / 2048, {});
    EXPECT_NEAR(decibels(std::abs(inverse[900])), 0, 0.1);
}

/// The filter must not ring ahead of the sound: a minimum-phase response has its energy at its start.
TEST(Equalisation, IsCausal) {
    Samples field(1025);
    for (std::size_t bin = 0; bin < field.size(); ++bin)
        field[bin] = 1.5 + std::cos(static_cast<double>(bin) / 80);
    RealTransform transform(2048);
    const Samples response = transform.inverse(inverseOf(field, 44100.0 / 2048, {}));
    double early = 0;
    double late = 0;
    for (std::size_t index = 0; index < 1024; ++index) {
        early += response[index] * response[index];
        late += response[index + 1024] * response[index + 1024];
    }
    EXPECT_LT(late, early * 1e-4);
}

class LowFrequencies : public ::testing::Test {
protected:
    AlignedSet set = alignResponses(test::SyntheticHead().measure(test::rings(15, -90)));
    std::vector<double> weights = solidAngles(set.directions());
    SphericalHead sphere{set.distanceMetres, set.binWidthHz(), set.transformSize / 2 + 1};
};

/// Analytic: below the range the level is the sphere's over the sphere's diffuse field, above it nothing has
/// changed.
TEST_F(LowFrequencies, TakeTheSpheresLevelsBelowTheRangeAndLeaveTheRestAlone) {
    const AlignedSet before = set;
    extendLowFrequencies(set, sphere, weights);
    const std::size_t low = binAt(set, 60);
    double power = 0;
    double sum = 0;
    for (std::size_t index = 0; index < set.responses.size(); ++index) {
        const double left = sphere.levels(set.responses[index].direction, leftEar)[low];
        const double right = sphere.levels(set.responses[index].direction, rightEar)[low];
        power += weights[index] * (left * left + right * right);
        sum += 2 * weights[index];
    }
    for (std::size_t index = 0; index < set.responses.size(); index += 7) {
        const double expected =
            sphere.levels(set.responses[index].direction, leftEar)[low] / std::sqrt(power / sum);
        EXPECT_NEAR(decibels(std::abs(set.responses[index].ears[leftEar][low]) / expected), 0, 0.01);
        for (const double frequency : {300.0, 1000.0, 8000.0})
            EXPECT_EQ(set.responses[index].ears[leftEar][binAt(set, frequency)],
                      before.responses[index].ears[leftEar][binAt(set, frequency)]);
    }
}

/// Property: a measurement with nothing at all in the bass gets its bass from the model, and no arrival moves
/// by it.
TEST_F(LowFrequencies, AreFilledWhereTheMeasurementHasNone) {
    for (AlignedResponse& response : set.responses)
        for (Spectrum& ear : response.ears)
            for (std::size_t bin = 0; bin < binAt(set, 80); ++bin)
                ear[bin] = 0;
    extendLowFrequencies(set, sphere, weights);
    const Samples field = diffuseField(set, weights);
    for (std::size_t bin = 0; bin < binAt(set, 80); ++bin)
        EXPECT_NEAR(decibels(field[bin]), 0, 0.1);
    // The phase delay in the bass is that at the range's upper end.
    const Spectrum& ear = set.responses[0].ears[leftEar];
    const double slope = std::arg(ear[binAt(set, 220) + 1]) / static_cast<double>(binAt(set, 220) + 1);
    EXPECT_NEAR(std::arg(ear[3]) / 3, slope, 1e-2);
}

/// Analytic: a lead of 100 rad Hz / f put on all responses is found and undone, and a set without one has
/// none.
TEST_F(LowFrequencies, LoseTheLeadOfARollOffBelow) {
    const double none = removeRollOffLead(set, weights);
    const AlignedSet before = set;
    for (AlignedResponse& response : set.responses)
        for (Spectrum& ear : response.ears)
            for (std::size_t bin = 1; bin + 1 < ear.size(); ++bin)
                ear[bin] *= std::polar(1.0, 100 / (static_cast<double>(bin) * set.binWidthHz()));
    EXPECT_NEAR(none, 0, 2);
    EXPECT_NEAR(removeRollOffLead(set, weights), 100, 0.1);
    for (const double frequency : {250.0, 1000.0})
        EXPECT_NEAR(std::abs(set.responses[5].ears[0][binAt(set, frequency)] -
                             before.responses[5].ears[0][binAt(set, frequency)]),
                    0, 0.01);
}

/// The covered part is what the test built: rings of 10 degrees from -40 up.
TEST(Coverage, IsFoundFromTheLowestFullRing) {
    const CapReport report = surveyCoverage(test::rings(10, -40));
    EXPECT_NEAR(report.lowestCoveredDegrees, -40, 1e-6);
    EXPECT_LT(report.largestGapDegrees, 8);
    std::vector<Direction> sites = test::rings(10, -40);
    sites.push_back(directionFrom(20, -70)); // one more below closes no ring
    EXPECT_NEAR(surveyCoverage(sites).lowestCoveredDegrees, -40, 1e-6);
    EXPECT_NEAR(surveyCoverage(test::rings(10, -90)).lowestCoveredDegrees, -90, 1e-6);
}

TEST(Coverage, OfTooLittleOfTheSphereIsRefused) {
    std::vector<Direction> halfRings;
    for (const Direction& direction : test::rings(10, -40))
        if (direction.z >= 0)
            halfRings.push_back(direction);
    EXPECT_THROW(surveyCoverage(halfRings), DataError);
    EXPECT_THROW(surveyCoverage({}), DataError);
    std::vector<Direction> horizontal;
    for (int azimuth = 0; azimuth < 360; azimuth += 5)
        horizontal.push_back(directionFrom(azimuth, 0));
    EXPECT_THROW(surveyCoverage(horizontal), DataError); // nothing above: a hole of 90 degrees
}

class LowerCap : public ::testing::Test {
protected:
    LowerCap() { report = completeLowerCap(set, sphere); }

    double levelDb(const Direction& direction, std::size_t ear, double frequencyHz) const {
        const auto mixed = mixResponses(set, naturalWeights(set.directions(), direction), direction);
        return decibels(std::abs(mixed.ears[ear][binAt(set, frequencyHz)]));
    }

    AlignedSet set = alignResponses(test::SyntheticHead().measure(test::rings(10, -40)));
    SphericalHead sphere{set.distanceMetres, set.binWidthHz(), set.transformSize / 2 + 1};
    CapReport report;
};

/// Property: no direction of the sphere is far from a site any more, and the additions are marked.
TEST_F(LowerCap, ClosesTheSphereBelowTheMeasurement) {
    EXPECT_GT(report.modelledCount, 50u);
    const auto sites = set.directions();
    for (const Direction& direction : test::spiral(300))
        EXPECT_LT(nearestSiteDegrees(sites, direction), 8);
    EXPECT_EQ(static_cast<std::size_t>(std::ranges::count_if(set.responses, &AlignedResponse::modelled)),
              report.modelledCount);
    for (const AlignedResponse& response : set.responses)
        EXPECT_EQ(response.modelled, elevationDegrees(response.direction) < -40.5);
}

/// Property: crossing the lowest measured ring, levels and arrivals go on without a step: 2 degrees on either
/// side differ by less than a tenth of what the whole circle spans.
TEST_F(LowerCap, JoinsTheMeasurementSmoothly) {
    for (const double azimuth : {0.0, 45.0, 90.0, 180.0, 250.0})
        for (const double frequency : {500.0, 2000.0, 5000.0}) {
            const double above = levelDb(directionFrom(azimuth, -39), leftEar, frequency);
            const double below = levelDb(directionFrom(azimuth, -41), leftEar, frequency);
            EXPECT_NEAR(above, below, 0.5) << azimuth << " degrees, " << frequency << " Hz";
        }
}

/// Analytic: below a head that mirrors, the pole is heard alike and at one time by both ears.
TEST_F(LowerCap, IsTheSameForBothEarsAtThePole) {
    const AlignedResponse& pole = set.responses.back();
    ASSERT_NEAR(elevationDegrees(pole.direction), -90, 1e-9);
    EXPECT_NEAR(pole.arrivalSeconds[leftEar], pole.arrivalSeconds[rightEar], 1e-7);
    for (const double frequency : {300.0, 1000.0, 6000.0})
        EXPECT_NEAR(std::abs(pole.ears[leftEar][binAt(set, frequency)]),
                    std::abs(pole.ears[rightEar][binAt(set, frequency)]), 1e-3);
}

/// Property: on the way down the side source loses its side.
TEST_F(LowerCap, TakesTheDifferenceBetweenTheEarsDownToNothing) {
    double before = 1000;
    for (const int elevation : {-40, -50, -60, -70, -80, -90}) {
        const Direction direction = directionFrom(90, elevation);
        const auto mixed = mixResponses(set, naturalWeights(set.directions(), direction), direction);
        const double difference = (mixed.arrivalSeconds[leftEar] - mixed.arrivalSeconds[rightEar]) * 1e6;
        EXPECT_LT(difference, before) << elevation;
        before = difference;
    }
    EXPECT_NEAR(before, 0, 1);
}

TEST(FullSpheres, NeedNoLowerCap) {
    AlignedSet set = alignResponses(test::SyntheticHead().measure(test::rings(15, -90)));
    const std::size_t count = set.responses.size();
    const SphericalHead sphere(set.distanceMetres, set.binWidthHz(), set.transformSize / 2 + 1);
    EXPECT_EQ(completeLowerCap(set, sphere).modelledCount, 0u);
    EXPECT_EQ(set.responses.size(), count);
}

} // namespace
