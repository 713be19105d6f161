// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/EmptyHeadRotation.h"
#include "ipc/IOrvaneParameterClient.h"

namespace test {

/// A link without a tracker, whatever the machine's one segment holds at the moment.
class NoTracker final : public OrvaneIPC::IOrvaneParameterClient {
public:
    bool isConnected() const noexcept override { return false; }
    OrvaneIPC::IHeadRotationClient& getHeadRotationClient() noexcept override { return rotation; }

private:
    OrvaneIPC::EmptyHeadRotation rotation;
};

} // namespace test
