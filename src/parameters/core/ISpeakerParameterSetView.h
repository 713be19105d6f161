// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/ISpatialParameterSetView.h"

namespace orvane::kestrum::core {

/// The spatial view with what only this product's loudspeaker renderers read.
class ISpeakerParameterSetView : public virtual orvane::ISpatialParameterSetView {
public:
    virtual float getReflectionHighPassFrequency() const noexcept ORVANE_REALTIME = 0;

    /// Exponent of the clarity stages, 0 (off) to 1.
    virtual float getClarity() const noexcept ORVANE_REALTIME = 0;
};

} // namespace orvane::kestrum::core
