// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "room/ReflectionPreset.h"

#include <cstdint>

namespace orvane {

/// Gives out the reflection pattern of a room.
class IReflectionPresetFactory {
public:
    virtual ~IReflectionPresetFactory() = default;

    /// @param roomId 1 to 47; every other room has no reflections.
    /// Thread  building thread; allocates.
    virtual ReflectionPreset create(std::int32_t roomId) const = 0;
};

} // namespace orvane
