// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/IParameterSet.h"
#include "parameters/core/IReverbParameterView.h"
#include "parameters/core/ISpeakerParameterSetView.h"

namespace orvane::kestrum::core {

/// The general parameter set with the three values that only this product has.
class IParameterSet : public virtual orvane::IParameterSet,
                      public virtual ISpeakerParameterSetView,
                      public virtual IReverbParameterView {
public:
    virtual void setReflectionHighPassFrequency(float hertz, bool notify) = 0;
    virtual void setReverbHighPassFrequency(float hertz, bool notify) = 0;
    virtual void setClarity(float exponent, bool notify) = 0;

    /// Asks for a reload as if a structural value had changed, whether one has or not.
    virtual void reload() = 0;
};

} // namespace orvane::kestrum::core
