// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/SpeakerSetupFallback.h"

#include "base/ISupportedLayouts.h"
#include "parameters/core/LayoutTable.h"
#include "parameters/core/SelectorId.h"

namespace orvane::kestrum::core {

SpeakerSetupFallback::SpeakerSetupFallback(const ISupportedLayouts* supportedLayouts)
    : supportedLayouts(supportedLayouts), defaultId(selectorId(defaultLayoutName)) {}

std::uint32_t SpeakerSetupFallback::fallback(std::uint32_t id) const {
    std::uint32_t result = defaultId;
    supportedLayouts->forEach([&result, id](const ISupportedLayouts::Properties& layout) {
        if (layout.id == id)
            result = id;
    });
    return result;
}

} // namespace orvane::kestrum::core
