// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/measures/RoomMeasures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>
#include <tuple>

namespace {

using namespace orvane::kestrum::tools;

std::size_t samplesOf(double seconds, double sampleRate) {
    return static_cast<std::size_t>(std::lround(seconds * sampleRate));
}

double decayAt(double seconds, double decaySeconds) { return std::pow(10.0, -3 * seconds / decaySeconds); }

/// Sums of twelve uniform numbers: Gaussian far beyond what a share outside one deviation can tell.
Samples gaussianNoise(std::size_t length, std::uint32_t seed) {
    std::mt19937 generator(seed);
    Samples noise(length);
    for (double& sample : noise) {
        sample = -6;
        for (int term = 0; term < 12; ++term)
            sample += static_cast<double>(generator()) / 4294967296.0;
    }
    return noise;
}

Samples decayingTone(double frequencyHz, double decaySeconds, double seconds, double sampleRate) {
    Samples tone(samplesOf(seconds, sampleRate));
    for (std::size_t index = 0; index < tone.size(); ++index) {
        const double time = static_cast<double>(index) / sampleRate;
        tone[index] = std::cos(2 * std::numbers::pi * frequencyHz * time) * decayAt(time, decaySeconds);
    }
    return tone;
}

Samples decayingNoise(double decaySeconds, double seconds, double sampleRate, std::uint32_t seed) {
    Samples noise = gaussianNoise(samplesOf(seconds, sampleRate), seed);
    for (std::size_t index = 0; index < noise.size(); ++index)
        noise[index] *= decayAt(static_cast<double>(index) / sampleRate, decaySeconds);
    return noise;
}

/// A pure exponential without sign: every energy in it is a geometric sum.
Samples exponential(double decaySeconds, double seconds, double sampleRate) {
    Samples decay(samplesOf(seconds, sampleRate));
    for (std::size_t index = 0; index < decay.size(); ++index)
        decay[index] = decayAt(static_cast<double>(index) / sampleRate, decaySeconds);
    return decay;
}

using DecayCase = std::tuple<double, double, double>; ///< Rate, band, decay time.

/// Analytic reference: a tone at the middle of the band with an exponential envelope has the envelope's decay
/// time. Short decays in low bands are the hard case: the filter itself rings as long.
class BandDecay : public ::testing::TestWithParam<DecayCase> {};

TEST_P(BandDecay, IsThatOfAnExponentialToneInTheBand) {
    const auto [sampleRate, centreHz, seconds] = GetParam();
    const Samples tone = decayingTone(centreHz, seconds, 2 * seconds + 0.1, sampleRate);
    const Samples band = octaveBand(tone, sampleRate, centreHz);
    const DecayTime time = decayTime(energyDecayDb(band, sampleRate), sampleRate);
    EXPECT_NEAR(time.seconds, seconds, 0.02 * seconds);
    EXPECT_EQ(time.rangeDb, 30);
}

INSTANTIATE_TEST_SUITE_P(RatesBandsAndTimes, BandDecay,
                         ::testing::Combine(::testing::Values(24000.0, 44100.0, 48000.0),
                                            ::testing::Values(125.0, 250.0, 500.0, 1000.0, 4000.0, 8000.0),
                                            ::testing::Values(0.08, 0.3, 2.2)));

/// Reference: noise decays as its envelope; the estimate scatters with the square root of bandwidth and time.
TEST(DecayTimes, OfDecayingNoiseAreThoseOfItsEnvelopeInEveryBand) {
    constexpr double sampleRate = 48000, seconds = 0.5;
    const EarResponses ears{decayingNoise(seconds, 1, sampleRate, 1),
                            decayingNoise(seconds, 1, sampleRate, 2)};
    const OctaveDecays decays = octaveDecayTimes(ears, sampleRate);
    for (std::size_t octave = 0; octave < decays.size(); ++octave) {
        const double freedom = roomOctavesHz[octave] * std::numbers::sqrt2 / 2 * seconds;
        EXPECT_NEAR(decays[octave].seconds, seconds, seconds * 0.7 / std::sqrt(freedom))
            << roomOctavesHz[octave];
    }
    EXPECT_NEAR(midDecaySeconds(decays), seconds, 0.03 * seconds);
}

/// Reference: the same decay without noise. Steady noise 40 dB under the start would bend a plain backward
/// integral long before -25 dB.
TEST(DecayTimes, AreNotLengthenedByNoiseBehindTheDecay) {
    constexpr double sampleRate = 48000, seconds = 0.4;
    for (const double noiseDb : {-60.0, -45.0}) {
        Samples response = decayingNoise(seconds, 2, sampleRate, 3);
        const Samples floor = gaussianNoise(response.size(), 4);
        for (std::size_t index = 0; index < response.size(); ++index)
            response[index] += floor[index] * std::pow(10, noiseDb / 20);
        const DecayTime time = decayTime(energyDecayDb(response, sampleRate), sampleRate);
        EXPECT_NEAR(time.seconds, seconds, 0.04 * seconds) << noiseDb;
        EXPECT_EQ(time.rangeDb, noiseDb < -50 ? 30 : 20) << noiseDb;
    }
}

/// By the definition of T30: a fall of 60 dB at that slope, read off a curve that is a straight line.
TEST(DecayTimes, OfAStraightCurveAreReadOffItsSlope) {
    Samples curve;
    for (int index = 0; index < 1000; ++index)
        curve.push_back(-0.06 * index);
    EXPECT_NEAR(decayTime(curve, 1000).seconds, 1.0, 1e-9);
    EXPECT_EQ(decayTime(curve, 1000).rangeDb, 30);
    curve.resize(600); // ends at -36 dB: no reserve for 30 dB
    EXPECT_EQ(decayTime(curve, 1000).rangeDb, 20);
    curve.resize(500);
    EXPECT_EQ(decayTime(curve, 1000).rangeDb, 0);
    EXPECT_EQ(decayTime({}, 1000).seconds, 0);
}

/// Analytic reference: what is left of an exponential falls as the exponential does.
TEST(EnergyDecay, OfAnExponentialIsAStraightLineOfItsSlope) {
    constexpr double sampleRate = 1000;
    const Samples decay = energyDecayDb(exponential(0.5, 3, sampleRate), sampleRate);
    for (const double seconds : {0.0, 0.1, 0.25, 0.5})
        EXPECT_NEAR(decay[samplesOf(seconds, sampleRate)], -60 * seconds / 0.5, 1e-6);
}

TEST(EnergyDecay, OfSilenceIsEmpty) {
    EXPECT_THAT(energyDecayDb(Samples(1000), 48000), ::testing::IsEmpty());
    EXPECT_THAT(energyDecayDb(Samples{}, 48000), ::testing::IsEmpty());
    EXPECT_EQ(octaveDecayTimes({Samples(1000), Samples(1000)}, 48000)[2].seconds, 0);
}

/// The energy of a band does not go backwards: an octave of a unit impulse holds its share of the spectrum.
TEST(OctaveBands, KeepTheEnergyThatAnImpulseAtTheFirstSampleBringsThem) {
    constexpr double sampleRate = 48000, centreHz = 1000;
    Samples impulse(4800);
    impulse[0] = 1;
    double energy = 0;
    for (const double sample : octaveBand(impulse, sampleRate, centreHz))
        energy += sample * sample;
    // Third-order Butterworth: noise bandwidth pi / 3 (1.047) times the one between its edges.
    const double share = centreHz / std::numbers::sqrt2 * std::numbers::pi / 3 / (sampleRate / 2);
    EXPECT_NEAR(energy, share, 0.01 * share);
}

/// Analytic reference: an exponential decay of time T has C = 10 lg(exp(13.82 t / T) - 1).
TEST(Clarity, OfAnExponentialIsThatOfItsFormula) {
    constexpr double sampleRate = 48000;
    for (const double seconds : {0.08, 0.28, 1.0, 2.2}) {
        const Samples decay = exponential(seconds, 2 * seconds + 0.2, sampleRate);
        Samples late(480);
        late.insert(late.end(), decay.begin(), decay.end());
        for (const double early : {0.05, 0.08}) {
            const double expected = 10 * std::log10(std::exp(6 * std::numbers::ln10 * early / seconds) - 1);
            EXPECT_NEAR(clarityDb({decay, decay}, sampleRate, early), expected, 0.01);
            EXPECT_NEAR(clarityDb({late, late}, sampleRate, early), expected, 0.01) << "10 ms later";
        }
    }
}

/// Analytic reference: energies that are chosen.
TEST(Clarity, AndDirectLevelOfAnImpulseAndNoiseAreThoseOfTheirEnergies) {
    constexpr double sampleRate = 48000;
    EarResponses direct{Samples(48000), Samples(48000)};
    direct[leftEar][100] = 2;
    direct[rightEar][110] = 1;
    EarResponses noise{Samples(48000), Samples(48000)};
    const Samples early = gaussianNoise(960, 5);
    const Samples late = gaussianNoise(9600, 6);
    const auto normalised = [](Samples& target, std::size_t at, const Samples& source, double energy) {
        double sum = 0;
        for (const double sample : source)
            sum += sample * sample;
        for (std::size_t index = 0; index < source.size(); ++index)
            target[at + index] = source[index] * std::sqrt(energy / sum);
    };
    normalised(noise[leftEar], 500, early, 1.0);
    normalised(noise[rightEar], 4800, late, 0.5);
    EarResponses full = noise;
    for (std::size_t ear = 0; ear < full.size(); ++ear)
        for (std::size_t index = 0; index < full[ear].size(); ++index)
            full[ear][index] += direct[ear][index];
    EXPECT_EQ(onsetOf(full), 100U);
    EXPECT_NEAR(clarityDb(full, sampleRate, 0.05), 10 * std::log10((4 + 1 + 1.0) / 0.5), 1e-9);
    EXPECT_NEAR(directToRestDb(direct, noise), 10 * std::log10(5 / 1.5), 1e-9);
}

TEST(Clarity, IsBoundedWhereOneOfTheEnergiesIsMissing) {
    EarResponses impulse{Samples(48000), Samples(48000)};
    const EarResponses silence = impulse;
    impulse[leftEar][0] = 1;
    EXPECT_EQ(clarityDb(impulse, 48000, 0.05), 120);
    EXPECT_EQ(directToRestDb(silence, impulse), -120);
    EXPECT_EQ(onsetOf(silence), 48000U);
}

/// Analytic reference: of two mixes a + b and c a + s b of independent noise the coherence is c.
class MixedNoise : public ::testing::TestWithParam<double> {};

TEST_P(MixedNoise, HasTheCoherenceOfItsMixInEveryBandThatIsLongEnough) {
    constexpr double sampleRate = 48000, seconds = 1.5;
    const double mixed = GetParam();
    const Samples left = decayingNoise(seconds, 3, sampleRate, 7);
    const Samples other = decayingNoise(seconds, 3, sampleRate, 8);
    Samples right(left.size());
    for (std::size_t index = 0; index < right.size(); ++index)
        right[index] = mixed * left[index] + std::sqrt(1 - mixed * mixed) * other[index];
    const auto bands = lateCoherence({left, right}, sampleRate, 0.03);
    ASSERT_GT(bands.size(), 20U);
    for (const CoherenceBand& band : bands) {
        EXPECT_GT(band.freedom, 15) << band.centreHz; // a second of 23 Hz
        EXPECT_NEAR(band.zeroLag, mixed, 3 / std::sqrt(2 * band.freedom)) << band.centreHz;
        EXPECT_GE(band.magnitude, std::abs(band.zeroLag) - 1e-12);
        EXPECT_LE(band.magnitude, 1 + 1e-12);
    }
}

INSTANTIATE_TEST_SUITE_P(Shares, MixedNoise, ::testing::Values(-0.7, 0.0, 0.5, 0.95));

TEST(LateCoherence, OfEqualEarsIsOneAndOfOppositeEarsMinusOne) {
    const Samples left = decayingNoise(0.3, 1, 48000, 9);
    Samples right = left;
    for (double& sample : right)
        sample = -sample;
    for (const CoherenceBand& band : lateCoherence({left, left}, 48000, 0))
        EXPECT_NEAR(band.zeroLag, 1, 1e-9);
    for (const CoherenceBand& band : lateCoherence({left, right}, 48000, 0)) {
        EXPECT_NEAR(band.zeroLag, -1, 1e-9);
        EXPECT_NEAR(band.magnitude, 1, 1e-9);
    }
    EXPECT_THAT(lateCoherence({Samples(100), Samples(100)}, 48000, 0), ::testing::IsEmpty());
    EXPECT_THAT(lateCoherence({left, left}, 48000, 5), ::testing::IsEmpty()) << "from behind the end";
}

/// Analytic reference: two omnidirectional ears a distance d apart see sin(kd) / kd of each other in a diffuse
/// field (Cook et al., Measurement of correlation coefficients in reverberant sound fields, JASA 27, 1955).
TEST(DiffuseFieldCoherence, OfTwoPointsInFreeSpaceIsTheSincOfTheirDistance) {
    constexpr double sampleRate = 48000, distanceMetres = 0.17, soundMetresPerSecond = 343;
    constexpr int rings = 400;
    std::vector<EarResponses> responses;
    for (int ring = 0; ring < rings; ++ring) {
        const double along = (2.0 * ring + 1) / rings - 1; // rings of equal solid angle round the axis
        const double delay = distanceMetres / soundMetresPerSecond * along * sampleRate;
        RealTransform transform(256);
        Spectrum spectrum(transform.binCount(), 1.0);
        delaySpectrum(spectrum, 128 + delay);
        EarResponses response{Samples(256), transform.inverse(spectrum)};
        response[leftEar][128] = 1;
        responses.push_back(response);
    }
    const std::vector<double> weights(rings, 1.0);
    for (const CoherenceBand& band : diffuseFieldCoherence(responses, weights, sampleRate)) {
        if (band.centreHz > 3000)
            break;
        double expected = 0; // mean over the band
        constexpr int steps = 200;
        for (int step = 0; step < steps; ++step) {
            const double frequency =
                band.centreHz *
                (std::exp2(-1.0 / 6) + (step + 0.5) / steps * (std::exp2(1.0 / 6) - std::exp2(-1.0 / 6)));
            const double kd = 2 * std::numbers::pi * frequency * distanceMetres / soundMetresPerSecond;
            expected += std::sin(kd) / kd / steps;
        }
        EXPECT_NEAR(band.zeroLag, expected, 0.01) << band.centreHz;
        EXPECT_NEAR(band.magnitude, std::abs(expected), 0.01) << band.centreHz;
    }
}

/// By definition: Gaussian noise has density 1. A window of 20 ms holds some 600 independent samples.
TEST(EchoDensities, OfGaussianNoiseAreOne) {
    const EchoDensity density = echoDensity(gaussianNoise(48000, 10), 48000);
    double mean = 0;
    for (std::size_t index = 20; index + 20 < density.values.size(); ++index) {
        EXPECT_NEAR(density.values[index], 1, 0.25);
        mean += density.values[index] / static_cast<double>(density.values.size() - 40);
    }
    EXPECT_NEAR(mean, 1, 0.02);
    EXPECT_GE(density.fullSeconds, 0);
    EXPECT_LT(density.fullSeconds, 0.05);
}

/// The same with some 150 independent samples to a window: four deviations of a tenth wide. Measured against a deviation
/// that scatters itself the mean comes out 2 % high.
TEST(EchoDensities, OfGaussianNoiseAreOneInShortWindowsToo) {
    constexpr double window = 0.005;
    const EchoDensity density = echoDensity(gaussianNoise(48000, 13), 48000, 0, window);
    double mean = 0;
    for (std::size_t index = 5; index + 5 < density.values.size(); ++index) {
        EXPECT_NEAR(density.values[index], 1, 0.48);
        mean += density.values[index] / static_cast<double>(density.values.size() - 10);
    }
    EXPECT_NEAR(mean, 1, 0.04);
    EXPECT_EQ(density.windowSeconds, window);
}

/// Noise that begins out of silence is seen as soon as the window has entered it; a long window sees it later.
TEST(EchoDensities, OfNoiseThatBeginsAreFullWithinAWindowOfItsBeginning) {
    double shortSum = 0;
    double longSum = 0;
    constexpr int runs = 20;
    for (std::uint32_t seed = 0; seed < runs; ++seed) {
        Samples response = gaussianNoise(9600, 20 + seed);
        std::fill_n(response.begin(), 480, 0.0); // 10 ms
        response[0] = 0.5;
        response[240] = -0.5;
        shortSum += echoDensity(response, 48000, 0, 0.005).fullSeconds / runs;
        longSum += echoDensity(response, 48000, 0, 0.02).fullSeconds / runs;
    }
    EXPECT_GT(shortSum, 0.01);
    EXPECT_LT(shortSum, 0.01 + 0.005);
    EXPECT_GT(longSum, 0.015);
}

TEST(EchoDensities, OfSparsePulsesAreNearNoughtAndNeverFull) {
    Samples pulses(48000);
    for (std::size_t index = 100; index < pulses.size(); index += 480)
        pulses[index] = index % 960 == 100 ? 1 : -0.5;
    const EchoDensity density = echoDensity(pulses, 48000);
    EXPECT_THAT(density.values, ::testing::Each(::testing::Lt(0.05)));
    EXPECT_LT(density.fullSeconds, 0);
    EXPECT_THAT(echoDensity(Samples(4800), 48000).values, ::testing::Each(0.0));
}

/// Sparse pulses up to 200 ms, noise from there on: full when the window has left the pulses.
TEST(EchoDensities, BecomeFullWhereNoiseFollowsOnPulses) {
    Samples response = gaussianNoise(48000, 11);
    for (std::size_t index = 0; index < 9600; ++index)
        response[index] = index % 960 == 0 ? 20 : 0;
    const double seconds = echoDensity(response, 48000).fullSeconds;
    EXPECT_GT(seconds, 0.19);
    EXPECT_LT(seconds, 0.24);
}

/// Reference: the noise before it decayed.
TEST(EchoDensities, OfAShortDecayAreFullOnceTheDecayIsUndone) {
    const Samples noise = decayingNoise(0.08, 0.12, 48000, 12);
    const auto meanFrom10To50 = [](const EchoDensity& density) {
        double sum = 0;
        for (std::size_t index = 10; index < 50; ++index)
            sum += density.values[index] / 40;
        return sum;
    };
    EXPECT_LT(meanFrom10To50(echoDensity(noise, 48000)), 0.9);
    EXPECT_NEAR(meanFrom10To50(echoDensity(noise, 48000, 0.08)), 1, 0.08);
}

} // namespace
