// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ExpectedDecay.h"

#include "parameters/core/Scene.h"

namespace orvane::kestrum::core {

std::optional<float> expectedDecay(const IReloadParameterSet& structure, const IReverbParameterView& view) {
    if (!structure.hasReverb())
        return std::nullopt;
    const float present = view.getReverbDecayPercent();
    std::optional<float> first;
    for (const Scene::Preset& preset : Scene::presets()) {
        if (!preset.reverbOn || preset.roomType != VirtualAcoustics::Type{structure.roomId()})
            continue;
        if (preset.reverbDecayPercent == present)
            return present;
        if (!first)
            first = preset.reverbDecayPercent;
    }
    return first ? first : present;
}

} // namespace orvane::kestrum::core
