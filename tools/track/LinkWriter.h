// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/IHeadRotationServer.h"
#include "track/Clock.h"
#include "track/Rotation.h"

#include <optional>

namespace orvane::kestrum::track {

/// Writes directions into the shared record, 250 in a second at most, so that no flood reaches a plug-in.
///
/// A direction that comes too early waits, and a newer one takes its place. Writes that a pause left out may be made up
/// for, a few at once, so that a sender of 250 in a second never waits for its own jitter or for a system that was busy.
///
/// No signal is taken while the record's lock is held: a process that is ended or stopped there would leave every
/// plug-in spinning.
///
/// Thread  one.
class LinkWriter {
public:
    /// @param server borrowed, outlives this.
    explicit LinkWriter(OrvaneIPC::IHeadRotationServer& server) : server(&server) {}

    /// Releases an active link.
    ~LinkWriter();
    LinkWriter(const LinkWriter&) = delete;
    LinkWriter& operator=(const LinkWriter&) = delete;

    /// Writes now, or at due(). The first direction makes the link active.
    void write(const Rotation& rotation, Instant now);

    /// Writes the direction that waits, when its time has come.
    void flush(Instant now);

    /// When flush() has something to do.
    std::optional<Instant> due() const;

    /// Gives the plug-ins their dial back. Drops what waits.
    void release();

    bool active() const { return isActive; }

private:
    OrvaneIPC::IHeadRotationServer* server;
    std::optional<Rotation> waiting;
    Instant nextDue{}; ///< Of the next write that keeps the rate, counted from the last few at the earliest.
    bool isActive = false;
};

} // namespace orvane::kestrum::track
