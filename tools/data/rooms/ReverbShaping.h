// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/measures/ThirdOctaves.h"
#include "data/rooms/EarCovariance.h"
#include "data/rooms/RoomDescriptions.h"

#include <array>
#include <span>
#include <vector>

namespace orvane::kestrum::tools {

/// One third-octave band of a reverb that does not decay yet.
struct ReverbBand {
    double centreHz = 0;
    std::array<Samples, 2>
        samples; ///< [2][at least the room's length], sample 0 at the direct sound's arrival.
    Covariance
        meant; ///< What both ears are to have per sample at the start: coherence, and power unless it is kept.
    double level = 1; ///< Amplitude at the start, over `meant`; without meaning where the power is kept.
    bool keepsCoherence = false; ///< The ears are as they should be: they are left alone.
    bool keepsPower = false;     ///< So is the level at the start.
};

/// Makes a room's response from bands that do not decay.
///
///     coherence, span by span ─► decay that gives each octave its T60 as heard ─► power ─► sum
///                 ▲                                                                         │
///                 └────────── what the bands' sum is off by is asked for in advance ◄───────┘
///                                                                                           ▼
///                                                                 fade at the end, peak 1 ◄─┘
///
/// Shape   bands [thirdOctaveCount] in the order of thirdOctaves(); returns [2][frameCountAt(room, 48000)].
/// Units   samples at masterSampleRate; the largest is 1 or -1.
/// @param coherence    of the bands of lateCoherence(), for the bands that do not keep their own.
/// @param heardThrough as lateReverb() takes it.
/// @param slaps        one per band, or none: joined to the bands once these have their coherence.
std::array<Samples, 2> shapedReverb(const std::vector<ReverbBand>& bands, const RoomDescription& room,
                                    std::span<const CoherenceBand> coherence,
                                    std::span<const float> heardThrough,
                                    const std::vector<std::array<Samples, 2>>& slaps = {});

/// One at the first reflection and after, rising from nothing in the millisecond before: a band's filter rings ahead.
double startGain(const RoomDescription& room, double seconds);

/// Gives a band the coherence of a covariance, span by span: by chance alone a few milliseconds of noise would have any.
/// Each span keeps its power. Spans overlap by half and last several times as long as the band takes to swing in.
/// @return `length` samples of each ear.
std::array<Samples, 2> withCoherence(const std::array<Samples, 2>& ears, const Covariance& meant,
                                     double bandwidthHz, std::size_t length);

/// Width of a third-octave band over its centre.
inline constexpr double thirdOctaveWidth = 0.2316;

/// The part of both ears that a window lets through.
std::array<Samples, 2> bandOf(const std::array<Spectrum, 2>& spectra, const BandWindow& band,
                              RealTransform& transform);

} // namespace orvane::kestrum::tools
