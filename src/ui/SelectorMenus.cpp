// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/SelectorMenus.h"

#include "parameters/core/MenuPresentation.h"
#include "parameters/core/Scene.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

namespace orvane::kestrum {

namespace {

juce::String text(std::string_view utf8) {
    return juce::String::fromUTF8(utf8.data(), static_cast<int>(utf8.size()));
}

/// Adds one item with what stands above it.
void add(juce::ComboBox& comboBox, std::span<const core::MenuEntry> menu, std::string_view name,
         std::uint32_t id) {
    const auto entry = std::ranges::find(menu, name, &core::MenuEntry::name);
    const bool listed = entry != menu.end();
    if (listed && !entry->sectionBefore.empty())
        comboBox.addSectionHeading(text(entry->sectionBefore));
    comboBox.addItem(text(listed ? entry->shownAs : name), std::bit_cast<int>(id));
}

} // namespace

void fillSpeakerSetup(juce::ComboBox& comboBox, const core::ISupportedLayouts& layouts,
                      int inputChannelCount) {
    layouts.forEach([&](const core::ISupportedLayouts::Properties& layout) {
        add(comboBox, core::layoutMenu(), layout.name, layout.id);
        comboBox.setItemEnabled(std::bit_cast<int>(layout.id),
                                std::cmp_less_equal(layout.channelCount, inputChannelCount));
    });
}

void fillScene(juce::ComboBox& comboBox) {
    const auto ids = core::Scene::identifiers();
    std::size_t index = 0;
    for (const auto& preset : core::Scene::presets())
        add(comboBox, core::sceneMenu(), preset.name, ids[index++]);
}

} // namespace orvane::kestrum
