// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "room/IReflectionMechanic.h"
#include "room/IReflectionPresetFactory.h"

#include <cstdint>
#include <vector>

namespace orvane {

/// The six first-order reflections of a rectangular room, from the source's place and the walls' distances.
///
/// Deliberate: these are approximations in the manner of image sources, chosen for their cost and their sound:
/// mirror paths are twice the hypotenuse to the wall's midpoint, and delays follow the room only, not the
/// source. They are not to be replaced by exact image sources.
class RealtimeReflectionMechanic final : public IReflectionMechanic {
public:
    /// Units   sampleRate in hertz.
    /// @param roomId gives the levels and, for ceiling and floor, the azimuths.
    RealtimeReflectionMechanic(const IReflectionPresetFactory& presetFactory, float sampleRate,
                               std::int32_t roomId);

    /// The first six only: ceiling, floor, front, back, right and left wall.
    ReflectionList reflections() const override;
    void update(ReflectionList& reflections, const ISpatialParameterSetView& view,
                std::int32_t maxDelay) ORVANE_REALTIME override;
    std::uint64_t length() const noexcept override;
    std::uint64_t scaledLength() const noexcept override;

private:
    bool takeWalls(const ISpatialParameterSetView& view) noexcept ORVANE_REALTIME;

    std::vector<Reflection> reflectionTemplate;
    float sampleRate;
    float presetGain;
    float samplesPerMetre;
    std::int32_t roomId;
    // The walls at the last update, metres. Not a number at first, so that the first comparison differs.
    float ceilingDistance;
    float floorDistance;
    float frontDistance;
    float backDistance;
    float rightDistance;
    float leftDistance;
};

} // namespace orvane
