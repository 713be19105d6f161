// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

namespace orvane {

/// Values that stay what they are until they are taken anew, for those who want to know whether any has
/// changed.
///
/// Thread  audio thread only.
class IViewSnapshot {
public:
    virtual ~IViewSnapshot() = default;

    /// Takes the present values.
    /// @return whether any of them differs in its bits from those taken before; true the first time.
    virtual bool take() ORVANE_REALTIME = 0;
};

} // namespace orvane
