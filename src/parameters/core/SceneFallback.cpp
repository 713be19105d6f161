// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/SceneFallback.h"

#include "parameters/core/Scene.h"

#include <algorithm>

namespace orvane::kestrum::core {

std::uint32_t SceneFallback::fallback(std::uint32_t id) const {
    const auto ids = Scene::identifiers();
    if (std::ranges::find(ids, id) != ids.end())
        return id;
    const auto presets = Scene::presets();
    const auto fallback = std::ranges::find(presets, Scene::defaultName, &Scene::Preset::name);
    return ids[static_cast<std::size_t>(fallback - presets.begin())];
}

} // namespace orvane::kestrum::core
