// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/IReverbParameterSet.h"

namespace orvane {

/// The reverb's view with the level below which nothing is rendered.
class IMultichannelReverbParameterView : public virtual IReverbParameterView {
public:
    virtual float getFloorLevelDb() const noexcept ORVANE_REALTIME = 0;
};

/// The writing side of both.
class IMultichannelReverbParameterSet : public virtual IMultichannelReverbParameterView,
                                        public virtual IReverbParameterSet {
public:
    virtual void setFloorLevelDb(float levelDb, bool notify) = 0;
};

} // namespace orvane
