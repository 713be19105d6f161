// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/RoomStatistics.h"

#include "data/DataError.h"
#include "data/reports/ReportPage.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

namespace orvane::kestrum::tools {

namespace {

constexpr double speedOfSound = 343;
constexpr double angleOfLoudspeakers = 30; ///< Degrees off the front, of a stereo pair.

bool within(double value, double least, double most) {
    return std::isfinite(value) && value >= least && value <= most;
}

double sine() { return std::sin(angleOfLoudspeakers * std::numbers::pi / 180); }
double cosine() { return std::cos(angleOfLoudspeakers * std::numbers::pi / 180); }

/// How far the loudspeakers of a stereo pair may stand before they meet a wall.
double farthest(const Walls& walls) {
    return std::min(walls.front / cosine(), std::min(walls.left, walls.right) / sine());
}

Walls wallsFrom(const std::vector<double>& given) {
    constexpr double least = 0.2;
    constexpr double most = 300;
    if (given.size() != 6)
        throw DataError("--walls has " + std::to_string(given.size()) +
                        " distances: give six, in metres from the listener, in the order front, back, left, "
                        "right, ceiling, floor.");
    for (const double distance : given)
        if (!within(distance, least, most))
            throw DataError(
                "A wall " + shortest(distance) +
                " m away is no use: give distances of 0.2 to 300 m from the listener with --walls.");
    return {given[0], given[1], given[2], given[3], given[4], given[5]};
}

} // namespace

double Walls::volume() const { return (front + back) * (left + right) * (ceiling + floor); }

double Walls::surface() const {
    const double length = front + back;
    const double width = left + right;
    const double height = ceiling + floor;
    return 2 * (length * width + length * height + width * height);
}

bool RoomBox::sizedByWalls() const { return walls && walls->volume() == volume; }

RoomBox roomBox(std::optional<double> volume, const std::vector<double>& walls) {
    constexpr double least = 1;
    constexpr double most = 1e6;
    RoomBox box;
    if (!walls.empty())
        box.walls = wallsFrom(walls);
    if (!volume && !box.walls)
        throw DataError("The room's size is missing: give --volume in cubic metres, or --walls.");
    box.volume = volume ? *volume : box.walls->volume();
    if (!within(box.volume, least, most))
        throw DataError("A volume of " + shortest(box.volume) +
                        " m3 is no room's: give 1 to 1000000 m3 with --volume.");
    if (box.walls) {
        // A room that is no box has the proportions of one.
        box.surface = box.walls->surface() * std::pow(box.volume / box.walls->volume(), 2.0 / 3);
    } else {
        const double middle = std::cbrt(box.volume);
        const double step = std::cbrt(2.0);
        box.surface = 2 * middle * middle * (1 + step + 1 / step);
    }
    return box;
}

OctaveTimes octaveTimes(const std::vector<double>& given) {
    constexpr OctaveTimes usualShape{1.3, 1.12, 1, 1, 0.97, 0.9, 0.78};
    if (given.size() != 1 && given.size() != usualShape.size())
        throw DataError("--t60 has " + std::to_string(given.size()) +
                        " times: give one for the middle frequencies, or seven, from 125 Hz to 8 kHz.");
    for (const double seconds : given)
        if (!within(seconds, shortestT60, longestT60))
            throw DataError("A T60 of " + shortest(seconds) +
                            " s is no room's: give 0.03 to 20 seconds with --t60.");
    OctaveTimes times = usualShape;
    for (std::size_t octave = 0; octave < times.size(); ++octave)
        times[octave] = given.size() == 1 ? given[0] * usualShape[octave] : given[octave];
    return times;
}

double meanAbsorption(const RoomBox& box, double t60) {
    const double sabine = 24 * std::numbers::ln10 / speedOfSound * box.volume / (box.surface * t60);
    return 1 - std::exp(-sabine);
}

void requirePossible(const RoomBox& box, const OctaveTimes& t60) {
    constexpr double most = 0.97;
    for (std::size_t octave = 0; octave < t60.size(); ++octave)
        if (meanAbsorption(box, t60[octave]) > most)
            throw DataError("No room of " + fixedText(box.volume, 0) + " m3 decays within " +
                            fixedText(t60[octave], 2) + " s at " + shortest(roomOctavesHz[octave]) +
                            " Hz, as its walls would have to swallow everything: give " +
                            (box.sizedByWalls() ? "shorter distances with --walls" : "a smaller --volume") +
                            " or a longer T60.");
}

double defaultDistance(const RoomBox& box) {
    constexpr double usual = 2;
    constexpr double clear = 0.8;
    return box.walls ? std::min(usual, clear * farthest(*box.walls)) : usual;
}

void requireInside(const RoomBox& box, double distance) {
    constexpr double least = 0.3;
    constexpr double most = 100;
    if (!within(distance, least, most))
        throw DataError("Loudspeakers " + shortest(distance) +
                        " m away are no use: give 0.3 to 100 m with --distance.");
    if (box.walls && distance >= farthest(*box.walls))
        throw DataError("Loudspeakers " + shortest(distance) +
                        " m away, 30 degrees to either side, would stand behind the walls: give less than " +
                        fixedText(farthest(*box.walls), 1) + " m with --distance.");
}

double criticalDistance(const RoomBox& box, double t60, double directivityDb) {
    const double absorption = meanAbsorption(box, t60);
    const double roomConstant = box.surface * absorption / (1 - absorption);
    return std::sqrt(std::pow(10.0, directivityDb / 10) * roomConstant / (16 * std::numbers::pi));
}

double statisticalClarityDb(double directOverRestDb, double t60) {
    constexpr double earlySeconds = 0.05;
    const double rest = std::pow(10.0, -directOverRestDb / 10);
    const double late = rest * std::exp(-6 * std::numbers::ln10 * earlySeconds / t60);
    return 10 * std::log10((1 + rest - late) / late);
}

double firstReflectionMs(const RoomBox& box, double distance) {
    constexpr double least = 1;
    constexpr double most = 30;
    constexpr double shareOfSide = 0.37;
    double detour = shareOfSide * std::cbrt(box.volume);
    if (box.walls) {
        // The loudspeaker mirrored in each side; of the two, the nearer one.
        const Walls& walls = *box.walls;
        const double aside = distance * sine();
        const double ahead = distance * cosine();
        const double path =
            std::min({std::hypot(aside, 2 * walls.front - ahead), std::hypot(aside, 2 * walls.back + ahead),
                      std::hypot(2 * std::min(walls.left, walls.right) - aside, ahead),
                      std::hypot(distance, 2 * walls.ceiling)});
        detour = path - distance;
    }
    return std::clamp(1000 * detour / speedOfSound, least, most);
}

double mixingTimeMs(double volume) { return 20 + 0.6 * std::sqrt(volume); }

} // namespace orvane::kestrum::tools
