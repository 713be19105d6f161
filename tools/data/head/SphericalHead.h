// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/Direction.h"
#include "data/head/MeasuredSet.h"

#include <cstddef>
#include <vector>

namespace orvane::kestrum::tools {

inline constexpr double headRadiusMetres = 0.0875; ///< The usual mean of adult heads.
inline constexpr double speedOfSound = 343.0;      ///< Metres a second, at 20 degrees Celsius.

/// A rigid sphere with an ear at each end of the axis from -90 to +90 degrees, and a source at a finite
/// distance.
///
/// Source  levels: Duda and Martens, Range dependence of the response of a spherical head model, JASA 104
///         (1998), equation 3; arrivals: Woodworth's geometry, straight to what the source sees and along the
///         surface behind.
class SphericalHead {
public:
    /// Tables the levels for every bin of a spectrum.
    /// @param frequencyStepHz distance of the bins, @param binCount how many there are from 0 Hz.
    SphericalHead(double distanceMetres, double frequencyStepHz, std::size_t binCount);

    /// Pressure at the ear over the pressure in the middle of the head without the head, for every bin.
    Samples levels(const Direction& source, std::size_t ear) const;

    /// When the wave arrives at the ear, in seconds after it would have passed the middle of the head;
    /// negative near.
    double arrivalSeconds(const Direction& source, std::size_t ear) const;

private:
    double distance;
    std::vector<Samples> table; ///< [181][binCount], incidence 0 to 180 degrees.
};

/// The magnitude of one bin, 1 at 0 Hz. Exposed for its tests.
/// @param incidenceRadians between the source and the axis of the ear.
double sphereLevel(double frequencyHz, double incidenceRadians, double distanceMetres);

} // namespace orvane::kestrum::tools
