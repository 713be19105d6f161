// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/IOrvaneParameterClient.h"
#include "ipc/IOrvaneParameterServer.h"

#include <memory>

namespace OrvaneIPC {

/// Makes the ends of the link.
class IOrvaneParameterFactory {
public:
    virtual ~IOrvaneParameterFactory() = default;

    /// @throws boost::interprocess::interprocess_exception when the segment cannot be made.
    virtual std::unique_ptr<IOrvaneParameterServer> createServer() = 0;

    /// Never fails: without a segment the client is unconnected for life.
    virtual std::unique_ptr<IOrvaneParameterClient> createClient() = 0;
};

} // namespace OrvaneIPC
