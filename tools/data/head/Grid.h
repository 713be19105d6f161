// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/Direction.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace orvane::kestrum::tools {

inline constexpr int gridStepDegrees = 5;
inline constexpr std::size_t azimuthGroupCount = 72;
inline constexpr std::size_t elevationCount = 35; ///< Of one azimuth group, without the poles.
inline constexpr std::size_t responseCount = azimuthGroupCount * elevationCount + 2;

/// One of the three files of responses.
struct ResponseFile {
    std::string_view name;
    int sampleRate = 0;     ///< Hertz.
    std::size_t length = 0; ///< Frames of one response.
    double flatToHz = 0;    ///< Up to here the diffuse field is to be flat.
};

inline constexpr std::array<ResponseFile, 3> responseFiles{{
    {"OVNdata120.dat", 44100, 128, 12000},
    {"OVNdata121.dat", 48000, 139, 12000},
    {"OVNdata122.dat", 24000, 70, 10000},
}};

/// A place of the grid as a source is heard from it.
struct GridPlace {
    int azimuthDegrees = 0; ///< 0 to 355, to the right.
    int elevationDegrees = 0;
    Direction direction() const { return directionFrom(azimuthDegrees, elevationDegrees); }
};

/// All places in the order of the files: the south pole; then group k = 0 to 71 with the sources k * 5
/// degrees to the right, each rising from -85 to +85 degrees; the north pole directly behind group 0.
std::vector<GridPlace> gridPlaces();

/// Index of a place in the order of the files; the azimuth is any multiple of 5, and does not matter at the
/// poles.
std::size_t gridIndex(int azimuthDegrees, int elevationDegrees);

/// The share of the sphere that each place stands for, adding up to 1: its 5-degree cell, the caps at the
/// poles.
std::vector<double> gridWeights();

} // namespace orvane::kestrum::tools
