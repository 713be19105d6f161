// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Room.h"

/// Surfaces that differ from place to place. Units: metres; `point` in the room, `local` in a box's own axes.
namespace orvane::kestrum::pictures::textures {

Surface floorBoards(const Vector& point);
Surface fabric(const Vector& point);

/// Upright wooden slats with dark gaps. @param across distance along the row of slats.
Surface slats(float across);

/// A two-way loudspeaker seen from ahead. @param front whether it is that side of the box.
Surface monitorFront(const Vector& local, const Vector& half, bool front);

/// Rows of knobs, buttons and faders. @param top whether it is the upper side.
Surface desk(const Vector& point, bool top);

/// Level meters. @param front whether it is the side towards the listener.
Surface meterBridge(const Vector& point, bool front);

Surface liveWall(const Vector& point);

} // namespace orvane::kestrum::pictures::textures
