// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

namespace orvane {

/// The source's level side, read only.
class IInputParameterSetView {
public:
    virtual ~IInputParameterSetView() = default;

    virtual float getDistance() const noexcept ORVANE_REALTIME = 0; ///< Metres, before the scale.
    virtual float getDistanceScale() const noexcept ORVANE_REALTIME = 0;
    virtual float getAttenuationValue() const noexcept ORVANE_REALTIME = 0;
    virtual bool getFlag2() const noexcept ORVANE_REALTIME = 0;
    virtual float getInputLimit() const noexcept ORVANE_REALTIME = 0;
};

/// The same five to write; `notify` as in zmtl::IParameter::set().
class IInputParameterSet : public virtual IInputParameterSetView {
public:
    virtual void setDistance(float metres, bool notify) = 0;
    virtual void setDistanceScale(float factor, bool notify) = 0;
    virtual void setAttenuationValue(float value, bool notify) = 0;
    virtual void setFlag2(bool value, bool notify) = 0;
    virtual void setInputLimit(float value, bool notify) = 0;
};

} // namespace orvane
