// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/IHeadRotationServer.h"

namespace OrvaneIPC {

/// A tracker's end of the link: owns the segment.
class IOrvaneParameterServer {
public:
    virtual ~IOrvaneParameterServer() = default;

    /// Valid as long as the server lives.
    virtual IHeadRotationServer* getHeadRotationServer() noexcept = 0;
};

} // namespace OrvaneIPC
