// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ReflectionMechanic.h"

#include "parameters/SourcePosition.h"
#include "room/ReflectionAngles.h"
#include "room/ReflectionTemplate.h"

#include <algorithm>
#include <cstddef>

namespace orvane {

namespace {

/// Angles and delays of this model are kept in 16 bits.
constexpr std::int32_t cutTo16Bits(std::int32_t value) noexcept { return static_cast<std::int16_t>(value); }

} // namespace

ReflectionMechanic::ReflectionMechanic(const IReflectionPresetFactory& presetFactory, float sampleRate,
                                       std::int32_t roomId)
    : sampleRate(sampleRate), samplesPerMetre(samplesPerMetreAt(sampleRate)), roomId(roomId) {
    const ReflectionPreset preset = presetFactory.create(roomId);
    reflectionTemplate = reflectionTemplateOf(preset, sampleRate);
    for (Reflection& reflection : reflectionTemplate) {
        // Deliberate: at high rates a delay beyond 32767 samples wraps.
        reflection.delay = cutTo16Bits(reflection.delay);
        reflection.active = true;
    }
    presetLength = preset.length;
    presetGain = preset.gain;
}

ReflectionList ReflectionMechanic::reflections() const {
    ReflectionList list(reflectionTemplate.size());
    for (const Reflection& reflection : reflectionTemplate)
        list.push(reflection);
    return list;
}

void ReflectionMechanic::update(ReflectionList& reflections, const ISpatialParameterSetView& view,
                                std::int32_t maxDelay) {
    const SpatialPosition position = sourcePosition(view);
    const float common = commonReflectionGain(view, presetGain);
    for (std::size_t i = 0; i < reflections.size(); ++i) {
        const Reflection& designed = reflectionTemplate[i];
        Reflection& out = reflections[i];
        out.azimuth = cutTo16Bits(
            wrapAzimuth(static_cast<std::int32_t>(static_cast<float>(designed.azimuth) - position.azimuth)));
        out.elevation = clampElevation(cutTo16Bits(
            static_cast<std::int32_t>(position.elevation + static_cast<float>(designed.elevation))));
        // The list keeps its delays from block to block: a folded one stays folded.
        if (out.delay > maxDelay)
            out.delay = cutTo16Bits(foldDelay(out.delay, maxDelay));
        if (roomId <= 1) {
            out.gain = common * designed.gain;
        } else {
            // One over the distance that the delay stands for, at half level.
            const float distanceGain = std::min(samplesPerMetre / static_cast<float>(out.delay), 1.0f) * 0.5f;
            out.gain = distanceGain * designed.gain * common;
        }
    }
}

std::uint64_t ReflectionMechanic::length() const noexcept { return presetLength; }

std::uint64_t ReflectionMechanic::scaledLength() const noexcept {
    return scaledToRate(presetLength, sampleRate);
}

} // namespace orvane
