// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::track {

/// The azimuth at which a source is heard: the plug-in cuts the fraction of a degree off, asks for the mirrored azimuth,
/// and takes the response of the grid line of 5 degrees below it.
///
/// Units   degrees, -180 to 180.
double heardAzimuth(double azimuth);

/// By how much sources are heard too far to the right in the mean over a full turn, in degrees: the yaw that, added to
/// the head's, makes the mean error zero.
double gridCentreDegrees();

} // namespace orvane::kestrum::track
