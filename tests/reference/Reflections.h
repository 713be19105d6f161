// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

/// Where the early reflections of a room come from, in double precision.
namespace test::reference {

inline constexpr double speedOfSound = 343.42; // metres a second
inline constexpr double templateLevel = 0.55;  // of what a room lists
inline constexpr double designRate = 44100.0;  // of the delays that a room lists

/// Where a source stands for the head: azimuth to the right, degrees and metres.
struct Place {
    double azimuth;
    double elevation;
    double distance;
};

/// A reflection as a room lists it.
struct Listed {
    int azimuth;
    int elevation;
    int delay;
    double level;
};

/// `gain` is what the room's and the user's common gain still multiplies.
struct Heard {
    bool active = true;
    int azimuth = 0;
    int elevation = 0;
    int delay = 0;
    double gain = 0;
};

/// Added before every truncation. A value that lies on a whole number may fall to either side of it in 32-bit
/// arithmetic; a test then tries both.
struct Nudge {
    double degrees = 0;
    double samples = 0;
};

inline int wrapped(int degrees) {
    while (degrees > 180)
        degrees -= 360;
    while (degrees <= -180)
        degrees += 360;
    return degrees;
}

inline int truncated(double value) { return static_cast<int>(std::trunc(value)); }

inline int heardElevation(double designed, double source, double nudge = 0) {
    return std::clamp(truncated(designed + source + nudge), -75, 75);
}

inline int folded(int delay, int maxDelay) { return delay > maxDelay ? maxDelay - delay % 100 : delay; }

inline int delayAtRate(int delay, double sampleRate, double nudge = 0) {
    return truncated(delay * sampleRate / designRate + nudge);
}

/// A designed reflection, turned with the source.
inline Heard presetReflection(const Listed& listed, const Place& source, double sampleRate, int roomId,
                              int maxDelay, Nudge nudge = {}) {
    Heard heard;
    heard.azimuth = wrapped(truncated(listed.azimuth - source.azimuth + nudge.degrees));
    heard.elevation = heardElevation(listed.elevation, source.elevation, nudge.degrees);
    heard.delay = folded(delayAtRate(listed.delay, sampleRate, nudge.samples), maxDelay);
    const double metres = heard.delay * speedOfSound / sampleRate;
    const double law = roomId <= 1 ? 1.0 : 0.5 / std::max(metres, 1.0);
    heard.gain = law * templateLevel * listed.level;
    return heard;
}

/// Distances of the walls in metres, in the order of the reflections.
enum class Wall { ceiling, floor, front, back, right, left };
using Walls = std::array<double, 6>;

/// A reflection of a rectangular room, computed from the source's place. The angles count to the left, as those
/// of the store do.
inline Heard wallReflection(Wall wall, const Walls& walls, const Listed& listed, const Place& source,
                            double sampleRate, int roomId, int maxDelay, Nudge nudge = {}) {
    const auto radians = [](double degrees) { return degrees * std::numbers::pi / 180.0; };
    const auto arcCosine = [](double x) { return std::acos(x) * 180.0 / std::numbers::pi; };
    const auto index = static_cast<std::size_t>(wall);
    const double w = walls[index];
    const double d = source.distance;
    const double n = -source.azimuth;
    const double e = source.elevation;
    const double ahead = std::cos(radians(n)) * d * std::cos(radians(e));
    const double aside = std::sin(radians(n)) * d * std::cos(radians(e));
    const double above = std::sin(radians(e)) * d;
    const std::array<double, 6> towardsWall{above, -above, ahead, -ahead, aside, -aside};

    Heard heard;
    heard.active = w > towardsWall[index] && w >= 0.1;
    if (!heard.active)
        return heard;

    const double throughMidpoint = 2.0 * std::hypot(d / 2.0, w);
    const double sideways = 90.0 - arcCosine(aside / (2.0 * std::hypot(aside / 2.0, w)));
    double path = 0;
    double metresLater = 0;
    switch (wall) {
    case Wall::ceiling:
    case Wall::floor:
        heard.azimuth = truncated(listed.azimuth + n + nudge.degrees);
        path = throughMidpoint;
        metresLater = throughMidpoint - d;
        break;
    case Wall::front:
        heard.azimuth = truncated(sideways + nudge.degrees);
        metresLater = 2.0 * w - ahead;
        path = std::abs(metresLater);
        break;
    case Wall::back:
        heard.azimuth = (n > 0 ? 180 : -180) - truncated(sideways + nudge.degrees);
        metresLater = 2.0 * w + ahead;
        path = std::abs(metresLater) + d;
        break;
    case Wall::right:
    case Wall::left: {
        const double longer = throughMidpoint - d;
        const double c = std::abs(std::cos(radians(n)));
        const double s = std::abs(std::sin(radians(n)));
        const double angle = arcCosine(d / throughMidpoint) * (1.0 - s) + 90.0 * s;
        int azimuth = truncated((wall == Wall::right ? angle : -angle) + nudge.degrees);
        if (std::abs(n) > 90.0) // mirrored at the axis through the ears
            azimuth = (wall == Wall::right ? 180 : -180) - azimuth;
        heard.azimuth = azimuth;
        const bool leansHere = wall == Wall::right ? n > 0 : n < 0;
        metresLater = c * c * longer + 2.0 * s * s * (leansHere ? w - d : w);
        path = std::abs(metresLater) + d;
        break;
    }
    }
    heard.azimuth = wrapped(heard.azimuth);
    heard.elevation = heardElevation(listed.elevation, e, nudge.degrees);
    heard.delay =
        folded(truncated(std::abs(metresLater) * sampleRate / speedOfSound + nudge.samples), maxDelay);
    heard.gain = (roomId <= 1 ? 1.0 : 1.0 / std::max(path, 1.0)) * templateLevel * listed.level;
    return heard;
}

} // namespace test::reference
