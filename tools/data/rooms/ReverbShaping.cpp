// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rooms/ReverbShaping.h"

#include "data/head/MeasuredSet.h"
#include "data/measures/RoomMeasures.h"
#include "data/rooms/DecaySearch.h"
#include "data/rooms/LateReverb.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <utility>

namespace orvane::kestrum::tools {

namespace {

using EarSamples = std::array<Samples, 2>;

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

/// Adds one band of both ears: decay, then power.
void addBand(EarSamples& sum, const EarSamples& coherent, const ReverbBand& band, double t60,
             const Shape& shape) {
    const std::size_t length = shape.own.size();
    const double rate = decayRateFor(courseOf(coherent, shape.heard), t60);
    Shape decayed = shape;
    for (std::size_t frame = 0; frame < length; ++frame) {
        const double gain = std::exp(-rate * static_cast<double>(frame) / masterSampleRate);
        decayed.own[frame] *= gain;
        decayed.heard[frame] *= gain;
    }
    double gain = 1;
    if (!band.keepsPower) {
        const Covariance made = covarianceOf(coherent, decayed.heard);
        const double power =
            (band.meant.left + band.meant.right) * energyOf(decayed.heard) / (made.left + made.right);
        gain = band.level * std::sqrt(power);
    }
    for (std::size_t ear = 0; ear < 2; ++ear)
        for (std::size_t frame = 0; frame < length; ++frame)
            sum[ear][frame] += gain * coherent[ear][frame] * decayed.own[frame];
}

EarSamples asHeard(const EarSamples& response, const Shape& shape) {
    EarSamples heard = response;
    for (Samples& ear : heard)
        std::ranges::transform(ear, shape.heardAfterwards, ear.begin(), std::multiplies<>());
    return heard;
}

/// The whole response. Each band decays as it is asked to, but an octave holds several, and neighbours of another
/// decay and level reach into it: what an octave is off by is asked for in advance, until all are near enough.
EarSamples sumOfBands(const std::vector<EarSamples>& parts, const std::vector<ReverbBand>& bands,
                      const RoomDescription& room, const Shape& shape) {
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
            addBand(sum, parts[band], bands[band], t60At(asked, bands[band].centreHz), shape);
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
double correctCoherence(std::vector<Covariance>& asked, const std::vector<ReverbBand>& bands,
                        std::span<const CoherenceBand> wanted, const EarSamples& response, const Shape& shape,
                        const RoomDescription& room) {
    constexpr double damping = 0.7;
    constexpr double largest = 0.98;
    constexpr double comparedToHz = 12000;
    const std::vector<CoherenceBand> made =
        lateCoherence(asHeard(response, shape), masterSampleRate, room.mixingMs / 1000);
    double error = 0;
    for (std::size_t band = 0; band < made.size() && made[band].centreHz < comparedToHz; ++band) {
        if (bands[band].keepsCoherence)
            continue;
        const double off = made[band].zeroLag - wanted[band].zeroLag;
        error = std::max(error, std::abs(off));
        const double scale = std::sqrt(bands[band].meant.left * bands[band].meant.right);
        asked[band].cross = scale * std::clamp(asked[band].cross / scale - damping * off, -largest, largest);
    }
    return error;
}

void addSlaps(std::vector<EarSamples>& parts, const std::vector<EarSamples>& slaps) {
    for (std::size_t band = 0; band < parts.size(); ++band)
        for (std::size_t ear = 0; ear < 2; ++ear)
            for (std::size_t frame = 0; frame < parts[band][ear].size(); ++frame)
                parts[band][ear][frame] += slaps[band][ear][frame];
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

double startGain(const RoomDescription& room, double seconds) {
    constexpr double riseSeconds = 1e-3;
    const double way = std::clamp(1 - (room.onsetMs / 1000 - seconds) / riseSeconds, 0.0, 1.0);
    return 0.5 - 0.5 * std::cos(std::numbers::pi * way);
}

std::array<Samples, 2> withCoherence(const std::array<Samples, 2>& ears, const Covariance& meant,
                                     double bandwidthHz, std::size_t length) {
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

std::array<Samples, 2> bandOf(const std::array<Spectrum, 2>& spectra, const BandWindow& band,
                              RealTransform& transform) {
    std::array<Samples, 2> ears;
    for (std::size_t ear = 0; ear < 2; ++ear) {
        Spectrum part(transform.binCount());
        for (std::size_t index = 0; index < band.gains.size(); ++index)
            part[band.firstBin + index] = band.gains[index] * spectra[ear][band.firstBin + index];
        ears[ear] = transform.inverse(part);
    }
    return ears;
}

std::array<Samples, 2> shapedReverb(const std::vector<ReverbBand>& bands, const RoomDescription& room,
                                    std::span<const CoherenceBand> coherence,
                                    std::span<const float> heardThrough,
                                    const std::vector<std::array<Samples, 2>>& slaps) {
    constexpr int coherenceRounds = 5;
    constexpr double nearEnough = 0.05;
    const std::size_t length = frameCountAt(room, masterSampleRate);
    const Shape shape = shapeOf(room, length, heardThrough);
    EarSamples best;
    std::vector<EarSamples> bestParts;
    double smallestError = std::numeric_limits<double>::infinity();
    std::vector<Covariance> asked;
    asked.reserve(bands.size());
    for (const ReverbBand& band : bands)
        asked.push_back(band.meant);
    for (int round = 0; round < coherenceRounds && smallestError > nearEnough; ++round) {
        std::vector<EarSamples> coherent;
        coherent.reserve(bands.size());
        for (std::size_t band = 0; band < bands.size(); ++band)
            coherent.push_back(bands[band].keepsCoherence
                                   ? bands[band].samples
                                   : withCoherence(bands[band].samples, asked[band],
                                                   bands[band].centreHz * thirdOctaveWidth, length));
        EarSamples sum = sumOfBands(coherent, bands, room, shape);
        const double error = correctCoherence(asked, bands, coherence, sum, shape, room);
        if (error < smallestError) {
            smallestError = error;
            best = std::move(sum);
            bestParts = std::move(coherent);
        }
    }
    if (!slaps.empty()) { // they come from one place each, so they join what already has its coherence
        addSlaps(bestParts, slaps);
        best = sumOfBands(bestParts, bands, room, shape);
    }
    normalise(best);
    return best;
}

} // namespace orvane::kestrum::tools
