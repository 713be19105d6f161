// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "base/SpatialPosition.h"
#include "parameters/ISpatialParameterSetView.h"

namespace orvane {

/// Bends an azimuth of the frontal half: 0, +90 and -90 stay, what lies between moves ahead for an exponent
/// above 1 and aside for one below. The rear half, and exponents from 0.99 to 1.01, change nothing.
///
/// Units   degrees in, degrees out.
float warpAzimuth(float azimuthDegrees, float exponent) noexcept ORVANE_REALTIME;

/// Where the view's source stands for the listener's head: warped, scaled, never nearer than 0.1 metres, and
/// turned by the head rotation.
///
/// Thread  any, wait-free.
SpatialPosition sourcePosition(const ISpatialParameterSetView& view) noexcept ORVANE_REALTIME;

} // namespace orvane
