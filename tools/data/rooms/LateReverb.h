// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/rooms/DiffuseHead.h"
#include "data/rooms/RoomDescriptions.h"

#include <cstdint>
#include <span>

namespace orvane::kestrum::tools {

/// The rate at which rooms are synthesised; the other rates' files are resampled from it, so that they hold the same
/// room and not only a similar one.
inline constexpr int masterSampleRate = 48000;

/// Raised or changed, every room gets other noise.
inline constexpr std::uint64_t reverbSeed = 1;

/// Makes the late response of one room at the ears of one head.
///
///     single reflections, at random times       noise of two independent voices, fading in
///     and from random places, thinning out ──►   up to the mixing time, mixed to the head's
///     up to the mixing time                      coherence and spectrum per bin
///                   └──────────────┬──────────────┘
///                                  ▼
///     third-octave bands ─► coherence of the diffuse field ─► slaps, from where they come from
///                                  ▼
///     decay that gives each band its T60 as heard ─► power
///                                  ▼
///     sum ─► fade at the end ─► peak 1
///
/// The same arguments give the same samples. The random choices depend on seed and room only.
///
/// Shape   [2][frameCountAt(room, masterSampleRate)], left and right ear.
/// Units   samples at masterSampleRate; sample 0 is the direct sound's arrival; the largest is 1 or -1.
/// @param head     at masterSampleRate.
/// @param heardThrough gains laid over the response when it is heard, evenly spread over its length; none for a
///                 response that is heard as it is. The decays of the description hold with them.
///
/// Source  growth: reflections per second rise with the square of time (H. Kuttruff, Room Acoustics, 4.2), their energy
///         falls with it. Noise mixed per bin to a coherence: Borss and Martin 2009, Menzer and Faller 2009. Decay
///         in bands by windows that add up to 1: after J. Moorer, "About this reverberation business", Computer
///         Music Journal 3, 1979, and P. Rubak and L. Johansen, "Artificial reverberation based on a
///         pseudo-random impulse response", AES 104th convention, 1998. The last step's matrix: I. Olkin and
///         F. Pukelsheim, "The distance between two random vectors with given dispersion matrices", Linear
///         Algebra and its Applications 48, 1982; J. Vilkamo, T. Baeckstroem and A. Kuntz, "Optimized covariance
///         domain framework for time-frequency processing of spatial audio", JAES 61, 2013.
std::array<Samples, 2> lateReverb(const RoomDescription& room, const DiffuseHead& head,
                                  std::span<const float> heardThrough = {}, std::uint64_t seed = reverbSeed);

} // namespace orvane::kestrum::tools
