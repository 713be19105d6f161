// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/SpeakerPropertiesConverter.h"

#include "parameters/core/LayoutTable.h"
#include "parameters/core/SelectorId.h"

#include <utility>

namespace orvane::kestrum::core {

namespace {

Speaker convert(const SpeakerRow& row) noexcept {
    if (row.lowFrequency)
        return {SpatialPosition(0, 0, 0), Speaker::Type::lowFrequency};
    return {SpatialPosition(row.elevation, row.azimuth, speakerDistance), Speaker::Type::loudspeaker};
}

} // namespace

void SpeakerPropertiesConverter::add(const LayoutRow& layoutEntry) {
    ISupportedLayouts::Properties properties;
    properties.id = selectorId(layoutEntry.name);
    properties.name = layoutEntry.name;
    properties.channelCount = layoutEntry.speakers.size();
    properties.speakers.reserve(layoutEntry.speakers.size());
    for (const SpeakerRow& row : layoutEntry.speakers)
        properties.speakers.push_back(convert(row));
    layouts->push_back(std::move(properties));
}

} // namespace orvane::kestrum::core
