// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/LateReverb.h"

#include "data/DecaySearch.h"
#include "data/MeasuredSet.h"
#include "data/RandomNumbers.h"
#include "data/ReflectionField.h"
#include "data/ThirdOctaves.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::tools {

namespace {

using EarSamples = std::array<Samples, 2>;

/// Powers of both ears and what they have in common.
struct Covariance {
    double left = 0;
    double right = 0;
    double cross = 0;
};

/// A symmetric mix of two ears.
struct EarMix {
    double left = 1;
    double right = 1;
    double cross = 0;
};

Covariance product(const EarMix& mix, const Covariance& of) { // mix * of * mix
    const double a = mix.left * of.left + mix.cross * of.cross;
    const double b = mix.left * of.cross + mix.cross * of.right;
    const double c = mix.cross * of.left + mix.right * of.cross;
    const double d = mix.cross * of.cross + mix.right * of.right;
    return {a * mix.left + b * mix.cross, c * mix.cross + d * mix.right, a * mix.cross + b * mix.right};
}

EarMix root(const Covariance& of) {
    const double determinant = std::sqrt(std::max(of.left * of.right - of.cross * of.cross, 0.0));
    const double trace = std::sqrt(of.left + of.right + 2 * determinant);
    return {(of.left + determinant) / trace, (of.right + determinant) / trace, of.cross / trace};
}

EarMix inverse(const EarMix& of) {
    const double determinant = of.left * of.right - of.cross * of.cross;
    return {of.right / determinant, of.left / determinant, -of.cross / determinant};
}

/// The mix that gives signals of one covariance another and changes them as little as can be.
EarMix mixBetween(const Covariance& made, const Covariance& meant) {
    const EarMix meantRoot = root(meant);
    const EarMix between = inverse(root(product(meantRoot, made)));
    const Covariance result = product(meantRoot, {between.left, between.right, between.cross});
    return {result.left, result.right, result.cross};
}

/// What a band of the head's field has per sample of noise.
Covariance meantCovariance(const HeadField& field, const BandWindow& band) {
    Covariance sum;
    for (std::size_t index = 0; index < band.gains.size(); ++index) {
        const std::size_t bin = band.firstBin + index;
        const double power = band.gains[index] * band.gains[index];
        const double left = field.power[leftEar][bin];
        const double right = field.power[rightEar][bin];
        sum.left += power * left;
        sum.right += power * right;
        sum.cross += power * field.coherence[bin] * std::sqrt(left * right);
    }
    const double binCount = static_cast<double>(field.coherence.size() - 1);
    return {sum.left / binCount, sum.right / binCount, sum.cross / binCount};
}

/// One at the first reflection and after, rising just before: what a band's filter rings ahead goes.
double startGain(const RoomDescription& room, double seconds) {
    constexpr double riseSeconds = 1e-3;
    const double way = std::clamp(1 - (room.onsetMs / 1000 - seconds) / riseSeconds, 0.0, 1.0);
    return 0.5 - 0.5 * std::cos(std::numbers::pi * way);
}

/// Falls to nothing over the last tenth.
double endGain(double shareOfLength) {
    constexpr double fadeFrom = 0.9;
    const double way = std::max(0.0, (shareOfLength - fadeFrom) / (1 - fadeFrom));
    return 0.5 + 0.5 * std::cos(std::numbers::pi * way);
}

/// Everything that shapes a response besides its decay: start, end, and the gains it is heard through.
struct Shape {
    Samples own;             ///< Start and end.
    Samples heard;           ///< With the gains that it is heard through.
    Samples heardAfterwards; ///< Those gains alone.
};

Shape shapeOf(const RoomDescription& room, std::size_t length, std::span<const float> heardThrough) {
    Shape shape{Samples(length), Samples(length), Samples(length)};
    for (std::size_t frame = 0; frame < length; ++frame) {
        const double share = (static_cast<double>(frame) + 0.5) / static_cast<double>(length);
        shape.own[frame] = startGain(room, static_cast<double>(frame) / masterSampleRate) * endGain(share);
        const auto column = static_cast<std::size_t>(share * static_cast<double>(heardThrough.size()));
        shape.heardAfterwards[frame] = heardThrough.empty() ? 1.0 : heardThrough[column];
        shape.heard[frame] = shape.own[frame] * shape.heardAfterwards[frame];
    }
    return shape;
}

EnergyCourse courseOf(const EarSamples& ears, const Samples& shape) {
    constexpr std::size_t stepFrames = 24;
    EnergyCourse course{Samples(shape.size() / stepFrames + 1), double{stepFrames} / masterSampleRate};
    for (const Samples& ear : ears)
        for (std::size_t frame = 0; frame < shape.size(); ++frame)
            course.energies[frame / stepFrames] += ear[frame] * ear[frame] * shape[frame] * shape[frame];
    return course;
}

Covariance covarianceOf(const EarSamples& ears, const Samples& shape) {
    Covariance sum;
    for (std::size_t frame = 0; frame < shape.size(); ++frame) {
        const double left = ears[leftEar][frame] * shape[frame];
        const double right = ears[rightEar][frame] * shape[frame];
        sum.left += left * left;
        sum.right += right * right;
        sum.cross += left * right;
    }
    return sum;
}

double energyOf(const Samples& samples) {
    double sum = 0;
    for (const double sample : samples)
        sum += sample * sample;
    return sum;
}

/// Amplitude of a band at the start.
double colour(const RoomDescription& room, double frequencyHz) {
    constexpr double boomBelowHz = 150;
    constexpr double boomSlope = 4;
    const double boom = room.boomDb / (1 + std::pow(frequencyHz / boomBelowHz, boomSlope));
    const double octaves = std::log2(std::clamp(frequencyHz, 125.0, 12000.0) / 1000);
    return std::pow(10.0, (boom + room.brightnessDbPerOctave * octaves) / 20);
}

/// One band of both ears: decay, then power and coherence.
void addBand(EarSamples& sum, const EarSamples& ears, const BandWindow& band, const RoomDescription& room,
             double t60, const HeadField& field, const Shape& shape) {
    const double rate = decayRateFor(courseOf(ears, shape.heard), t60);
    Shape decayed = shape;
    for (std::size_t frame = 0; frame < shape.own.size(); ++frame) {
        const double gain = std::exp(-rate * static_cast<double>(frame) / masterSampleRate);
        decayed.own[frame] *= gain;
        decayed.heard[frame] *= gain;
    }
    const double energy = energyOf(decayed.heard) * std::pow(colour(room, band.centreHz), 2);
    const Covariance perSample = meantCovariance(field, band);
    const EarMix mix =
        mixBetween(covarianceOf(ears, decayed.heard),
                   {perSample.left * energy, perSample.right * energy, perSample.cross * energy});
    for (std::size_t frame = 0; frame < shape.own.size(); ++frame) {
        const double left = ears[leftEar][frame] * decayed.own[frame];
        const double right = ears[rightEar][frame] * decayed.own[frame];
        sum[leftEar][frame] += mix.left * left + mix.cross * right;
        sum[rightEar][frame] += mix.cross * left + mix.right * right;
    }
}

/// The part of both ears that a window lets through.
EarSamples bandOf(const std::array<Spectrum, 2>& spectra, const BandWindow& band, RealTransform& transform) {
    EarSamples ears;
    for (std::size_t ear = 0; ear < 2; ++ear) {
        Spectrum part(transform.binCount());
        for (std::size_t index = 0; index < band.gains.size(); ++index)
            part[band.firstBin + index] = band.gains[index] * spectra[ear][band.firstBin + index];
        ears[ear] = transform.inverse(part);
    }
    return ears;
}

/// The whole response with these decays in its bands.
EarSamples sumOfBands(const std::vector<EarSamples>& parts,
                      const std::array<BandWindow, thirdOctaveCount>& bands, const RoomDescription& room,
                      const RoomDescription& asked, const HeadField& field, const Shape& shape) {
    EarSamples sum{Samples(shape.own.size()), Samples(shape.own.size())};
    for (std::size_t band = 0; band < bands.size(); ++band)
        addBand(sum, parts[band], bands[band], room, t60At(asked, bands[band].centreHz), field, shape);
    return sum;
}

/// Each band decays as it is asked to, but an octave holds several, and neighbours of another decay and level reach
/// into it: what an octave is off by is asked for in advance.
void correctDecays(RoomDescription& asked, const EarSamples& made, const RoomDescription& room,
                   const Samples& heard, RealTransform& transform) {
    std::array<Spectrum, 2> spectra;
    for (std::size_t ear = 0; ear < 2; ++ear) {
        Samples asHeard = made[ear];
        for (std::size_t frame = 0; frame < heard.size(); ++frame)
            asHeard[frame] *= heard[frame];
        spectra[ear] = transform.forward(asHeard);
    }
    constexpr double filterTimeBandwidth =
        16; // below it the filter's own ringing is what is measured (ISO 3382)
    const Samples whole(heard.size(), 1.0);
    for (std::size_t octave = 0; octave < decayBandsHz.size(); ++octave) {
        const BandWindow window = octaveWindow(decayBandsHz[octave], transform.binCount(), masterSampleRate);
        const double t60 = reverberationTime(courseOf(bandOf(spectra, window, transform), whole));
        if (room.t60[octave] * decayBandsHz[octave] / std::numbers::sqrt2 > filterTimeBandwidth)
            asked.t60[octave] *= room.t60[octave] / t60;
    }
}

void normalise(EarSamples& ears) {
    double peak = 0;
    for (const Samples& ear : ears)
        for (const double sample : ear)
            peak = std::max(peak, std::abs(sample));
    for (Samples& ear : ears)
        for (double& sample : ear)
            sample /= peak;
}

} // namespace

std::array<Samples, 2> lateReverb(const RoomDescription& room, const DiffuseHead& head,
                                  std::span<const float> heardThrough, std::uint64_t seed) {
    constexpr std::size_t ringing = 4096; // what the narrowest filter rings beyond either end
    constexpr std::uint64_t seedsPerSet = 1000;
    constexpr int correctionRounds = 3;
    const std::size_t length = frameCountAt(room, masterSampleRate);
    RealTransform transform(powerOfTwoFrom(length + 2 * ringing));
    RandomNumbers random(seed * seedsPerSet + static_cast<std::uint64_t>(room.room));
    const auto spectra = reflectionField(room, head, length + ringing, transform, random);
    const auto bands = thirdOctaves(transform.binCount(), masterSampleRate);
    const HeadField field = head.field(transform.size());
    const Shape shape = shapeOf(room, length, heardThrough);
    std::vector<EarSamples> parts;
    parts.reserve(bands.size());
    for (const BandWindow& band : bands)
        parts.push_back(bandOf(spectra, band, transform));
    RoomDescription asked = room;
    EarSamples sum = sumOfBands(parts, bands, room, asked, field, shape);
    for (int round = 0; round < correctionRounds; ++round) {
        correctDecays(asked, sum, room, shape.heardAfterwards, transform);
        sum = sumOfBands(parts, bands, room, asked, field, shape);
    }
    normalise(sum);
    return sum;
}

} // namespace orvane::kestrum::tools
