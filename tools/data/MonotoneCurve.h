// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

namespace orvane::kestrum::tools {

/// How a curve leans where it passes through a point between others. Where the points turn, it lies flat.
enum class Lean {
    parabola,     ///< As the parabola through the point and its neighbours, at most three times either chord.
    harmonicMean, ///< The weighted harmonic mean of both chords: nearer the flatter one.
};

/// A smooth curve through points that rises and falls only where they do.
///
/// Shape   places and values of equal length, at least 3; places rise strictly.
/// Source  piecewise cubic Hermite interpolation: Fritsch and Carlson 1980, "Monotone Piecewise Cubic
///         Interpolation", Fritsch and Butland 1984, "A Method for Constructing Local Monotone Piecewise
///         Cubic Interpolants".
class MonotoneCurve {
public:
    MonotoneCurve(std::vector<double> places, std::vector<double> values, Lean lean);

    /// @param place between the first and the last point.
    double at(double place) const;

private:
    std::vector<double> places;
    std::vector<double> values;
    std::vector<double> slopes; ///< At the points.
};

} // namespace orvane::kestrum::tools
