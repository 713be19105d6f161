// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "room/IReflectionMechanic.h"
#include "room/IReflectionPresetFactory.h"

#include <cstdint>
#include <vector>

namespace orvane {

/// A room's reflections as designed, turned with the source: their delays stand, their directions move.
///
/// Units   distances follow from delays by the speed of sound, 343.42 m/s.
class ReflectionMechanic final : public IReflectionMechanic {
public:
    /// Units   sampleRate in hertz.
    ReflectionMechanic(const IReflectionPresetFactory& presetFactory, float sampleRate, std::int32_t roomId);

    ReflectionList reflections() const override;
    void update(ReflectionList& reflections, const ISpatialParameterSetView& view,
                std::int32_t maxDelay) ORVANE_REALTIME override;
    std::uint64_t length() const noexcept override;
    std::uint64_t scaledLength() const noexcept override;

private:
    std::vector<Reflection> reflectionTemplate;
    float sampleRate;
    std::uint64_t presetLength;
    float presetGain;
    float samplesPerMetre;
    std::int32_t roomId;
};

} // namespace orvane
