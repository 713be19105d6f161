// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/IHeadRotationClient.h"

namespace OrvaneIPC {

/// What a client without a record reads: never active, no rotation.
class EmptyHeadRotation final : public IHeadRotationClient {
public:
    bool isActive() const noexcept ORVANE_REALTIME override { return false; }
    orvane::HeadRotationMatrix getRotation() const noexcept ORVANE_REALTIME override {
        return orvane::identityRotation;
    }
};

} // namespace OrvaneIPC
