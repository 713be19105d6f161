// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/VirtualAcoustics.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace orvane::kestrum::core {

/// The sixteen rooms that a user can choose from.
///
/// Thread  the identifiers are hashed at the first use of get() or identifiers() in the process, so that has
///         to be off the audio thread (every mapper's constructor does it); afterwards any thread, and
///         nothing hashes, allocates or waits.
class Scene {
public:
    /// Units   decibels, hertz, metres and percent as the names say.
    struct Preset {
        std::string_view name;
        VirtualAcoustics::Type roomType{};
        bool reflectionsOn = false;
        float reflectionGainDb = 0;
        float reflectionLowPassFrequency = 0;
        float reflectionHighPassFrequency = 0;
        bool reverbOn = false;
        float reverbGainDb = 0;
        float reverbLowPassFrequency = 0;
        float reverbHighPassFrequency = 0;
        bool customRoom = false; ///< Whether the six wall distances are used.
        float ceilingDistance = 0;
        float frontDistance = 0;
        float backDistance = 0;
        float rightDistance = 0;
        float leftDistance = 0;
        float floorDistance = 0;
        float reverbDecayPercent = 0;
        float sourceDistance = 0;
        float masterGainDb = 0; ///< Added to the user's master gain.
    };

    static constexpr std::size_t count = 16;
    static constexpr std::string_view defaultName = "Mix Room";

    /// Table order, which is the order of the menu and of the host's parameter.
    static std::span<const Preset, count> presets() noexcept;

    /// Identifier of each preset, in table order.
    static std::span<const std::uint32_t, count> identifiers() noexcept;

    /// @return the preset with this identifier, valid for ever.
    /// @throws std::out_of_range "no such id: " and the number when there is none.
    static const Preset& get(std::uint32_t id);
};

} // namespace orvane::kestrum::core
