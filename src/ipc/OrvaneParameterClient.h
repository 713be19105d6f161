// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/IOrvaneParameterClient.h"

#include <boost/interprocess/managed_shared_memory.hpp>

#include <memory>

namespace OrvaneIPC {

class HeadRotation;

/// Opens the segment once, at construction. A server that starts later is never seen.
class OrvaneParameterClient final : public IOrvaneParameterClient {
public:
    /// Errors  none leave: whatever goes wrong ends in an unconnected client.
    OrvaneParameterClient() noexcept;
    ~OrvaneParameterClient() override;

    bool isConnected() const noexcept ORVANE_REALTIME override { return connected; }
    IHeadRotationClient& getHeadRotationClient() noexcept ORVANE_REALTIME override;

private:
    bool connected = false;
    boost::interprocess::managed_shared_memory segment;
    std::unique_ptr<HeadRotation> headRotation; ///< Null when the segment holds no record.
};

} // namespace OrvaneIPC
