// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ReflectionTemplate.h"

#include <cmath>

namespace orvane {

namespace {

constexpr float designRate = 44100.0f;
constexpr float templateLevel = 0.55f;

} // namespace

std::vector<Reflection> reflectionTemplateOf(const ReflectionPreset& preset, float sampleRate) {
    std::vector<Reflection> reflections(preset.count);
    for (std::size_t i = 0; i < reflections.size(); ++i) {
        Reflection& out = reflections[i];
        out.azimuth = preset.azimuths[i];
        out.elevation = preset.elevations[i];
        out.delay =
            static_cast<std::int32_t>(static_cast<float>(preset.delays[i]) * (sampleRate / designRate));
        out.filter = preset.filters[i];
        out.gain = preset.levels[i] * templateLevel;
    }
    return reflections;
}

std::uint64_t scaledToRate(std::uint64_t length, float sampleRate) noexcept {
    return static_cast<std::uint64_t>(std::ceil(sampleRate / designRate * static_cast<float>(length)));
}

float commonReflectionGain(const ISpatialParameterSetView& view, float presetGain) noexcept {
    return view.getFarFade() * std::pow(10.0f, view.getReflectionGainDb() / 20.0f) * presetGain;
}

} // namespace orvane
