// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/measures/RoomMeasures.h"

#include <array>
#include <optional>
#include <vector>

namespace orvane::kestrum::tools {

/// Decay times from 125 Hz to 8 kHz, in seconds.
using OctaveTimes = std::array<double, roomOctavesHz.size()>;

/// Distances from the listener to the six sides of a room like a box, in metres.
struct Walls {
    double front = 0;
    double back = 0;
    double left = 0;
    double right = 0;
    double ceiling = 0;
    double floor = 0;

    double volume() const;
    double surface() const;
};

/// What a room's T60 may be, in seconds.
inline constexpr double shortestT60 = 0.03;
inline constexpr double longestT60 = 20;

/// A room as far as statistics need to know it.
struct RoomBox {
    double volume = 0;          ///< Cubic metres.
    double surface = 0;         ///< Square metres.
    std::optional<Walls> walls; ///< Where they were told.

    bool sizedByWalls() const; ///< The volume is that of the walls.
};

/// @param volume of the air; none to take that of the walls. With both the walls tell proportions and first reflections.
/// @param walls six, or none; then the room's sides are taken as 1 to 1.26 to 1.59.
/// @throws DataError for a size that no room has.
RoomBox roomBox(std::optional<double> volume, const std::vector<double>& walls);

/// @param given one for the middle, which bass and treble follow as they do in the plug-in's own rooms, or seven.
/// @throws DataError for another count, and for times that are no numbers or no room's.
OctaveTimes octaveTimes(const std::vector<double>& given);

/// The share of sound that the room's sides swallow on the average, for a decay time.
/// Source  C. Eyring, "Reverberation time in dead rooms", JASA 1, 1930; at small shares this is W. Sabine's.
double meanAbsorption(const RoomBox& box, double t60);

/// @throws DataError where no room of that size could decay so fast.
void requirePossible(const RoomBox& box, const OctaveTimes& t60);

/// Where the loudspeakers stand when nobody says: 2 m away, or as far as the walls let them.
double defaultDistance(const RoomBox& box);

/// @throws DataError for a distance that is none, or beyond the walls.
void requireInside(const RoomBox& box, double distance);

/// Distance at which direct sound and all the rest are equally strong, in metres.
/// Source  room constant: L. Beranek, Acoustics, 1954.
double criticalDistance(const RoomBox& box, double t60, double directivityDb);

/// Clarity C50 of a room with an even decay that begins with the direct sound.
/// Source  M. Barron and L.-J. Lee, "Energy relations in concert auditoriums", JASA 84, 1988, without the distance's share.
double statisticalClarityDb(double directOverRestDb, double t60);

/// From the direct sound of a stereo pair, 30 degrees to either side, to its first reflection off walls or ceiling, in
/// milliseconds; by the volume alone where no walls were told. The floor's comes sooner, but the plug-in draws it itself.
double firstReflectionMs(const RoomBox& box, double distance);

/// From here on single reflections are not heard any more, in milliseconds.
/// Source  Lindau, Kosanke and Weinzierl, JAES 60, 2012, rounded as for the plug-in's own rooms.
double mixingTimeMs(double volume);

} // namespace orvane::kestrum::tools
