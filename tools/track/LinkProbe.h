// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/HeadRotationMatrix.h"

#include <optional>

namespace orvane::kestrum::track {

/// The shared record at one moment.
struct LinkState {
    bool active = false;
    bool locked = false; ///< Held for good, if it is so at several looks.
    HeadRotationMatrix rotation = identityRotation;
};

/// Looks at the record as any program may, without taking its lock: a lock that a dead writer left would hold for ever.
/// A look during a write may mix two directions.
/// @return empty when there is no segment, or one of another size or content.
std::optional<LinkState> probeLink();

} // namespace orvane::kestrum::track
