// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "headlink/Segment.h"
#include "headlink/TrackStatus.h"

#include "ipc/IHeadRotationServer.h"
#include "ipc/IOrvaneParameterServer.h"

#include <memory>
#include <optional>

namespace orvane::kestrum::track {

/// The machine's one link, in our hands: its segment made anew, and marked as ours.
///
/// What lies there already is looked at from outside, never opened by its library, which a damaged segment, or one that was
/// never finished, holds up.
class LinkClaim {
public:
    /// @param takeOver even from somebody who drives the link.
    /// @param left what the tracker before has left of its status.
    /// @throws TrackError when somebody else drives the link, and when it cannot be made.
    LinkClaim(bool takeOver, const std::optional<headlink::TrackStatus>& left);

    OrvaneIPC::IHeadRotationServer& server() const { return *parameters->getHeadRotationServer(); }

    /// Whether instances of an older segment were told that nobody drives them any more.
    bool freedOthers() const { return freed; }

private:
    bool freed;
    std::unique_ptr<OrvaneIPC::IOrvaneParameterServer> parameters;
    headlink::SegmentMark mark;
};

/// Refuses a link that somebody else drives. Of a tracker that is not "kestrum track" nothing is known but what the
/// record shows.
/// @throws TrackError
void requireFree(const headlink::SegmentState& state, const std::optional<headlink::TrackStatus>& left);

} // namespace orvane::kestrum::track
