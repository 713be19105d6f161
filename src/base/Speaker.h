// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/SpatialPosition.h"

#include <cstdint>

namespace orvane {

/// One entry of a layout.
struct Speaker {
    enum class Type : std::uint32_t { loudspeaker = 0, lowFrequency = 1 };

    SpatialPosition position; ///< (0, 0, 0) for a low-frequency channel; the engine places it ahead.
    Type type = Type::loudspeaker;
};

} // namespace orvane
