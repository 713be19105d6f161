// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/IOrvaneParameterServer.h"

#include <boost/interprocess/managed_shared_memory.hpp>

#include <memory>

namespace OrvaneIPC {

class HeadRotation;

/// Makes the segment anew, removing one of the same name that another server may still write to.
///
/// Does not clear `active` when it goes: clients that are connected keep the last values.
class OrvaneParameterServer final : public IOrvaneParameterServer {
public:
    /// @throws boost::interprocess::interprocess_exception; the name is free again then.
    OrvaneParameterServer();
    ~OrvaneParameterServer() override;

    IHeadRotationServer* getHeadRotationServer() noexcept override;

private:
    /// Frees the segment's name at both ends of the server's life.
    struct NameRemover {
        NameRemover() noexcept;
        ~NameRemover();
        NameRemover(const NameRemover&) = delete;
        NameRemover& operator=(const NameRemover&) = delete;
    };

    NameRemover remover;
    boost::interprocess::managed_shared_memory segment;
    std::unique_ptr<HeadRotation> headRotation;
};

} // namespace OrvaneIPC
