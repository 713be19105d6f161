// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/IOrvaneParameterFactory.h"

namespace OrvaneIPC {

/// Stateless; may live on the stack.
class OrvaneParameterFactory final : public IOrvaneParameterFactory {
public:
    std::unique_ptr<IOrvaneParameterServer> createServer() override;
    std::unique_ptr<IOrvaneParameterClient> createClient() override;
};

} // namespace OrvaneIPC
