// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/LateReverb.h"

#include "data/DecaySearch.h"
#include "data/EarCovariance.h"
#include "data/MeasuredSet.h"
#include "data/RandomNumbers.h"
#include "data/ReflectionField.h"
#include "data/RoomMeasures.h"
#include "data/ThirdOctaves.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <utility>
#include <vector>

namespace orvane::kestrum::tools {

namespace {

using EarSamples = std::array<Samples, 2>;

constexpr double thirdOctaveWidth = 0.2316; ///< Of a band, over its centre.

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

/// From the room's early level at the first reflection straight to 0 dB at the mixing time.
double earlyGain(const RoomDescription& room, double seconds) {
    const double way = std::clamp((seconds * 1000 - room.onsetMs) / (room.mixingMs - room.onsetMs), 0.0, 1.0);
    return std::pow(10.0, room.earlyDb * (1 - way) / 20);
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
        const double seconds = static_cast<double>(frame) / masterSampleRate;
        shape.own[frame] = startGain(room, seconds) * earlyGain(room, seconds) * endGain(share);
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

/// Of the span that begins with frame `from` and is weighted by `shape`.
Covariance covarianceOf(const EarSamples& ears, const Samples& shape, std::size_t from = 0) {
    Covariance sum;
    for (std::size_t frame = 0; frame < shape.size(); ++frame) {
        const double left = ears[leftEar][from + frame] * shape[frame];
        const double right = ears[rightEar][from + frame] * shape[frame];
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

/// Gives a band the coherence of the field, span by span: by chance alone a few milliseconds of noise would have any.
/// Each span keeps its power. Spans overlap by half and last several times as long as the band takes to swing in.
EarSamples withCoherence(const EarSamples& ears, const Covariance& meant, double bandwidthHz,
                         std::size_t length) {
    constexpr double swings = 6;
    constexpr double shortestSeconds = 0.04;
    const auto hop =
        static_cast<std::size_t>(std::max(swings / bandwidthHz, shortestSeconds) / 2 * masterSampleRate);
    EarSamples result{Samples(length), Samples(length)};
    for (std::size_t middle = 0; middle < length + hop; middle += hop) {
        const std::size_t from = middle > hop ? middle - hop : 0;
        const std::size_t to = std::min(middle + hop, length);
        Samples window(to - from);
        for (std::size_t frame = from; frame < to; ++frame) {
            const double away =
                (static_cast<double>(frame) - static_cast<double>(middle)) / static_cast<double>(hop);
            window[frame - from] = 0.5 + 0.5 * std::cos(std::numbers::pi * away);
        }
        const Covariance made = covarianceOf(ears, window, from);
        const double scale = (made.left + made.right) / (meant.left + meant.right);
        if (scale <= 0)
            continue;
        const EarMix mix = mixBetween(made, {scale * meant.left, scale * meant.right, scale * meant.cross});
        for (std::size_t frame = from; frame < to; ++frame) {
            const double left = window[frame - from] * ears[leftEar][frame];
            const double right = window[frame - from] * ears[rightEar][frame];
            result[leftEar][frame] += mix.left * left + mix.cross * right;
            result[rightEar][frame] += mix.cross * left + mix.right * right;
        }
    }
    return result;
}

/// Adds one band of both ears: decay, then power.
void addBand(EarSamples& sum, const EarSamples& coherent, const BandWindow& band, const RoomDescription& room,
             double t60, const Covariance& meant, const Shape& shape) {
    const std::size_t length = shape.own.size();
    const double rate = decayRateFor(courseOf(coherent, shape.heard), t60);
    Shape decayed = shape;
    for (std::size_t frame = 0; frame < length; ++frame) {
        const double gain = std::exp(-rate * static_cast<double>(frame) / masterSampleRate);
        decayed.own[frame] *= gain;
        decayed.heard[frame] *= gain;
    }
    const Covariance made = covarianceOf(coherent, decayed.heard);
    const double power = (meant.left + meant.right) * energyOf(decayed.heard) / (made.left + made.right);
    const double gain = colour(room, band.centreHz) * std::sqrt(power);
    for (std::size_t ear = 0; ear < 2; ++ear)
        for (std::size_t frame = 0; frame < length; ++frame)
            sum[ear][frame] += gain * coherent[ear][frame] * decayed.own[frame];
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

EarSamples asHeard(const EarSamples& response, const Shape& shape) {
    EarSamples heard = response;
    for (Samples& ear : heard)
        std::ranges::transform(ear, shape.heardAfterwards, ear.begin(), std::multiplies<>());
    return heard;
}

/// The whole response. Each band decays as it is asked to, but an octave holds several, and neighbours of another
/// decay and level reach into it: what an octave is off by is asked for in advance, until all are near enough.
EarSamples sumOfBands(const std::vector<EarSamples>& parts,
                      const std::array<BandWindow, thirdOctaveCount>& bands,
                      const std::array<Covariance, thirdOctaveCount>& meant, const RoomDescription& room,
                      const Shape& shape) {
    constexpr int rounds = 8;
    constexpr double nearEnough = 0.01;
    constexpr double damping = 0.7;
    constexpr double smallestTimesBandwidth =
        12; // below it the octave filter's own swinging in joins the decay
    const auto timesBandwidth = [&room](std::size_t octave) {
        return room.t60[octave] * roomOctavesHz[octave] / std::numbers::sqrt2;
    };
    EarSamples best;
    double smallestError = std::numeric_limits<double>::infinity();
    RoomDescription asked = room;
    for (int round = 0; round < rounds && smallestError > nearEnough; ++round) {
        EarSamples sum{Samples(shape.own.size()), Samples(shape.own.size())};
        for (std::size_t band = 0; band < bands.size(); ++band)
            addBand(sum, parts[band], bands[band], room, t60At(asked, bands[band].centreHz), meant[band],
                    shape);
        const OctaveDecays made = octaveDecayTimes(asHeard(sum, shape), masterSampleRate);
        double error = 0;
        for (std::size_t octave = 0; octave < made.size(); ++octave)
            if (made[octave].rangeDb > 0 && timesBandwidth(octave) > smallestTimesBandwidth) {
                const double ratio = made[octave].seconds / room.t60[octave];
                error = std::max(error, std::abs(ratio - 1));
                asked.t60[octave] *= std::pow(ratio, -damping);
            }
        if (error < smallestError) {
            smallestError = error;
            best = std::move(sum);
        }
    }
    return best;
}

/// Compares a response's coherence with the field's, as it is usually measured, and asks in advance for what a band is
/// off by: neighbouring bands and the sound's own start reach into each.
/// @return the largest difference.
double correctCoherence(std::array<Covariance, thirdOctaveCount>& asked,
                        const std::array<Covariance, thirdOctaveCount>& meant, const EarSamples& response,
                        const Shape& shape, const RoomDescription& room, const DiffuseHead& head) {
    constexpr double damping = 0.7;
    constexpr double largest = 0.98;
    constexpr double comparedToHz = 12000;
    const std::vector<CoherenceBand> made =
        lateCoherence(asHeard(response, shape), masterSampleRate, room.mixingMs / 1000);
    double error = 0;
    for (std::size_t band = 0; band < made.size() && made[band].centreHz < comparedToHz; ++band) {
        const double off = made[band].zeroLag - head.coherence()[band].zeroLag;
        error = std::max(error, std::abs(off));
        const double scale = std::sqrt(meant[band].left * meant[band].right);
        asked[band].cross = scale * std::clamp(asked[band].cross / scale - damping * off, -largest, largest);
    }
    return error;
}

/// Adds the slaps to every band of the field.
void addSlaps(std::vector<EarSamples>& parts, const std::array<Spectrum, 2>& slaps,
              const std::array<BandWindow, thirdOctaveCount>& bands, RealTransform& transform) {
    for (std::size_t band = 0; band < bands.size(); ++band) {
        const EarSamples slap = bandOf(slaps, bands[band], transform);
        for (std::size_t ear = 0; ear < 2; ++ear)
            for (std::size_t frame = 0; frame < parts[band][ear].size(); ++frame)
                parts[band][ear][frame] += slap[ear][frame];
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
    constexpr int coherenceRounds = 5;
    constexpr double nearEnough = 0.05;
    const std::size_t length = frameCountAt(room, masterSampleRate);
    RealTransform transform(powerOfTwoFrom(length + 2 * ringing));
    RandomNumbers random(seed * seedsPerSet + static_cast<std::uint64_t>(room.room));
    const ReflectionField reflections = reflectionField(room, head, length + ringing, transform, random);
    const auto bands = thirdOctaves(transform.binCount(), masterSampleRate);
    const HeadField field = head.field(transform.size());
    const Shape shape = shapeOf(room, length, heardThrough);
    std::array<Covariance, thirdOctaveCount> meant;
    std::vector<EarSamples> parts;
    parts.reserve(bands.size());
    for (std::size_t band = 0; band < bands.size(); ++band) {
        meant[band] = meantCovariance(field, bands[band]);
        parts.push_back(bandOf(reflections.diffuse, bands[band], transform));
    }
    EarSamples best;
    std::vector<EarSamples> bestParts;
    double smallestError = std::numeric_limits<double>::infinity();
    std::array<Covariance, thirdOctaveCount> asked = meant;
    for (int round = 0; round < coherenceRounds && smallestError > nearEnough; ++round) {
        std::vector<EarSamples> coherent;
        coherent.reserve(parts.size());
        for (std::size_t band = 0; band < bands.size(); ++band)
            coherent.push_back(
                withCoherence(parts[band], asked[band], bands[band].centreHz * thirdOctaveWidth, length));
        EarSamples sum = sumOfBands(coherent, bands, meant, room, shape);
        const double error = correctCoherence(asked, meant, sum, shape, room, head);
        if (error < smallestError) {
            smallestError = error;
            best = std::move(sum);
            bestParts = std::move(coherent);
        }
    }
    if (!room.slaps.empty()) { // they come from one place each, so they join what already has its coherence
        addSlaps(bestParts, reflections.slaps, bands, transform);
        best = sumOfBands(bestParts, bands, meant, room, shape);
    }
    normalise(best);
    return best;
}

} // namespace orvane::kestrum::tools
