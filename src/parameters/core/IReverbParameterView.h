// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/IReverbParameterSet.h"

namespace orvane::kestrum::core {

/// The reverb view with the high-pass at the reverb's input.
class IReverbParameterView : public virtual orvane::IReverbParameterView {
public:
    virtual float getReverbHighPassFrequency() const noexcept ORVANE_REALTIME = 0;
};

} // namespace orvane::kestrum::core
