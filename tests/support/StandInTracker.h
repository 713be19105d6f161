// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/IHeadRotationClient.h"
#include "ipc/IOrvaneParameterClient.h"

#include <atomic>

namespace test {

/// A link that answers what the test says.
struct StandInTracker final : OrvaneIPC::IOrvaneParameterClient, OrvaneIPC::IHeadRotationClient {
    bool isConnected() const noexcept override { return true; }
    OrvaneIPC::IHeadRotationClient& getHeadRotationClient() noexcept override { return *this; }
    bool isActive() const noexcept override { return active; }
    orvane::HeadRotationMatrix getRotation() const noexcept override { return matrix; }

    std::atomic<bool> active{false};
    orvane::HeadRotationMatrix matrix{0, 0, -1, 0, 0,    1, 0, 0,
                                      1, 0, 0,  0, 0.5f, 0, 0, 1}; ///< ahead goes to the right
};

} // namespace test
