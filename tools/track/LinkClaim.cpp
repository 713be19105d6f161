// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/LinkClaim.h"

#include "track/TrackError.h"

#include "ipc/HeadRotation.h"
#include "ipc/OrvaneParameterServer.h"

#include <boost/interprocess/exceptions.hpp>

#include <string>

#include <unistd.h>

namespace orvane::kestrum::track {

namespace {

/// The old segment loses its name, but instances that have mapped it keep it, and the direction that it holds.
/// @return whether there was one to switch off.
bool freeOld(bool takeOver, const std::optional<headlink::TrackStatus>& left) {
    const auto state = headlink::lookAtSegment(OrvaneIPC::segmentName, getuid());
    if (!takeOver)
        requireFree(state, left);
    if (!state.active)
        return false;
    headlink::switchOff(OrvaneIPC::segmentName, state);
    return true;
}

std::unique_ptr<OrvaneIPC::IOrvaneParameterServer> makeServer() {
    if (!headlink::roomForSegment())
        throw TrackError("The link cannot be made, since /dev/shm is full: make room there.");
    try {
        return std::make_unique<OrvaneIPC::OrvaneParameterServer>();
    } catch (const boost::interprocess::interprocess_exception&) {
        throw TrackError(
            "The link cannot be made, since /dev/shm/OrvaneSharedMemory belongs to somebody else or "
            "/dev/shm may not be written to: remove that file as its owner, or mend that.");
    }
}

} // namespace

void requireFree(const headlink::SegmentState& state, const std::optional<headlink::TrackStatus>& left) {
    if (state.held)
        throw TrackError("Another kestrum track drives the link already, of another user or of another "
                         "XDG_RUNTIME_DIR: end it first, or take the link from it with --take-over.");
    const bool leftByOurs = left && !left->alive && !state.moving;
    if (!state.active || leftByOurs)
        return;
    throw TrackError(std::string("The link is active and its direction ") +
                     (state.moving ? "moves: another tracker drives it"
                                   : "stands still: another tracker drives it, or has crashed") +
                     ". End it, or take the link from it with --take-over.");
}

LinkClaim::LinkClaim(bool takeOver, const std::optional<headlink::TrackStatus>& left)
    : freed(freeOld(takeOver, left)), parameters(makeServer()), mark(OrvaneIPC::segmentName) {}

} // namespace orvane::kestrum::track
