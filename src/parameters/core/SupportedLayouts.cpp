// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/SupportedLayouts.h"

#include "base/IComponentFactory.h"
#include "parameters/core/ISpeakerPropertiesConverter.h"
#include "parameters/core/LayoutTable.h"

#include <algorithm>
#include <stdexcept>

namespace orvane::kestrum::core {

SupportedLayouts::SupportedLayouts(const IComponentFactory& factory) {
    const auto converter = factory.createSpeakerPropertiesConverter(layouts);
    for (const LayoutRow& row : layoutTable())
        converter->add(row);
}

void SupportedLayouts::forEach(std::function<void(const Properties&)> visit) const {
    for (const Properties& layout : layouts)
        visit(layout);
}

const ISupportedLayouts::Properties& SupportedLayouts::get(std::uint32_t id) const {
    const auto layout = std::ranges::find(layouts, id, &Properties::id);
    if (layout == layouts.end())
        throw std::invalid_argument("layout not supported");
    return *layout;
}

} // namespace orvane::kestrum::core
