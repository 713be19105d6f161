// SPDX-License-Identifier: GPL-3.0-or-later
#include "ipc/OrvaneParameterClient.h"

#include "ipc/EmptyHeadRotation.h"

#include <utility>

namespace OrvaneIPC {

namespace {

IHeadRotationClient& emptyHeadRotation() noexcept {
    static EmptyHeadRotation empty;
    return empty;
}

} // namespace

OrvaneParameterClient::OrvaneParameterClient() noexcept {
    emptyHeadRotation(); // made here, so that the first look on the audio thread makes nothing
    try {
        auto opened = ClientSegment::open(segmentName);
        if (!opened)
            return;
        segment.emplace(std::move(*opened));
        if (HeadRotation::Data* const record = segment->record(); record != nullptr)
            headRotation.emplace(record);
        connected = true;
    } catch (...) {
        // Deliberate: without a tracker there is nothing to tell; the rotation comes from the parameter
        // alone.
        connected = false;
    }
}

IHeadRotationClient& OrvaneParameterClient::getHeadRotationClient() noexcept {
    if (isConnected() && headRotation)
        return *headRotation;
    return emptyHeadRotation();
}

} // namespace OrvaneIPC
