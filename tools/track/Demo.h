// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Rotation.h"

namespace orvane::kestrum::track {

/// A slow look around: 60 degrees to either side, with a little nodding. Begins straight ahead.
HeadAngles demoAngles(double seconds);

} // namespace orvane::kestrum::track
