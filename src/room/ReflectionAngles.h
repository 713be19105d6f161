// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <algorithm>
#include <cstdint>

namespace orvane {

/// Degrees into -179 .. 180.
constexpr std::int32_t wrapAzimuth(std::int32_t degrees) noexcept ORVANE_REALTIME {
    const std::int32_t rest = degrees % 360;
    if (rest <= -180)
        return rest + 360;
    if (rest > 180)
        return rest - 360;
    return rest;
}

/// Degrees into -75 .. 75: the measured heads thin out towards the poles.
constexpr std::int32_t clampElevation(std::int32_t degrees) noexcept ORVANE_REALTIME {
    return std::clamp(degrees, -75, 75);
}

/// A delay beyond `maxDelay` comes back to just below it, spread by its last two digits, so that several late
/// reflections neither get lost nor pile up in one sample.
constexpr std::int32_t foldDelay(std::int32_t delay, std::int32_t maxDelay) noexcept ORVANE_REALTIME {
    return delay > maxDelay ? maxDelay - delay % 100 : delay;
}

} // namespace orvane
