// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "ipc/IHeadRotationClient.h"

namespace OrvaneIPC {

/// The plug-in's end of the link. Connects once, when it is made, or never.
class IOrvaneParameterClient {
public:
    virtual ~IOrvaneParameterClient() = default;

    virtual bool isConnected() const noexcept ORVANE_REALTIME = 0;

    /// Always usable: without a record it is the process-wide empty rotation.
    /// Thread  any, wait-free.
    virtual IHeadRotationClient& getHeadRotationClient() noexcept ORVANE_REALTIME = 0;
};

} // namespace OrvaneIPC
