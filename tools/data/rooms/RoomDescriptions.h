// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/measures/RoomMeasures.h"

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace orvane::kestrum::tools {

/// A sound that comes back once, long after the room's first reflections: a far stand, a far wall.
struct LateSlap {
    double seconds = 0;          ///< Its middle, counted from the direct sound.
    double azimuthDegrees = 0;   ///< Positive to the right.
    double elevationDegrees = 0; ///< Positive up.
    double levelDb = 0;          ///< Over the tail at that moment.
};

/// What one reverb response is to sound like.
struct RoomDescription {
    int room = 0;          ///< As the product counts rooms.
    std::string_view name; ///< The Scene's where one uses the room.
    double volumeCubicMetres = 0;
    double onsetMs = 0;  ///< From the direct sound to the first reflection of the response.
    double mixingMs = 0; ///< From here on there are no single reflections any more.
    double earlyDb =
        0; ///< More at the first reflection than the decay says, going to nothing by the mixing time.
    std::array<double, roomOctavesHz.size()>
        t60{};                         ///< Seconds, per band of roomOctavesHz, as heard in the room's Scene.
    double brightnessDbPerOctave = 0;  ///< Slope of the spectrum at the start, about 1 kHz.
    double boomDb = 0;                 ///< More below 150 Hz.
    std::span<const LateSlap> slaps{}; ///< None in a closed room.
};

/// All rooms with a reverb, 2 to 47, in order. Each has an entry of its own.
///
/// Source  rooms with a Scene: chosen for what the Scene is to be. The other rooms: decays that their length can hold;
///         mixing times of about 20 + 0.6 sqrt(V) milliseconds, V in cubic metres, since the time from which
///         listeners hear single reflections no more grows with the root of the volume (Lindau, Kosanke and
///         Weinzierl, "Perceptual evaluation of model- and signal-based predictors of the mixing time in
///         binaural room impulse responses", JAES 60, 2012; the factors here are rounded); first reflections after a
///         third to two fifths of the way along a cube of the volume.
std::span<const RoomDescription> roomDescriptions();

/// @throws std::out_of_range for a room without a reverb.
const RoomDescription& roomDescription(int room);

/// The product's own entry for the room in the files' table, counted from 1, and the room's length in the file of a rate.
std::size_t entryOf(const RoomDescription& room);
std::size_t frameCountAt(const RoomDescription& room, int sampleRate);

/// Decay at any frequency: between the bands straight over the logarithm of the frequency, below the lowest
/// as there, above the highest falling further.
double t60At(const RoomDescription& room, double frequencyHz);

} // namespace orvane::kestrum::tools
