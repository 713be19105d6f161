// SPDX-License-Identifier: GPL-3.0-or-later
#include "ipc/OrvaneParameterFactory.h"

#include "ipc/OrvaneParameterClient.h"
#include "ipc/OrvaneParameterServer.h"

namespace OrvaneIPC {

std::unique_ptr<IOrvaneParameterServer> OrvaneParameterFactory::createServer() {
    return std::make_unique<OrvaneParameterServer>();
}

std::unique_ptr<IOrvaneParameterClient> OrvaneParameterFactory::createClient() {
    return std::make_unique<OrvaneParameterClient>();
}

} // namespace OrvaneIPC
