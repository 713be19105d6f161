// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "parameters/ISpatialParameterSetView.h"
#include "room/Reflection.h"
#include "room/ReflectionPreset.h"

#include <cstdint>
#include <vector>

namespace orvane {

/// The system's speed of sound: how many samples a wave needs for a metre.
inline float samplesPerMetreAt(float sampleRate) noexcept { return sampleRate / 343.42f; }

/// A preset at the running rate: delays truncated to whole samples, levels times 0.55, nothing active yet.
std::vector<Reflection> reflectionTemplateOf(const ReflectionPreset& preset, float sampleRate);

/// A nominal length at the running rate, rounded up.
///
/// Units   samples at 44100 Hz in, samples at `sampleRate` out.
std::uint64_t scaledToRate(std::uint64_t length, float sampleRate) noexcept;

/// Linear factor on all reflections of a room: far fade, user's gain and the room's own.
float commonReflectionGain(const ISpatialParameterSetView& view, float presetGain) noexcept ORVANE_REALTIME;

} // namespace orvane
