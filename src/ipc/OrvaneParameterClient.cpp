// SPDX-License-Identifier: GPL-3.0-or-later
#include "ipc/OrvaneParameterClient.h"

#include "ipc/EmptyHeadRotation.h"
#include "ipc/HeadRotation.h"

#include <utility>

namespace OrvaneIPC {

namespace interprocess = boost::interprocess;

namespace {

IHeadRotationClient& emptyHeadRotation() noexcept {
    static EmptyHeadRotation empty;
    return empty;
}

} // namespace

OrvaneParameterClient::OrvaneParameterClient() noexcept {
    emptyHeadRotation(); // made here, so that the first look on the audio thread makes nothing
    try {
        interprocess::managed_shared_memory opened(interprocess::open_only, segmentName);
        segment.swap(opened);
        const auto [record, count] = segment.find<HeadRotation::Data>(headRotationName);
        if (count > 0)
            headRotation = std::make_unique<HeadRotation>(record);
        connected = true;
    } catch (...) {
        // Deliberate: without a tracker there is nothing to tell; the rotation comes from the parameter
        // alone.
        connected = false;
    }
}

OrvaneParameterClient::~OrvaneParameterClient() = default;

IHeadRotationClient& OrvaneParameterClient::getHeadRotationClient() noexcept {
    if (isConnected() && headRotation != nullptr)
        return *headRotation;
    return emptyHeadRotation();
}

} // namespace OrvaneIPC
