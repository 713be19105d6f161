// SPDX-License-Identifier: GPL-3.0-or-later
#include "ipc/OrvaneParameterServer.h"

#include "ipc/HeadRotation.h"

namespace OrvaneIPC {

namespace interprocess = boost::interprocess;

OrvaneParameterServer::NameRemover::NameRemover() noexcept {
    interprocess::shared_memory_object::remove(segmentName);
}

OrvaneParameterServer::NameRemover::~NameRemover() {
    interprocess::shared_memory_object::remove(segmentName);
}

OrvaneParameterServer::OrvaneParameterServer()
    : segment(interprocess::create_only, segmentName, segmentSize),
      headRotation(
          std::make_unique<HeadRotation>(segment.construct<HeadRotation::Data>(headRotationName)())) {}

OrvaneParameterServer::~OrvaneParameterServer() = default;

IHeadRotationServer* OrvaneParameterServer::getHeadRotationServer() noexcept { return headRotation.get(); }

} // namespace OrvaneIPC
