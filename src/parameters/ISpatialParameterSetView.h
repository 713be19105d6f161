// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/HeadRotationMatrix.h"
#include "base/Realtime.h"

namespace orvane {

/// Everything that shapes the response of one source.
///
/// Units   degrees, metres, decibels, hertz; levels are linear factors.
/// Thread  any, wait-free: the renderers read it on the audio thread.
class ISpatialParameterSetView {
public:
    virtual ~ISpatialParameterSetView() = default;

    virtual float getAzimuth() const noexcept ORVANE_REALTIME = 0;
    virtual float getElevation() const noexcept ORVANE_REALTIME = 0;
    virtual float getDirectGainDb() const noexcept ORVANE_REALTIME = 0;
    virtual float getSpatialValue4() const noexcept ORVANE_REALTIME = 0;
    virtual float getAttenuationValue() const noexcept ORVANE_REALTIME = 0;
    virtual float getReflectionLowPassFrequency() const noexcept ORVANE_REALTIME = 0;

    /// Level of the direct sound at the set's distance.
    virtual float getDistanceLevel() const noexcept ORVANE_REALTIME = 0;

    /// 1 up to 7 metres, 0 from 33 on; scales direct sound and reflections alike.
    virtual float getFarFade() const noexcept ORVANE_REALTIME = 0;

    /// Larger means quieter.
    virtual float getAttenuationDb() const noexcept ORVANE_REALTIME = 0;

    virtual HeadRotationMatrix getHeadRotation() const noexcept ORVANE_REALTIME = 0;

    /// Bends azimuths of the frontal half, see warpAzimuth().
    virtual float getAzimuthExponent() const noexcept ORVANE_REALTIME = 0;

    virtual float getFloorLevelDb() const noexcept ORVANE_REALTIME = 0;
    virtual float getDistance() const noexcept ORVANE_REALTIME = 0; ///< Metres, before the scale.
    virtual float getDistanceScale() const noexcept ORVANE_REALTIME = 0;
    virtual float getReflectionGainDb() const noexcept ORVANE_REALTIME = 0;

    virtual float getCeilingDistance() const noexcept ORVANE_REALTIME = 0;
    virtual float getFloorDistance() const noexcept ORVANE_REALTIME = 0;
    virtual float getRightDistance() const noexcept ORVANE_REALTIME = 0;
    virtual float getLeftDistance() const noexcept ORVANE_REALTIME = 0;
    virtual float getFrontDistance() const noexcept ORVANE_REALTIME = 0;
    virtual float getBackDistance() const noexcept ORVANE_REALTIME = 0;
};

} // namespace orvane
