// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/HeadRotationMatrix.h"

namespace OrvaneIPC {
class IOrvaneParameterClient;
}

namespace orvane::kestrum::core {

/// What the rotation dial reads back.
///
/// Thread  any, wait-free apart from the spin lock of the shared record.
class IHeadRotationAccessor {
public:
    virtual ~IHeadRotationAccessor() = default;

    /// Fills `matrix` with the rotation that the renderers use at this moment.
    virtual void getHeadRotation(HeadRotationMatrix& matrix) const = 0;

    /// The link to a tracker, never null; it lives as long as this object.
    virtual OrvaneIPC::IOrvaneParameterClient* getParameterClient() const = 0;
};

} // namespace orvane::kestrum::core
