// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orvane {

/// One early reflection as the renderer lays it down.
struct Reflection {
    std::int32_t azimuth = 0;   ///< Whole degrees, in the frame of IHrir::getResponse().
    std::int32_t elevation = 0; ///< Whole degrees.
    std::int32_t delay = 0;     ///< Samples at the running rate behind the direct sound.
    std::uint64_t filter = 0;   ///< 0 or 1, which of the renderer's low-pass filters.
    float gain = 0;             ///< Linear.
    bool active = false;        ///< False: not heard.
};

} // namespace orvane
