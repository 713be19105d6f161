// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rooms/ReflectionField.h"

#include "data/head/MeasuredSet.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::tools {

namespace {

using EarSamples = std::array<Samples, 2>;

/// Adds one reflection from a place of the head's grid.
void addReflection(EarSamples& field, const DiffuseHead& head, std::size_t place, std::size_t start,
                   double gain) {
    for (std::size_t ear = 0; ear < 2; ++ear) {
        const Samples& response = head.response(place)[ear];
        const std::size_t count = std::min(response.size(), field[ear].size() - start);
        for (std::size_t index = 0; index < count; ++index)
            field[ear][start + index] += gain * response[index];
    }
}

/// Single reflections end well before the mixing time: by then they are to be blurred.
constexpr double lastSingleShare = 0.7;

/// How much of the field is noise at a moment: nothing at the first reflection, all from the last single one on.
double noiseShare(const RoomDescription& room, double seconds) {
    const double lastMs = lastSingleShare * room.mixingMs;
    const double way = std::clamp((seconds * 1000 - room.onsetMs) / (lastMs - room.onsetMs), 0.0, 1.0);
    return way * way;
}

/// Single reflections: as many per second as the square of time says, each with the energy that keeps the mean
/// power.
void addSingleReflections(EarSamples& field, const RoomDescription& room, const DiffuseHead& head,
                          RandomNumbers& random) {
    constexpr double densestPerSecond = 20000; // a score overlap at the ear: no single one is heard
    constexpr double sparsestShare = 0.05;     // fewer would stick out of the room's own first reflections
    const double rate = head.sampleRate();
    const double mixing = lastSingleShare * room.mixingMs / 1000;
    double seconds = room.onsetMs / 1000;
    while (seconds < mixing) {
        const double density =
            densestPerSecond * std::max(seconds * seconds / (mixing * mixing), sparsestShare);
        const double energy = rate / density * (1 - noiseShare(room, seconds));
        addReflection(field, head, head.place(random.uniform()), static_cast<std::size_t>(seconds * rate),
                      random.sign() * std::sqrt(energy));
        seconds +=
            (0.5 + random.uniform()) / density; // velvet-like: one in each span, no bursts and no holes
    }
}

constexpr double slapSeconds = 0.03; ///< As wide as a stand is deep.

/// A slap is a short burst of noise from one place.
void addSlap(EarSamples& field, const LateSlap& slap, const DiffuseHead& head, RandomNumbers& random) {
    const double rate = head.sampleRate();
    const auto count = static_cast<std::size_t>(2 * slapSeconds * rate);
    const auto first = static_cast<std::size_t>((slap.seconds - slapSeconds) * rate);
    const double gain = std::pow(10.0, slap.levelDb / 20);
    for (std::size_t index = 0; index < count; ++index) {
        const double way = (static_cast<double>(index) + 0.5) / static_cast<double>(count);
        const double shape = std::sin(std::numbers::pi * way);
        const double azimuth = slap.azimuthDegrees + 10 * random.normal();
        const auto place = gridIndex(
            gridStepDegrees * static_cast<int>(std::lround(azimuth / gridStepDegrees)),
            gridStepDegrees * static_cast<int>(std::lround(slap.elevationDegrees / gridStepDegrees)));
        addReflection(field, head, place, first + index, gain * shape * shape * random.normal());
    }
}

/// Two voices become two ears: their sum and difference in the shares that give the coherence.
void addNoise(std::array<Spectrum, 2>& spectra, const RoomDescription& room, const DiffuseHead& head,
              std::size_t length, RealTransform& transform, RandomNumbers& random) {
    std::array<Spectrum, 2> voices;
    for (Spectrum& voice : voices) {
        Samples noise(length);
        for (std::size_t frame = 0; frame < length; ++frame)
            noise[frame] =
                random.normal() * std::sqrt(noiseShare(room, static_cast<double>(frame) / head.sampleRate()));
        voice = transform.forward(noise);
    }
    const HeadField field = head.field(transform.size());
    for (std::size_t bin = 0; bin < transform.binCount(); ++bin) {
        const double coherence = std::clamp(field.coherence[bin], -1.0, 1.0);
        const auto sum = std::sqrt((1 + coherence) / 2) * voices[0][bin];
        const auto difference = std::sqrt((1 - coherence) / 2) * voices[1][bin];
        spectra[leftEar][bin] += std::sqrt(field.power[leftEar][bin]) * (sum + difference);
        spectra[rightEar][bin] += std::sqrt(field.power[rightEar][bin]) * (sum - difference);
    }
}

} // namespace

ReflectionField reflectionField(const RoomDescription& room, const DiffuseHead& head, std::size_t length,
                                RealTransform& transform, RandomNumbers& random) {
    EarSamples single{Samples(length), Samples(length)};
    addSingleReflections(single, room, head, random);
    EarSamples slaps{Samples(length), Samples(length)};
    for (const LateSlap& slap : room.slaps)
        addSlap(slaps, slap, head, random);
    ReflectionField field{{transform.forward(single[leftEar]), transform.forward(single[rightEar])},
                          {transform.forward(slaps[leftEar]), transform.forward(slaps[rightEar])}};
    addNoise(field.diffuse, room, head, length, transform, random);
    return field;
}

} // namespace orvane::kestrum::tools
