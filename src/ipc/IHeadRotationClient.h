// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/HeadRotationMatrix.h"
#include "base/Realtime.h"

namespace OrvaneIPC {

/// Reads the rotation that a tracker process drives.
///
/// Thread  any, also several at once. Spins while another process copies 64 bytes; no system call.
class IHeadRotationClient {
public:
    virtual ~IHeadRotationClient() = default;

    /// False: the rotation is not driven and has to be ignored.
    virtual bool isActive() const noexcept ORVANE_REALTIME = 0;

    /// Returned as it is; the link does not check what it carries.
    virtual orvane::HeadRotationMatrix getRotation() const noexcept ORVANE_REALTIME = 0;
};

} // namespace OrvaneIPC
