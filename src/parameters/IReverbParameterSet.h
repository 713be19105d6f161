// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

namespace orvane {

/// What the late reverb reads while it runs.
///
/// Thread  any, wait-free.
class IReverbParameterView {
public:
    virtual ~IReverbParameterView() = default;

    virtual float getReverbGainDb() const noexcept ORVANE_REALTIME = 0;
    virtual float getReverbLowPassFrequency() const noexcept ORVANE_REALTIME = 0;
    virtual float getReverbDecayPercent() const noexcept ORVANE_REALTIME = 0;
    virtual float getDistance() const noexcept ORVANE_REALTIME = 0; ///< Metres, before the scale.
    virtual float getDistanceScale() const noexcept ORVANE_REALTIME = 0;
    virtual float getAttenuationDb() const noexcept ORVANE_REALTIME = 0; ///< Larger means quieter.
};

/// The reverb's own values and the three of the input that it depends on, to write.
class IReverbParameterSet : public virtual IReverbParameterView {
public:
    virtual void setReverbGainDb(float gainDb, bool notify) = 0;
    virtual void setReverbLowPassFrequency(float hertz, bool notify) = 0;
    virtual void setReverbDecayPercent(float percent, bool notify) = 0;
    virtual void setDistance(float metres, bool notify) = 0;
    virtual void setDistanceScale(float factor, bool notify) = 0;
    virtual void setAttenuationValue(float value, bool notify) = 0;
};

} // namespace orvane
