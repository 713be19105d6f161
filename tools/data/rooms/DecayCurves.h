// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

namespace orvane::kestrum::tools {

inline constexpr std::size_t decayCurveCount = 100;
inline constexpr std::size_t decayCurveLength = 100;

/// The curves by which the plug-in shortens a reverb response: curve 0 falls fastest, the last one slowest.
///
/// They go through a few chosen points. Between those, the logarithm of (1 / gain - 1) / place, in which the
/// curves are nearly straight, is interpolated: first from curve to curve at the places of the points, then
/// along each curve. Both steps keep the order of what they interpolate, so that every curve falls
/// strictly.
///
/// Shape   [decayCurveCount][decayCurveLength], curve after curve; place c is at c hundredths of the response.
/// Units   linear gain, 0.0464033 to 1.0; exactly 1.0 at place 0.
/// Source  cubic Hermite interpolation with the limits of Fritsch and Carlson 1980, "Monotone Piecewise Cubic
///         Interpolation", and, along the curves, the slopes of Fritsch and Butland 1984, "A Method for
///         Constructing Local Monotone Piecewise Cubic Interpolants". The points are chosen.
std::vector<float> decayCurves();

/// Writes the gains as raw little-endian 32-bit floats, curve after curve.
/// @throws DataError when the file cannot be written.
void writeDecayTable(const std::filesystem::path& file);

/// Writes the gains as the C++ source that the plug-in includes, with digits enough to give the same floats.
/// @throws DataError when the file cannot be written.
void writeDecaySource(const std::filesystem::path& file);

} // namespace orvane::kestrum::tools
