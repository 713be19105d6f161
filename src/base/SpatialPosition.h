// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/HeadRotationMatrix.h"
#include "base/Realtime.h"

namespace orvane {

/// A direction and distance seen from the listener, with its cartesian form beside it.
///
/// Frame   azimuth 0 ahead, positive to the right, 180 behind; elevation positive up. +x at azimuth +90, +y
/// up,
///         +z ahead.
/// Units   degrees and metres.
struct SpatialPosition {
    SpatialPosition() = default;
    SpatialPosition(float elevationDegrees, float azimuthDegrees, float distanceMetres) noexcept;

    float getAzimuth() const noexcept ORVANE_REALTIME { return azimuth; }

    /// Turns the position in place. The identity (byte for byte) changes nothing at all; any other matrix
    /// leaves the azimuth above -180 and up to +180.
    void rotate(const HeadRotationMatrix& matrix) noexcept ORVANE_REALTIME;

    float elevation = 0;
    float azimuth = 0;
    float distance = 0;
    float x = 0;
    float y = 0;
    float z = 0;

private:
    void updateCartesian() noexcept;
};

} // namespace orvane
