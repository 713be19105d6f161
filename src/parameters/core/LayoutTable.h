// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string_view>

namespace orvane::kestrum::core {

/// One loudspeaker as listed: degrees, azimuth positive to the right, elevation positive up.
struct SpeakerRow {
    float azimuth = 0;
    float elevation = 0;
    bool lowFrequency = false;
};

/// One layout as listed; entry i of `speakers` is bus channel i.
struct LayoutRow {
    std::string_view name;
    std::span<const SpeakerRow> speakers;
};

/// Distance of every listed loudspeaker, in metres.
inline constexpr float speakerDistance = 1.5f;

inline constexpr std::string_view defaultLayoutName = "2.0 +/-30°";

/// The 32 layouts in the order of the menu and of the host's parameter.
std::span<const LayoutRow> layoutTable() noexcept;

} // namespace orvane::kestrum::core
