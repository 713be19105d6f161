// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

namespace orvane {

/// Decides in each block whether a response has to be drawn anew.
class IUpdateChecker {
public:
    virtual ~IUpdateChecker() = default;

    /// Thread  audio thread only.
    virtual bool needsUpdate() ORVANE_REALTIME = 0;
};

} // namespace orvane
