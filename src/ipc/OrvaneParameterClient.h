// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/ClientSegment.h"
#include "ipc/HeadRotation.h"
#include "ipc/IOrvaneParameterClient.h"

#include <optional>

namespace OrvaneIPC {

/// Opens the segment once, at construction. A server that starts later is never seen.
class OrvaneParameterClient final : public IOrvaneParameterClient {
public:
    /// Thread  one that may wait: what a server is still making is waited for, 20 ms at most.
    /// Errors  none leave: whatever goes wrong ends in an unconnected client, a segment that is not proven, too.
    OrvaneParameterClient() noexcept;

    bool isConnected() const noexcept ORVANE_REALTIME override { return connected; }
    IHeadRotationClient& getHeadRotationClient() noexcept ORVANE_REALTIME override;

private:
    bool connected = false;
    std::optional<ClientSegment> segment;
    std::optional<HeadRotation> headRotation; ///< Empty when the segment holds no record.
};

} // namespace OrvaneIPC
