// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

namespace orvane {

inline constexpr float pi = 3.1415927f;

/// Degrees to radians in the order of operations that every position of the system goes through.
constexpr float radiansOf(float degrees) noexcept ORVANE_REALTIME { return degrees / 180.0f * pi; }

} // namespace orvane
