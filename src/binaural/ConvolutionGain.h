// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orvane {

/// What IConvolution::outputGain() tells.
///
/// Deliberate: 44100 / 48000 at 48, 96 and 192 kHz, 1 at every other rate.
constexpr float convolutionGain(double sampleRate) noexcept {
    constexpr std::int32_t base = 48000;
    return static_cast<std::int32_t>(sampleRate) % base == 0 ? 0.91875f : 1.0f;
}

} // namespace orvane
