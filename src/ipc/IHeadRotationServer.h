// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/HeadRotationMatrix.h"

namespace OrvaneIPC {

/// Drives the rotation of every client on the machine. The two values are not updated as one: each new matrix
/// is complete in itself.
///
/// Thread  one writer.
class IHeadRotationServer {
public:
    virtual ~IHeadRotationServer() = default;

    virtual void setRotation(const orvane::HeadRotationMatrix& matrix) noexcept = 0;

    /// A server that goes without clearing this leaves the last matrix in force.
    virtual void setActive(bool active) noexcept = 0;
};

} // namespace OrvaneIPC
