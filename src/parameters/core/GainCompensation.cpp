// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/GainCompensation.h"

#include <algorithm>

namespace orvane::kestrum::core {

float gainCompensationDb(const ISupportedLayouts::Properties& layout) noexcept {
    if (layout.channelCount >= 3) {
        const bool hasHeight = std::ranges::any_of(
            layout.speakers, [](const Speaker& speaker) { return speaker.position.elevation > 0.0f; });
        return hasHeight ? -15.1f : -9.4f;
    }
    if (layout.channelCount == 2 && layout.speakers.front().position.azimuth == 0.0f &&
        layout.speakers.back().position.azimuth == 0.0f)
        return -0.1f;
    return 0.6f;
}

} // namespace orvane::kestrum::core
