// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum {

/// What a slider's value may be, and the step of its host parameter.
struct SliderRange {
    float minimum;
    float maximum;
    float step;
};

inline constexpr SliderRange ambienceRange{0.0f, 100.0f, 1.0f};
inline constexpr SliderRange focusRange{-100.0f, 100.0f, 1.0f};
inline constexpr SliderRange headRotationRange{-180.0f, 180.0f, 1.0f}; ///< Degrees.
inline constexpr SliderRange masterGainRange{-96.0f, 24.0f, 0.1f};     ///< Decibels.

} // namespace orvane::kestrum
