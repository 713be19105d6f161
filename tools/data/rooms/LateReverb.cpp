// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rooms/LateReverb.h"

#include "data/head/MeasuredSet.h"
#include "data/rooms/RandomNumbers.h"
#include "data/rooms/ReflectionField.h"
#include "data/rooms/ReverbShaping.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace orvane::kestrum::tools {

namespace {

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

/// Amplitude of a band at the start.
double colour(const RoomDescription& room, double frequencyHz) {
    constexpr double boomBelowHz = 150;
    constexpr double boomSlope = 4;
    const double boom = room.boomDb / (1 + std::pow(frequencyHz / boomBelowHz, boomSlope));
    const double octaves = std::log2(std::clamp(frequencyHz, 125.0, 12000.0) / 1000);
    return std::pow(10.0, (boom + room.brightnessDbPerOctave * octaves) / 20);
}

} // namespace

std::array<Samples, 2> lateReverb(const RoomDescription& room, const DiffuseHead& head,
                                  std::span<const float> heardThrough, std::uint64_t seed) {
    constexpr std::size_t ringing = 4096; // what the narrowest filter rings beyond either end
    constexpr std::uint64_t seedsPerSet = 1000;
    const std::size_t length = frameCountAt(room, masterSampleRate);
    RealTransform transform(powerOfTwoFrom(length + 2 * ringing));
    RandomNumbers random(seed * seedsPerSet + static_cast<std::uint64_t>(room.room));
    const ReflectionField reflections = reflectionField(room, head, length + ringing, transform, random);
    const HeadField field = head.field(transform.size());
    std::vector<ReverbBand> bands;
    std::vector<std::array<Samples, 2>> slaps;
    for (const BandWindow& window : thirdOctaves(transform.binCount(), masterSampleRate)) {
        bands.push_back({window.centreHz, bandOf(reflections.diffuse, window, transform),
                         meantCovariance(field, window), colour(room, window.centreHz)});
        if (!room.slaps.empty())
            slaps.push_back(bandOf(reflections.slaps, window, transform));
    }
    return shapedReverb(bands, room, head.coherence(), heardThrough, slaps);
}

} // namespace orvane::kestrum::tools
