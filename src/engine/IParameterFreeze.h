// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

namespace orvane {

/// An engine that can be told to go on with the parameter values that it has.
///
/// Values that are written for its successor must not be heard in an engine that is being faded out. Head
/// rotation is no such value: both engines follow the head to the end.
///
/// Thread  audio thread, between blocks.
class IParameterFreeze {
public:
    virtual ~IParameterFreeze() = default;

    /// For good; a second call changes nothing.
    virtual void freezeParameters() noexcept ORVANE_REALTIME = 0;
};

} // namespace orvane
