// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane {

/// How much a linear fade from 0 to 1 moves per sample; 1, so at once, for a fade without length.
///
/// Units   milliseconds, sampleRate in hertz.
inline float fadeStepPerSample(float milliseconds, float sampleRate) noexcept {
    const float length = milliseconds * sampleRate;
    return length > 0.0f ? 1000.0f / length : 1.0f;
}

} // namespace orvane
